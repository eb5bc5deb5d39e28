#include "zqticker/platform/system/data_source_p.h"

#include "zqticker/platform/system/url_errors.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
constexpr QByteArrayView Base64Mark = ";base64";

QByteArray withoutWhitespace(const QByteArray& text) {
  QByteArray result;
  result.reserve(text.size());
  for (const char c : text) {
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n')
      result.append(c);
  }
  return result;
}
} // namespace

void tellDataAddress(const QUrl& url, URLSourceClient& client) {
  // Behind "data:"; a fragment is no part of the body.
  const QByteArray text = url.toEncoded(QUrl::RemoveFragment).sliced(url.scheme().size() + 1);
  const qsizetype comma = text.indexOf(',');
  if (comma < 0)
    return failSource(client, BadURL, u"a data address without a comma"_s, url);
  QByteArray type = QByteArray::fromPercentEncoding(text.left(comma)).trimmed();
  QByteArray body = QByteArray::fromPercentEncoding(text.sliced(comma + 1));
  if (type.toLower().endsWith(Base64Mark)) {
    type.chop(Base64Mark.size());
    auto decoded = QByteArray::fromBase64Encoding(withoutWhitespace(body),
                                                  QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
      return failSource(client, CannotDecodeContentData, u"a data address with broken base64"_s,
                        url);
    body = *std::move(decoded);
  }
  if (type.isEmpty())
    type = "text/plain;charset=US-ASCII";
  else if (type.startsWith(';'))
    type.prepend("text/plain");
  client.sourceReceivedResponse(URLResponse::make(url, QString::fromUtf8(type), body.size()));
  if (body.isEmpty() || client.sourceReceivedData(body))
    client.sourceFinished();
}

} // namespace zq::platform
