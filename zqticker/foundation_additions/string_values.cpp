// Strings read as numbers, truth values and bytes.
#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/Scanner.h"

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq {

using platform::InvalidArgumentException;
using platform::Scanner;

namespace {

constexpr char16_t AsciiEnd = 0x80;

// The values of the hexadecimal digits of ASCII, 0 for everything else.
constexpr std::array<uchar, AsciiEnd> HexDigitValues = [] {
  std::array<uchar, AsciiEnd> values{};
  for (int i = 0; i < 10; ++i)
    values[std::size_t('0' + i)] = uchar(i);
  for (int i = 0; i < 6; ++i)
    values[std::size_t('A' + i)] = values[std::size_t('a' + i)] = uchar(10 + i);
  return values;
}();

} // namespace

unsigned long unsignedLongValue(const QString& string) {
  qint64 value = 0;
  bool isOutOfRange = false;
  if (!Scanner(string).scanLongLong(&value, &isOutOfRange) || isOutOfRange)
    return 0;
  return std::in_range<unsigned long>(value) ? static_cast<unsigned long>(value) : 0;
}

bool boolValue(const QString& string) {
  // Deliberately no more than this: "NO" and "false" are true, and callers rely on it.
  return string != "0"_L1;
}

std::optional<QByteArray> hexValue(const QString& string) {
  if (string.isEmpty())
    return std::nullopt;
  const QStringView text(string);
  const qsizetype nul = text.indexOf(QChar(QChar::Null));
  const qsizetype end = nul < 0 ? text.size() : nul;
  QByteArray bytes((text.size() + 1) / 2, '\0');
  char* byte = bytes.data();
  char16_t all = 0;
  const auto valueAt = [&](qsizetype i) {
    const char16_t c = text[i].unicode();
    all |= c;
    return HexDigitValues[c % AsciiEnd];
  };
  qsizetype i = 0;
  for (; i + 1 < end; i += 2)
    *byte++ = char(valueAt(i) << 4 | valueAt(i + 1));
  // A single digit at the end is not shifted.
  if (i < end)
    *byte = char(valueAt(i));
  for (i = end; i < text.size(); ++i)
    all |= text[i].unicode();
  if (all >= AsciiEnd)
    throw InvalidArgumentException(u"A hexadecimal string holds ASCII only"_s);
  return bytes;
}

} // namespace zq
