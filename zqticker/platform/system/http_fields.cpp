#include "zqticker/platform/system/http_fields_p.h"

#include <QtCore/QStringDecoder>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// Reads a parameter's value at the start of `text`, quoted or not, and moves `text` behind it.
QString takeParameterValue(QStringView& text) {
  QString value;
  if (!text.startsWith(u'"')) {
    const qsizetype end = text.indexOf(u';');
    value = text.left(end < 0 ? text.size() : end).trimmed().toString();
    text = end < 0 ? QStringView() : text.sliced(end);
    return value;
  }
  qsizetype i = 1;
  for (; i < text.size() && text[i] != u'"'; ++i) {
    if (text[i] == u'\\' && i + 1 < text.size())
      ++i;
    value += text[i];
  }
  text = text.sliced(std::min(i + 1, text.size()));
  return value;
}

// The number that `text` states; nothing for what is no number.
std::optional<qint64> lengthFromText(QStringView text) {
  const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
  if (text.isEmpty() || !std::all_of(text.begin(), text.end(), isDigit))
    return std::nullopt;
  bool fits = false;
  const qint64 length = text.toLongLong(&fits);
  return fits ? length : std::numeric_limits<qint64>::max();
}
} // namespace

ContentType contentTypeFromText(QStringView text) {
  ContentType result;
  const qsizetype end = text.indexOf(u';');
  result.mimeType = text.left(end < 0 ? text.size() : end).trimmed().toString().toLower();
  text = end < 0 ? QStringView() : text.sliced(end);
  while (!text.isEmpty()) {
    // At a semicolon, or at what follows a quoted value.
    const qsizetype next = text.indexOf(u';');
    if (next < 0)
      break;
    text = text.sliced(next + 1).trimmed();
    const qsizetype equals = text.indexOf(u'=');
    const qsizetype semicolon = text.indexOf(u';');
    if (equals < 0)
      break;
    if (semicolon >= 0 && semicolon < equals)
      continue;
    const QStringView name = text.left(equals).trimmed();
    text = text.sliced(equals + 1).trimmed();
    const QString value = takeParameterValue(text);
    if (!result.charset && !value.isEmpty() && name.compare("charset"_L1, Qt::CaseInsensitive) == 0)
      result.charset = value;
  }
  return result;
}

std::optional<QString> valueOfField(const HTTPHeaderFields& fields, QStringView name) {
  std::optional<QString> joined;
  for (const auto& [fieldName, value] : fields) {
    if (name.size() != fieldName.size() || name.compare(fieldName, Qt::CaseInsensitive) != 0)
      continue;
    joined = joined ? *joined + ", "_L1 + value : value;
  }
  return joined;
}

QString textOfField(QByteArrayView bytes) {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::all_of(bytes.begin(), bytes.end(), isAscii))
    return QString::fromLatin1(bytes);
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  const QString text = decoder(bytes);
  return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

qint64 announcedLength(const HTTPHeaderFields& fields) {
  if (valueOfField(fields, u"Transfer-Encoding"))
    return -1;
  const std::optional<QString> stated = valueOfField(fields, u"Content-Length");
  if (!stated)
    return -1;
  std::optional<qint64> length;
  for (const QStringView part : QStringView(*stated).split(u',')) {
    const std::optional<qint64> found = lengthFromText(part.trimmed());
    if (!found || (length && *length != *found))
      return -1;
    length = found;
  }
  return length.value_or(-1);
}

bool isContentEncoded(const HTTPHeaderFields& fields) {
  const std::optional<QString> encoding = valueOfField(fields, u"Content-Encoding");
  return encoding && !encoding->isEmpty() &&
         encoding->compare("identity"_L1, Qt::CaseInsensitive) != 0;
}

} // namespace zq::platform
