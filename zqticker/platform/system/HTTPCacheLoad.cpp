#include "zqticker/platform/system/HTTPCacheLoad_p.h"

#include "zqticker/platform/system/http_field_lists_p.h"
#include "zqticker/platform/system/http_fields_p.h"

#include <QtCore/QDateTime>

#include <utility>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

qint64 now() {
  return QDateTime::currentSecsSinceEpoch();
}

// Whether an answer that cannot be stored tells that the stored one is outdated. A server in
// trouble, or one that wants to be asked otherwise, tells nothing of it.
bool outdatesStored(int statusCode) {
  return statusCode == 404 || statusCode == 410 ||
         (statusCode >= 200 && statusCode < 400 && statusCode != 206 && statusCode != 304);
}

bool isRedirect(const HTTPStoredResponse& response) {
  return response.statusCode >= 300 && response.statusCode < 400 &&
         valueOfField(response.headerFields, u"location");
}

bool isServerFailure(int statusCode) {
  return statusCode == 500 || statusCode == 502 || statusCode == 503 || statusCode == 504;
}

} // namespace

std::unique_ptr<HTTPCacheLoad> HTTPCacheLoad::begin(const QUrl& url, URLRequestCachePolicy policy) {
  auto store = sharedHTTPCacheStore();
  if (!store || (url.scheme() != "http"_L1 && url.scheme() != "https"_L1) ||
      !url.userInfo().isEmpty())
    return nullptr;
  return std::unique_ptr<HTTPCacheLoad>(new HTTPCacheLoad(std::move(store), url, policy));
}

HTTPCacheLoad::HTTPCacheLoad(std::shared_ptr<HTTPCacheStore> store, const QUrl& url,
                             URLRequestCachePolicy policy)
    : store_(std::move(store)), url_(url), policy_(policy) {}

HTTPCacheLoad::Plan HTTPCacheLoad::plan() const {
  switch (policy_) {
  case URLRequestCachePolicy::ReloadIgnoringCacheData:
  case URLRequestCachePolicy::ReloadRevalidatingCacheData:
    return Plan::Load;
  case URLRequestCachePolicy::ReturnCacheDataElseLoad:
    return reader_ ? Plan::UseStored : Plan::Load;
  case URLRequestCachePolicy::ReturnCacheDataDontLoad:
    return reader_ ? Plan::UseStored : Plan::Missing;
  case URLRequestCachePolicy::UseProtocolCachePolicy:
    break;
  }
  return reader_ && isFresh(reader_->response(), now()) ? Plan::UseStored : Plan::Load;
}

HTTPCacheLoad::Plan HTTPCacheLoad::prepare() {
  if (!lookedUp_) {
    lookedUp_ = true;
    if (policy_ != URLRequestCachePolicy::ReloadIgnoringCacheData)
      reader_ = HTTPCacheReader::open(store_, url_);
    // Stale, and neither to be confirmed nor of use on an error: not worth checking.
    if (reader_ && plan() == Plan::Load && conditionalFields(reader_->response()).isEmpty() &&
        !mayServeOnError(reader_->response(), now()))
      reader_.reset();
  }
  // Checked before the request goes out: a server that confirms a damaged body would leave none.
  if (reader_) {
    switch (reader_->checkNextPart()) {
    case HTTPCacheReader::Check::More:
      return Plan::Checking;
    case HTTPCacheReader::Check::Damaged:
      reader_.reset();
      break;
    case HTTPCacheReader::Check::Complete:
      break;
    }
  }
  return plan();
}

HTTPHeaderFields HTTPCacheLoad::requestFields() {
  requestTime_ = now();
  HTTPHeaderFields fields;
  if (reader_)
    fields = conditionalFields(reader_->response());
  conditional_ = !fields.isEmpty();
  return fields;
}

HTTPCacheLoad::Answer HTTPCacheLoad::receivedResponse(int statusCode,
                                                      const HTTPHeaderFields& headerFields,
                                                      qint64 announcedLength) {
  const HTTPStoredResponse answer{statusCode, fieldsToStore(headerFields), requestTime_, now()};
  if (statusCode == 304 && conditional_) {
    if (!confirms(reader_->response(), headerFields)) {
      HTTPCacheEntry::remove(*store_, url_);
      reader_.reset();
      return Answer::LoadAgain;
    }
    const HTTPStoredResponse merged = refreshed(reader_->response(), answer);
    reader_->refresh(merged);
    servedForLastTime_ = !isStorable(merged);
    return Answer::UseStored;
  }
  if (isServerFailure(statusCode) && standsInOnError())
    return Answer::UseStored;
  reader_.reset();
  if (isStorable(answer) && isRedirect(answer))
    storeRedirect(answer);
  else if (isStorable(answer) && HTTPCacheWriter::accepts(*store_, announcedLength))
    writer_ = std::make_unique<HTTPCacheWriter>(store_, url_, answer);
  else if (outdatesStored(statusCode))
    HTTPCacheEntry::remove(*store_, url_);
  return Answer::Deliver;
}

// At once and without its body, which ends unread when the redirect is followed.
void HTTPCacheLoad::storeRedirect(HTTPStoredResponse answer) {
  answer.headerFields = withoutHTTPFields(answer.headerFields, {"content-length"_L1});
  HTTPCacheWriter(store_, url_, std::move(answer)).finish();
}

void HTTPCacheLoad::received(QByteArrayView data) {
  if (writer_ && !writer_->append(data)) {
    // Larger than what is kept; the entry before is outdated all the same.
    writer_.reset();
    HTTPCacheEntry::remove(*store_, url_);
  }
}

void HTTPCacheLoad::finished() {
  if (writer_ && !writer_->finish())
    HTTPCacheEntry::remove(*store_, url_);
  writer_.reset();
}

bool HTTPCacheLoad::standsInOnError() const {
  return reader_ && policy_ == URLRequestCachePolicy::UseProtocolCachePolicy &&
         mayServeOnError(reader_->response(), now());
}

std::optional<QByteArray> HTTPCacheLoad::readNextPart() {
  auto part = reader_->readNextPart();
  if (servedForLastTime_ && isStoredAtEnd())
    HTTPCacheEntry::remove(*store_, url_);
  return part;
}

} // namespace zq::platform
