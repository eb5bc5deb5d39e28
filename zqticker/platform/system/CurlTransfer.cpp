#include "zqticker/platform/system/CurlTransfer_p.h"

#include "zqticker/platform/system/URLConnection.h"
#include "zqticker/platform/system/curl_errors_p.h"
#include "zqticker/platform/system/http_fields_p.h"
#include "zqticker/platform/system/url_errors.h"
#include "zqticker/platform/system/user_agent_p.h"

#include <QtCore/QFile>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// Bytes that are read from a socket at once; a gigabyte takes a tenth less time than with half.
constexpr long ReadBytes = 512 << 10;

// Bytes of a body that are noted in one round, about. Left alone, curl reads a fast connection a
// hundred times in a row: megabytes that no cache of the processor holds until they are delivered.
constexpr qsizetype MostHeldBytes = qsizetype(512) << 10;

// Fields that a header has room for before it grows.
constexpr qsizetype UsualFields = 16;

// The part of an address before its path.
QByteArray serverOf(const QByteArray& address) {
  const auto* const end = address.constEnd();
  const auto* const host = std::find(address.constBegin(), end, ':') + 3; // behind "://"
  const char delimiters[] = {'/', '?'};
  return QByteArray(address.constData(),
                    std::find_first_of(host, end, std::begin(delimiters), std::end(delimiters)) -
                        address.constBegin());
}

QString secondsText(double seconds) {
  return QString::number(seconds) + (seconds == 1 ? " second"_L1 : " seconds"_L1);
}
} // namespace

CurlTransfer::CurlTransfer(CurlDriver& driver, const SourceRequest& request,
                           URLSourceClient& client)
    : driver_(driver), client_(client), request_(request.request), handle_(driver.takeHandle()) {
  setOptions(request);
  driver_.add(*this);
}

CurlTransfer::~CurlTransfer() {
  release();
}

void CurlTransfer::release() {
  if (!handle_.curl)
    return;
  driver_.remove(*this);
  set(CURLOPT_ERRORBUFFER, static_cast<char*>(nullptr));
  driver_.giveBackHandle(std::exchange(handle_, {}), handleState_);
  curl_slist_free_all(std::exchange(addedFields_, nullptr));
}

void CurlTransfer::setCommonOptions(CURL* handle) {
  const auto setCommon = [handle](CURLoption option, auto value) {
    curl_easy_setopt(handle, option, value);
  };
  setCommon(CURLOPT_PROTOCOLS_STR, "http,https");
  setCommon(CURLOPT_HEADERFUNCTION, &CurlTransfer::headerArrived);
  setCommon(CURLOPT_WRITEFUNCTION, &CurlTransfer::bodyArrived);
  setCommon(CURLOPT_PREREQFUNCTION, &CurlTransfer::isConnected);
  setCommon(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  setCommon(CURLOPT_NOSIGNAL, 1L);
  // Giving up does not wait for a host that is still being looked up.
  setCommon(CURLOPT_QUICK_EXIT, 1L);
  setCommon(CURLOPT_BUFFERSIZE, ReadBytes);
  // Idleness is counted here; curl's own limit on connecting would come first.
  setCommon(CURLOPT_CONNECTTIMEOUT_MS, long(std::numeric_limits<int>::max()));
  setCommon(CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_2TLS));
  setCommon(CURLOPT_ACCEPT_ENCODING, "");
  setCommon(CURLOPT_SSLVERSION, long(CURL_SSLVERSION_TLSv1_2));
  setCommon(CURLOPT_PROXY_SSLVERSION, long(CURL_SSLVERSION_TLSv1_2));
}

void CurlTransfer::setOptions(const SourceRequest& request) {
  const QUrl& url = request_->URL();
  set(CURLOPT_PRIVATE, this);
  set(CURLOPT_ERRORBUFFER, errorText_.data());
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEDATA, this);
  set(CURLOPT_PREREQDATA, this);
  const QByteArray address = url.toEncoded(QUrl::RemoveUserInfo | QUrl::RemoveFragment);
  server_ = serverOf(address);
  set(CURLOPT_URL, address.constData());
  set(CURLOPT_USERAGENT, userAgent().constData());
  // Only over TLS, which settles the version with the handshake: else all would wait for the first
  // answer.
  set(CURLOPT_PIPEWAIT, long(url.scheme() == "https"_L1));
  for (const auto& [name, value] : request.additionalHeaderFields) {
    const QByteArray line = name.toLatin1() + ": " + value.toUtf8();
    addedFields_ = curl_slist_append(addedFields_, line.constData());
  }
  if (addedFields_) {
    handleState_ = CurlDriver::HandleState::HasOptionsOfItsOwn;
    set(CURLOPT_HTTPHEADER, addedFields_);
  }
  setCredentials(url);
  setCertificateAuthorities();
}

void CurlTransfer::setCredentials(const QUrl& url) {
  if (url.userInfo().isEmpty())
    return;
  handleState_ = CurlDriver::HandleState::HasOptionsOfItsOwn;
  set(CURLOPT_USERNAME, url.userName(QUrl::FullyDecoded).toUtf8().constData());
  set(CURLOPT_PASSWORD, url.password(QUrl::FullyDecoded).toUtf8().constData());
}

