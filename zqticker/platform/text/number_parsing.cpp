#include "zqticker/platform/text/number_parsing.h"

#include <QtCore/QByteArray>

#include <clocale>
#include <cstdlib>

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

} // namespace

float floatValue(QStringView text) {
  qsizetype start = 0;
  while (start < text.size() && text[start].isSpace())
    ++start;
  // The C library's conversion rounds once and gives infinity and zero at the ends of the range.
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtof_l(numericPrefix(text.mid(start)).constData(), nullptr, cLocale);
}

} // namespace zq::platform
