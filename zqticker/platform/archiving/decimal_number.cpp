#include "zqticker/platform/archiving/decimal_number_p.h"

#include "zqticker/platform/archiving/number_text.h"

#include <cstdlib>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

constexpr qint64 MaximumWordCount = 8;
constexpr qint64 MaximumExponent = 1000;

// The decimal digits of a number of 16-bit words, the most significant word last.
QByteArray digitsOf(std::vector<quint16> words) {
  QByteArray digits;
  while (!words.empty()) {
    quint32 remainder = 0;
    for (auto word = words.rbegin(); word != words.rend(); ++word) {
      remainder = remainder << 16 | *word;
      *word = quint16(remainder / 10);
      remainder %= 10;
    }
    digits.prepend(char('0' + remainder));
    while (!words.empty() && words.back() == 0)
      words.pop_back();
  }
  return digits.isEmpty() ? QByteArray("0") : digits;
}

} // namespace

Any decimalNumber(const DecimalParts& parts) {
  if (parts.wordCount < 0 || parts.wordCount > MaximumWordCount ||
      parts.mantissa.size() < 2 * parts.wordCount || std::abs(parts.exponent) > MaximumExponent ||
      (parts.byteOrder != DecimalParts::LittleEndian && parts.byteOrder != DecimalParts::BigEndian))
    return {};
  if (parts.wordCount == 0)
    return parts.isNegative ? Any(std::numeric_limits<double>::quiet_NaN()) : Any(qlonglong(0));
  std::vector<quint16> words;
  for (qsizetype i = 0; i < parts.wordCount; ++i) {
    const auto first = uchar(parts.mantissa[2 * i]);
    const auto second = uchar(parts.mantissa[2 * i + 1]);
    words.push_back(parts.byteOrder == DecimalParts::BigEndian ? quint16(first << 8 | second)
                                                               : quint16(second << 8 | first));
  }
  QByteArray text = (parts.isNegative ? "-" : "") + digitsOf(std::move(words));
  if (parts.exponent >= 0 && parts.exponent < 20) {
    bool isWhole = false;
    const qlonglong whole = QByteArray(text + QByteArray(parts.exponent, '0')).toLongLong(&isWhole);
    if (isWhole)
      return whole;
  }
  text += "e" + QByteArray::number(parts.exponent);
  return *numberOfText(QString::fromLatin1(text));
}

} // namespace zq::platform
