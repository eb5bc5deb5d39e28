#include "zqticker/platform/system/URLResponse.h"

#include "zqticker/platform/system/http_fields_p.h"

namespace zq::platform {

URLResponse::URLResponse(const QUrl& url, int statusCode, const HTTPHeaderFields& headerFields,
                         const QString& contentType, qint64 expectedContentLength)
    : url_(url), statusCode_(statusCode), headerFields_(headerFields), contentType_(contentType),
      expectedContentLength_(expectedContentLength) {}

QString URLResponse::MIMEType() const {
  return contentTypeFromText(contentType_).mimeType;
}

std::optional<QString> URLResponse::textEncodingName() const {
  return contentTypeFromText(contentType_).charset;
}

Ref<URLResponse> URLResponse::make(const QUrl& url, int statusCode,
                                   const HTTPHeaderFields& headerFields) {
  return make(url, statusCode, headerFields,
              isContentEncoded(headerFields) ? -1 : announcedLength(headerFields));
}

Ref<URLResponse> URLResponse::make(const QUrl& url, int statusCode,
                                   const HTTPHeaderFields& headerFields,
                                   qint64 expectedContentLength) {
  return Ref<URLResponse>(new URLResponse(
      url, statusCode, headerFields,
      valueOfField(headerFields, u"Content-Type").value_or(QString()), expectedContentLength));
}

Ref<URLResponse> URLResponse::make(const QUrl& url, const QString& contentType,
                                   qint64 expectedContentLength) {
  return Ref<URLResponse>(new URLResponse(url, 0, {}, contentType, expectedContentLength));
}

std::optional<QString> URLResponse::valueForHTTPHeaderField(QStringView name) const {
  return valueOfField(headerFields_, name);
}

} // namespace zq::platform
