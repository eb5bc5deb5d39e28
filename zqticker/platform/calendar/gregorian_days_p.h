// The Gregorian calendar as arithmetic, reckoned backwards without end: there is a year 0, and no
// day belongs to the Julian calendar.
#pragma once

#include <QtCore/QtGlobal>

namespace zq::platform {

inline constexpr qint64 SecondsPerDay = 86'400;

// Quotient and remainder towards minus infinity; `divisor` is positive.
constexpr qint64 floorQuotient(qint64 number, qint64 divisor) {
  return number / divisor - (number % divisor < 0);
}
constexpr qint64 floorRemainder(qint64 number, qint64 divisor) {
  return number - floorQuotient(number, divisor) * divisor;
}

// Whether `number` is between -limit and limit; the least number of all has no absolute value.
constexpr bool isWithin(qint64 number, qint64 limit) {
  return -limit <= number && number <= limit;
}

struct GregorianDay {
  qint64 year;
  int month; // from 1 on
  int day;   // from 1 on
};

namespace gregorian {
// Years begin with March here, so that the leap day is the last of its year; day 0 is then
// 0000-03-01.
inline constexpr qint64 DaysTo1970 = 719'468;
inline constexpr qint64 DaysPer400Years = 146'097;
inline constexpr qint64 DaysPer100Years = 36'524;
inline constexpr qint64 DaysPer4Years = 1'461;

// Days before the month, counted from March; five months have 153 days.
constexpr qint64 daysBeforeMonth(qint64 monthFromMarch) {
  return (153 * monthFromMarch + 2) / 5;
}
} // namespace gregorian

// Days from 1970-01-01 to the first day of `month`, which is 1 to 12, of a year of at most 10^12.
constexpr qint64 daysToGregorianMonth(qint64 year, int month) {
  using namespace gregorian;
  const qint64 marchYear = month > 2 ? year : year - 1;
  const qint64 monthFromMarch = month > 2 ? month - 3 : month + 9;
  const qint64 cycle = floorQuotient(marchYear, 400);
  const qint64 yearOfCycle = marchYear - cycle * 400;
  return cycle * DaysPer400Years + yearOfCycle * 365 + yearOfCycle / 4 - yearOfCycle / 100 +
         daysBeforeMonth(monthFromMarch) - DaysTo1970;
}

// The day that is `days` after 1970-01-01.
constexpr GregorianDay gregorianDay(qint64 days) {
  using namespace gregorian;
  const qint64 fromMarch = days + DaysTo1970;
  const qint64 cycle = floorQuotient(fromMarch, DaysPer400Years);
  const qint64 dayOfCycle = fromMarch - cycle * DaysPer400Years;
  // The last day of 4 and of 400 years is a leap day, that of 100 years is none.
  const qint64 yearOfCycle = (dayOfCycle - dayOfCycle / (DaysPer4Years - 1) +
                              dayOfCycle / DaysPer100Years - dayOfCycle / (DaysPer400Years - 1)) /
                             365;
  const qint64 dayOfYear = dayOfCycle - (yearOfCycle * 365 + yearOfCycle / 4 - yearOfCycle / 100);
  const qint64 monthFromMarch = (5 * dayOfYear + 2) / 153;
  const int month = static_cast<int>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
  return {cycle * 400 + yearOfCycle + (month <= 2), month,
          static_cast<int>(dayOfYear - daysBeforeMonth(monthFromMarch)) + 1};
}

// 0 for Sunday to 6 for Saturday.
constexpr int weekdayOfDays(qint64 days) {
  return static_cast<int>(floorRemainder(days + 4, 7));
}

constexpr bool isGregorianLeapYear(qint64 year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

} // namespace zq::platform
