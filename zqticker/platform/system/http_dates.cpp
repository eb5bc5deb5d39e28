#include "zqticker/platform/system/http_dates_p.h"

#include <QtCore/QDateTime>
#include <QtCore/QList>
#include <QtCore/QString>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

constexpr qint64 secondsOfADay = 86'400;
constexpr qint64 julianDayOf1970 = 2'440'588;

bool isDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

// A number of `minimum` to `maximum` ASCII digits.
std::optional<int> number(QStringView text, int minimum, int maximum) {
  if (text.size() < minimum || text.size() > maximum ||
      !std::all_of(text.begin(), text.end(), isDigit))
    return std::nullopt;
  return text.toInt();
}

std::optional<int> monthOf(QStringView text) {
  static constexpr std::array months = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                        u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
  for (size_t i = 0; i < months.size(); ++i) {
    if (text.compare(QStringView(months[i]), Qt::CaseInsensitive) == 0)
      return int(i) + 1;
  }
  return std::nullopt;
}

// Seconds since midnight of "08:49:37"; a leap second counts as the first of the next minute.
std::optional<qint64> secondsOfTime(QStringView text) {
  const QList<QStringView> parts = text.split(u':');
  if (parts.size() != 3)
    return std::nullopt;
  const auto hour = number(parts[0], 2, 2);
  const auto minute = number(parts[1], 2, 2);
  const auto second = number(parts[2], 2, 2);
  if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 60)
    return std::nullopt;
  return (*hour * 60 + *minute) * 60 + *second;
}

std::optional<qint64> secondsOf(std::optional<int> year, std::optional<int> month,
                                std::optional<int> day, QStringView time) {
  const auto seconds = secondsOfTime(time);
  if (!year || !month || !day || !seconds)
    return std::nullopt;
  const QDate date(*year, *month, *day);
  if (!date.isValid())
    return std::nullopt;
  return (date.toJulianDay() - julianDayOf1970) * secondsOfADay + *seconds;
}

bool isUTC(QStringView zone) {
  return zone.compare("GMT"_L1, Qt::CaseInsensitive) == 0 ||
         zone.compare("UTC"_L1, Qt::CaseInsensitive) == 0;
}

// The full year of two digits, at most 50 years ahead.
std::optional<int> fullYear(std::optional<int> twoDigits, qint64 now) {
  if (!twoDigits)
    return std::nullopt;
  const int thisYear = QDate::fromJulianDay(now / secondsOfADay + julianDayOf1970).year();
  const int year = thisYear / 100 * 100 + *twoDigits;
  return year > thisYear + 50 ? year - 100 : year;
}

} // namespace

std::optional<qint64> secondsOfHTTPDate(QStringView text, qint64 now) {
  const QList<QStringView> words = text.trimmed().split(u' ', Qt::SkipEmptyParts);
  if (words.size() == 6 && words[0].endsWith(u',') && isUTC(words[5]))
    return secondsOf(number(words[3], 4, 4), monthOf(words[2]), number(words[1], 1, 2), words[4]);
  if (words.size() == 4 && words[0].endsWith(u',') && isUTC(words[3])) {
    const QList<QStringView> date = words[1].split(u'-');
    if (date.size() != 3)
      return std::nullopt;
    return secondsOf(fullYear(number(date[2], 2, 2), now), monthOf(date[1]), number(date[0], 2, 2),
                     words[2]);
  }
  if (words.size() == 5)
    return secondsOf(number(words[4], 4, 4), monthOf(words[1]), number(words[2], 1, 2), words[3]);
  return std::nullopt;
}

} // namespace zq::platform