void CurlTransfer::setCertificateAuthorities() {
  const QString path = URLConnection::certificateAuthorityFile();
  if (path == handle_.certificateAuthorities)
    return;
  handle_.certificateAuthorities = path;
  if (path.isEmpty()) {
    static const curl_version_info_data* const defaults = curl_version_info(CURLVERSION_NOW);
    setCertificateAuthorities(defaults->cainfo, defaults->capath);
  } else {
    // The system's folder would be trusted besides.
    setCertificateAuthorities(QFile::encodeName(path).constData(), nullptr);
  }
}

void CurlTransfer::setCertificateAuthorities(const char* file, const char* folder) {
  set(CURLOPT_CAINFO, file);
  set(CURLOPT_PROXY_CAINFO, file);
  set(CURLOPT_CAPATH, folder);
  set(CURLOPT_PROXY_CAPATH, folder);
}

std::optional<CurlDriver::Clock::time_point> CurlTransfer::deadline() const {
  using Duration = CurlDriver::Clock::duration;
  const double ticks =
      request_->timeoutInterval() * double(Duration::period::den) / double(Duration::period::num);
  // Half the range: the sum with a time must stay within it.
  if (!(ticks < double(Duration::max().count()) / 2))
    return std::nullopt;
  return lastProgress_ + Duration(Duration::rep(std::ceil(ticks)));
}

int CurlTransfer::isConnected(void* self, char*, char*, int, int) {
  static_cast<CurlTransfer*>(self)->noteProgress();
  return CURL_PREREQFUNC_OK;
}

std::size_t CurlTransfer::headerArrived(char* bytes, std::size_t, std::size_t count, void* self) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  transfer.noteProgress();
  return transfer.takeHeaderLine(QByteArrayView(bytes, qsizetype(count))) ? count : 0;
}

std::size_t CurlTransfer::bodyArrived(char* bytes, std::size_t, std::size_t count, void* self) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  transfer.noteProgress();
  if (count > 0 && !transfer.client_.sourceReceivedData(QByteArrayView(bytes, qsizetype(count)))) {
    transfer.isFailed_ = true;
    return CURL_WRITEFUNC_ERROR;
  }
  transfer.heldBytes_ += qsizetype(count);
  transfer.pauseIfEnough();
  return count;
}

void CurlTransfer::pauseIfEnough() {
  // While it is paused, curl decodes the rest of a compressed piece into memory of its own.
  if (isPaused_ || isEncoded_ || heldBytes_ < MostHeldBytes)
    return;
  isPaused_ = true;
  driver_.resumeAfterRound(*this);
  curl_easy_pause(handle_.curl, CURLPAUSE_RECV);
}

void CurlTransfer::failToStart(CURLMcode result) {
  fail(Unknown, QString::fromLatin1(curl_multi_strerror(result)));
}

void CurlTransfer::resume() {
  heldBytes_ = 0;
  isPaused_ = false;
  curl_easy_pause(handle_.curl, CURLPAUSE_CONT);
}

bool CurlTransfer::takeHeaderLine(QByteArrayView line) {
  headerBytes_ += line.size();
  if (headerBytes_ > MostHeaderBytes) {
    fail(BadServerResponse,
         u"the header of the answer is larger than the limit of %1 bytes"_s.arg(MostHeaderBytes));
    return false;
  }
  if (line.startsWith("HTTP/")) {
    isInHeader_ = true;
    fields_.clear();
    fields_.reserve(UsualFields);
    long status = 0;
    curl_easy_getinfo(handle_.curl, CURLINFO_RESPONSE_CODE, &status);
    status_ = int(status);
  } else if (!isInHeader_) {
    return true;
  } else if (const QByteArrayView text = line.trimmed(); text.isEmpty()) {
    isInHeader_ = false;
    tellResponse();
  } else if (line.front() == ' ' || line.front() == '\t') {
    // A folded line goes on with the value before it.
    if (!fields_.isEmpty())
      fields_.last().second += u' ' + textOfField(text);
  } else if (const qsizetype colon = text.indexOf(':'); colon > 0) {
    fields_.append(
        {textOfField(text.first(colon).trimmed()), textOfField(text.sliced(colon + 1).trimmed())});
  }
  return true;
}

void CurlTransfer::tellResponse() {
  // Another header follows one that only informs.
  if (status_ < 200)
    return;
  hasResponse_ = true;
  isEncoded_ = isContentEncoded(fields_);
  client_.sourceReceivedResponse(URLResponse::make(request_->URL(), status_, fields_));
}

void CurlTransfer::fail(int code, const QString& text) {
  if (std::exchange(isFailed_, true))
    return;
  failSource(client_, code, text, request_->URL());
}

void CurlTransfer::timeOut() {
  fail(TimedOut, u"timed out: nothing was heard from %1 for %2"_s.arg(
                     request_->URL().host(), secondsText(request_->timeoutInterval())));
  release();
}

void CurlTransfer::finish(CURLcode result) {
  if (result == CURLE_OK && hasResponse_) {
    client_.sourceFinished();
  } else if (!isFailed_) {
    const CurlFailure failure = {handle_.curl, result, QString::fromUtf8(errorText_.data()),
                                 request_->URL(), hasResponse_};
    const auto [code, text] = describeFailure(failure);
    fail(code, text);
  }
  release();
}

} // namespace zq::platform
