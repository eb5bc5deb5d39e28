#include "zqticker/platform/system/curl_errors_p.h"

#include "zqticker/platform/system/url_errors.h"

#include <QtCore/QRegularExpression>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
QString curlText(const CurlFailure& failure) {
  const QString text = failure.text.isEmpty()
                           ? QString::fromLatin1(curl_easy_strerror(failure.result))
                           : failure.text;
  return text.simplified();
}

// Where curl tried to connect to: the host of the address, or a proxy.
std::pair<QString, QString> connectionTarget(const CurlFailure& failure) {
  static const QRegularExpression pattern(u"^Failed to connect to (\\S+) port (\\d+)"_s);
  if (const auto match = pattern.match(failure.text); match.hasMatch())
    return {match.captured(1), match.captured(2)};
  const int port = failure.url.port(failure.url.scheme() == "https"_L1 ? 443 : 80);
  return {failure.url.host(), QString::number(port)};
}

QString connectText(const CurlFailure& failure) {
  const auto [host, port] = connectionTarget(failure);
  long error = 0;
  curl_easy_getinfo(failure.handle, CURLINFO_OS_ERRNO, &error);
  if (error == ECONNREFUSED)
    return u"connection to %1 port %2 refused"_s.arg(host, port);
  const QString reason = error ? QString::fromLocal8Bit(std::strerror(int(error))).toLower()
                               : u"no connection could be made"_s;
  return u"could not connect to %1 port %2: %3"_s.arg(host, port, reason);
}

QString shortBodyText(const CurlFailure& failure) {
  curl_off_t announced = -1;
  curl_off_t received = 0;
  curl_easy_getinfo(failure.handle, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
  curl_easy_getinfo(failure.handle, CURLINFO_SIZE_DOWNLOAD_T, &received);
  const QString host = failure.url.host();
  if (announced >= 0 && received < announced)
    return u"the connection to %1 was closed after %2 of %3 bytes"_s.arg(
        host, QString::number(received), QString::number(announced));
  return u"the connection to %1 was closed before the end of the body"_s.arg(host);
}
} // namespace

std::pair<int, QString> describeFailure(const CurlFailure& failure) {
  const QString host = failure.url.host();
  switch (failure.result) {
  case CURLE_COULDNT_RESOLVE_HOST:
    return {CannotFindHost, "could not resolve host "_L1 + host};
  case CURLE_COULDNT_RESOLVE_PROXY:
    return {CannotFindHost, "could not resolve the proxy for "_L1 + host};
  case CURLE_COULDNT_CONNECT:
  case CURLE_PROXY:
    return {CannotConnectToHost, connectText(failure)};
  case CURLE_OPERATION_TIMEDOUT:
    return {TimedOut, "timed out: "_L1 + host};
  case CURLE_PARTIAL_FILE:
    return {NetworkConnectionLost, shortBodyText(failure)};
  case CURLE_GOT_NOTHING:
    return {NetworkConnectionLost,
            u"the connection to %1 was closed without an answer"_s.arg(host)};
  case CURLE_RECV_ERROR:
  case CURLE_SEND_ERROR:
  case CURLE_HTTP2:
  case CURLE_HTTP2_STREAM:
    return {NetworkConnectionLost, failure.hasResponse
                                       ? shortBodyText(failure)
                                       : u"the connection to %1 was lost"_s.arg(host)};
  case CURLE_PEER_FAILED_VERIFICATION:
    return {ServerCertificateUntrusted,
            u"the certificate of %1 is not trusted: %2"_s.arg(host, curlText(failure))};
  case CURLE_SSL_CONNECT_ERROR:
  case CURLE_SSL_CIPHER:
  case CURLE_SSL_CACERT_BADFILE:
  case CURLE_SSL_INVALIDCERTSTATUS:
    return {SecureConnectionFailed,
            u"no secure connection to %1: %2"_s.arg(host, curlText(failure))};
  case CURLE_BAD_CONTENT_ENCODING:
  case CURLE_WRITE_ERROR:
    return {CannotDecodeContentData, u"the compressed body from %1 cannot be decoded"_s.arg(host)};
  case CURLE_WEIRD_SERVER_REPLY:
  case CURLE_UNSUPPORTED_PROTOCOL:
    return {BadServerResponse, u"the answer of %1 is not valid HTTP"_s.arg(host)};
  case CURLE_OUT_OF_MEMORY:
    if (!failure.hasResponse)
      return {BadServerResponse,
              u"a header line of the answer is longer than %1 bytes"_s.arg(CURL_MAX_HTTP_HEADER)};
    return {Unknown, curlText(failure)};
  case CURLE_URL_MALFORMAT:
    return {BadURL, "unusable address: "_L1 + curlText(failure)};
  default:
    return {Unknown, u"%1: %2"_s.arg(host, curlText(failure))};
  }
}

} // namespace zq::platform
