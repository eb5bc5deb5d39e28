// What a server, a file or a data address says about the body that follows.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QList>
#include <QtCore/QStringView>
#include <QtCore/QUrl>

#include <optional>
#include <utility>

namespace zq::platform {

// The fields of a header in order, names as sent. Values that are not UTF-8 are read as Latin-1.
using HTTPHeaderFields = QList<std::pair<QString, QString>>;

// One response. Never changes once made.
//
// Thread: any.
class ZQTICKER_EXPORT URLResponse : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSURLResponse")

 public:
  // A response of HTTP: MIME type, text encoding and, where it is not given, the expected length
  // are read from `headerFields`.
  static Ref<URLResponse> make(const QUrl& url, int statusCode,
                               const HTTPHeaderFields& headerFields);
  static Ref<URLResponse> make(const QUrl& url, int statusCode,
                               const HTTPHeaderFields& headerFields, qint64 expectedContentLength);
  // A response without status or header. `contentType` may carry parameters.
  static Ref<URLResponse> make(const QUrl& url, const QString& contentType,
                               qint64 expectedContentLength);

  // The address that answered, after redirects.
  const QUrl& URL() const { return url_; }

  // In lower case, without parameters ("text/html"); empty when it was not stated.
  QString MIMEType() const;

  // The charset parameter of the content type as sent, without quotes; nothing without one.
  std::optional<QString> textEncodingName() const;

  // Bytes of the body as it will be delivered; -1 when unknown, also when the body is compressed.
  // A statement of the sender, not a promise.
  qint64 expectedContentLength() const { return expectedContentLength_; }

  // The status of HTTP; 0 for other schemes.
  int statusCode() const { return statusCode_; }

  // Empty for schemes other than http and https.
  const HTTPHeaderFields& allHeaderFields() const { return headerFields_; }

  // The value of the field `name`, whatever its case; values of a repeated field are joined by
  // ", ". Nothing where there is no such field.
  std::optional<QString> valueForHTTPHeaderField(QStringView name) const;

 private:
  URLResponse(const QUrl& url, int statusCode, const HTTPHeaderFields& headerFields,
              const QString& contentType, qint64 expectedContentLength);

  QUrl url_;
  int statusCode_;
  HTTPHeaderFields headerFields_;
  QString contentType_;
  qint64 expectedContentLength_;
};

} // namespace zq::platform
