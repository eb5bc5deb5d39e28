// Reading the fields of an HTTP header that say what a body is.
#pragma once

#include "zqticker/platform/system/URLResponse.h"

#include <QtCore/QByteArrayView>

namespace zq::platform {

struct ContentType {
  // In lower case; empty where none is stated.
  QString mimeType;
  std::optional<QString> charset;
};

// Reads "text/html; charset=\"utf-8\"". What cannot be read is left out.
ContentType contentTypeFromText(QStringView text);

// The value of `name`, whatever its case, repeated ones joined by ", "; nothing without one.
std::optional<QString> valueOfField(const HTTPHeaderFields& fields, QStringView name);

// The text of a name or a value: UTF-8, or Latin-1 where it is not that.
QString textOfField(QByteArrayView bytes);

// The length that Content-Length states; -1 where it states none or differing ones, or where the
// body comes in chunks. A length beyond the numbers is the largest one.
qint64 announcedLength(const HTTPHeaderFields& fields);

// Whether the body is compressed, so that its announced length is not that of the decoded bytes.
bool isContentEncoded(const HTTPHeaderFields& fields);

} // namespace zq::platform
