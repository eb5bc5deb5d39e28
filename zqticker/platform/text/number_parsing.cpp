#include "zqticker/platform/text/number_parsing.h"

#include <QtCore/QByteArray>

#include <clocale>
#include <cstdlib>
#include <limits>

namespace zq::platform {

namespace {

bool isDigit(QStringView text, qsizetype index) {
  return index < text.size() && text[index] >= u'0' && text[index] <= u'9';
}

qsizetype skipDigits(QStringView text, qsizetype index) {
  while (isDigit(text, index))
    ++index;
  return index;
}

bool isAt(QStringView text, qsizetype index, QStringView characters) {
  return index < text.size() && characters.contains(text[index]);
}

// The numeric prefix in ASCII, without a leading plus; empty where there is none.
QByteArray numericPrefix(QStringView text) {
  const qsizetype start = isAt(text, 0, u"+-") ? 1 : 0;
  qsizetype end = skipDigits(text, start);
  bool hasDigits = end > start;
  if (isAt(text, end, u".")) {
    const qsizetype fraction = end + 1;
    const qsizetype afterFraction = skipDigits(text, fraction);
    hasDigits = hasDigits || afterFraction > fraction;
    end = afterFraction;
  }
  if (!hasDigits)
    return {};
  if (isAt(text, end, u"eE")) {
    const qsizetype exponent = isAt(text, end + 1, u"+-") ? end + 2 : end + 1;
    if (isDigit(text, exponent))
      end = skipDigits(text, exponent);
  }
  const bool plus = text.front() == u'+';
  return text.first(end).mid(plus ? 1 : 0).toLatin1();
}

QStringView skipSpace(QStringView text) {
  qsizetype start = 0;
  while (start < text.size() && text[start].isSpace())
    ++start;
  return text.mid(start);
}

// The C library's conversions round once and give infinity and zero at the ends of the range.
locale_t cLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

template <class Integer>
Integer wholeNumber(QStringView text) {
  constexpr Integer Lowest = std::numeric_limits<Integer>::min();
  const bool isNegative = text.startsWith(u'-');
  Integer value = 0; // of the negative number, since there is one more of those
  for (qsizetype index = isAt(text, 0, u"+-") ? 1 : 0; isDigit(text, index); ++index) {
    const auto digit = Integer(text[index].unicode() - u'0');
    if (value < (Lowest + digit) / 10)
      return isNegative ? Lowest : std::numeric_limits<Integer>::max();
    value = value * 10 - digit;
  }
  if (isNegative)
    return value;
  return value == Lowest ? std::numeric_limits<Integer>::max() : -value;
}

} // namespace

float floatValue(QStringView text) {
  return strtof_l(numericPrefix(skipSpace(text)).constData(), nullptr, cLocale());
}

double doubleValue(QStringView text) {
  return strtod_l(numericPrefix(skipSpace(text)).constData(), nullptr, cLocale());
}

qlonglong longLongValue(QStringView text) {
  return wholeNumber<qlonglong>(skipSpace(text));
}

int intValue(QStringView text) {
  return wholeNumber<int>(skipSpace(text));
}

} // namespace zq::platform
