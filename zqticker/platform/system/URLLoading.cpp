#include "zqticker/platform/system/URLLoading_p.h"

#include "zqticker/platform/system/http_fields_p.h"
#include "zqticker/platform/system/redirects_p.h"
#include "zqticker/platform/system/url_errors.h"

#include <QtCore/QLoggingCategory>

#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
Q_LOGGING_CATEGORY(netLog, "zqticker.net")

QString tooLargeText(qint64 limit) {
  return u"the body is larger than the limit of %1 bytes"_s.arg(limit);
}

// An address as it is asked for: its fragment is not sent.
QUrl askedAddress(const QUrl& url) {
  return url.adjusted(QUrl::RemoveFragment);
}
} // namespace

URLLoading::URLLoading(const Ref<URLConnection>& connection, Weak<URLConnectionDelegate> delegate)
    : connection_(connection), thread_(&LoadingThread::current()), delegate_(delegate) {
  // A response, a piece of the body and the end.
  notes_.reserve(3);
}

URLLoading::~URLLoading() = default;

void URLLoading::start(const Ref<URLRequest>& request) {
  thread_->add(shared_from_this());
  startSource(request);
}

void URLLoading::startSource(const Ref<URLRequest>& request) {
  request_ = request;
  receivedLength_ = 0;
  isEndNoted_ = false;
  source_ = platform::startSource({request, {}}, *this);
}

void URLLoading::cancel() {
  if (!isEnded_)
    end();
  connection_.reset();
}

void URLLoading::end() {
  isEnded_ = true;
  source_.reset();
  notes_.clear();
  nextNote_ = 0;
  if (thread_)
    thread_->remove(shared_from_this());
}

// What the source says.

void URLLoading::take(Note note) {
  if (isEndNoted_ || isEnded_)
    return;
  isEndNoted_ = std::holds_alternative<End>(note);
  notes_.push_back(std::move(note));
  deliverLater();
}

void URLLoading::deliverLater() {
  if (!std::exchange(isReady_, true))
    thread_->deliverLater(shared_from_this());
}

void URLLoading::noteFailure(int code, const QString& text) {
  take(End{Error::make(URLErrorDomain, code, text, request_->URL())});
}

void URLLoading::sourceReceivedResponse(const Ref<URLResponse>& response) {
  const qint64 limit = URLConnection::maximumBodyLength();
  const qint64 expected = response->expectedContentLength();
  // Of a compressed body the length is known that it has on its way.
  const qint64 announced = expected >= 0 ? expected : announcedLength(response->allHeaderFields());
  receivedLength_ = 0;
  const bool isRedirect = addressAfterRedirect(*response, request_->URL()).has_value();
  take(response);
  if (announced > limit && !isRedirect)
    noteFailure(DataLengthExceedsMaximum, tooLargeText(limit));
}

bool URLLoading::sourceReceivedData(QByteArrayView data) {
  if (isEndNoted_ || isEnded_)
    return false;
  receivedLength_ += data.size();
  const qint64 limit = URLConnection::maximumBodyLength();
  if (receivedLength_ > limit) {
    noteFailure(DataLengthExceedsMaximum, tooLargeText(limit));
    return false;
  }
  if (nextNote_ < notes_.size() && std::holds_alternative<QByteArray>(notes_.back())) {
    std::get<QByteArray>(notes_.back()).append(data);
    return true;
  }
  QByteArray piece = thread_->takeBuffer();
  piece.append(data);
  take(std::move(piece));
  return true;
}

void URLLoading::sourceFinished() {
  take(End{});
}

void URLLoading::sourceFailed(const Ref<Error>& error) {
  take(End{error});
}

// What the delegate hears.

bool URLLoading::deliverNext() {
  // While the delegate is asked about a redirect, what follows it waits for the answer.
  if (isEnded_ || isAsking_ || nextNote_ == notes_.size()) {
    isReady_ = false;
    return false;
  }
  Note note = std::move(notes_[nextNote_++]);
  if (nextNote_ == notes_.size()) {
    notes_.clear();
    nextNote_ = 0;
  }
  std::visit([this](auto& each) { deliverNote(each); }, note);
  return true;
}

template <class Call>
void URLLoading::tell(const Call& call) {
  URLConnectionDelegate* const delegate = delegate_.get();
  const Ref<URLConnection> connection = connection_;
  if (!delegate)
    return cancel();
  try {
    call(*delegate, *connection);
  } catch (const std::exception& exception) {
    qCWarning(netLog, "%s", exception.what());
  }
}

void URLLoading::deliverNote(Ref<URLResponse>& response) {
  const std::optional<QUrl> address = addressAfterRedirect(*response, request_->URL());
  if (address && follow(*address, response))
    return;
  tell([&](URLConnectionDelegate& delegate, URLConnection& connection) {
    delegate.connectionDidReceiveResponse(connection, response);
  });
}

void URLLoading::deliverNote(QByteArray& data) {
  tell([&](URLConnectionDelegate& delegate, URLConnection& connection) {
    delegate.connectionDidReceiveData(connection, data);
  });
  if (thread_)
    thread_->giveBackBuffer(std::move(data));
}

void URLLoading::deliverNote(End& note) {
  end();
  tell([&](URLConnectionDelegate& delegate, URLConnection& connection) {
    if (note.error)
      delegate.connectionDidFailWithError(connection, note.error);
    else
      delegate.connectionDidFinishLoading(connection);
  });
  connection_.reset();
}

// Redirects.

std::optional<std::pair<int, QString>> URLLoading::refusalOf(const QUrl& url) const {
  if (url.isValid() && url.scheme() != "http"_L1 && url.scheme() != "https"_L1)
    return std::pair(UnsupportedURL,
                     "redirect to an unsupported URL scheme: "_L1 + url.scheme().left(40));
  if (!url.isValid() || url.host().isEmpty())
    return std::pair(BadURL, "redirect to an unusable address: "_L1 + shownAddress(url));
  if (visited_.contains(askedAddress(url)))
    return std::pair(HTTPTooManyRedirects, "redirects lead back to "_L1 + shownAddress(url));
  if (redirects_ == MostRedirects)
    return std::pair(HTTPTooManyRedirects, u"more than %1 redirects in a row"_s.arg(MostRedirects));
  return std::nullopt;
}

bool URLLoading::follow(const QUrl& address, const Ref<URLResponse>& response) {
  visited_.insert(askedAddress(request_->URL()));
  Ref<URLRequest> next;
  auto refusal = refusalOf(address);
  if (!refusal) {
    const Ref<URLRequest> proposed =
        URLRequest::requestWithURL(address, request_->cachePolicy(), request_->timeoutInterval());
    next = proposed;
    isAsking_ = true;
    tell([&](URLConnectionDelegate& delegate, URLConnection& connection) {
      next = delegate.connectionWillSendRequest(connection, proposed, response);
    });
    isAsking_ = false;
    if (isEnded_)
      return true;
    if (!next) {
      deliverLater();
      return false;
    }
    if (next != proposed)
      refusal = refusalOf(next->URL());
  }
  // The body of the redirect goes with its source.
  source_.reset();
  notes_.clear();
  nextNote_ = 0;
  isEndNoted_ = false;
  if (refusal) {
    noteFailure(refusal->first, refusal->second);
    return true;
  }
  ++redirects_;
  startSource(next);
  return true;
}

} // namespace zq::platform
