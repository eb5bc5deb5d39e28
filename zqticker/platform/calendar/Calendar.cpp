#include "zqticker/platform/calendar/Calendar.h"

#include "zqticker/platform/calendar/gregorian_days_p.h"
#include "zqticker/platform/calendar/other_calendars_p.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::platform {

const QString GregorianCalendar = u"gregorian"_s;

namespace {
constexpr qint64 UnixSecondsOfReference = static_cast<qint64>(TimeIntervalSince1970);
// Seconds of 5,704,000 years from the reference date.
constexpr double FarthestDate = 1.8e14;
// Some more, so that months may carry.
constexpr qint64 FarthestYear = 1'000'000'000;

constexpr qint64 CommonEra = 1;
constexpr qint64 EraBefore = 0;

// A sum that knows when it has become too large.
class CheckedSum {
 public:
  void add(qint64 number, qint64 unit) {
    qint64 product = 0;
    failed_ |= __builtin_mul_overflow(number, unit, &product);
    failed_ |= __builtin_add_overflow(sum_, product, &sum_);
  }
  std::optional<qint64> value() const { return failed_ ? std::nullopt : std::optional(sum_); }

 private:
  qint64 sum_ = 0;
  bool failed_ = false;
};

// Days from 1970-01-01 to the first day of the month.
std::optional<qint64> daysToMonthOf(const DateComponents& components) {
  qint64 year = components.year.value_or(1);
  const qint64 month = components.month.value_or(1);
  const qint64 era = components.era.value_or(CommonEra);
  if (!isWithin(year, FarthestYear) || !isWithin(month, FarthestYear) ||
      (era != CommonEra && era != EraBefore))
    return std::nullopt;
  if (era == EraBefore)
    year = 1 - year;
  return daysToGregorianMonth(year + floorQuotient(month - 1, 12),
                              static_cast<int>(floorRemainder(month - 1, 12)) + 1);
}

CalendarDay dayInEra(const GregorianDay& day) {
  const bool isCommon = day.year > 0;
  return {isCommon ? CommonEra : EraBefore, isCommon ? day.year : 1 - day.year, day.month, day.day};
}
} // namespace

Calendar::Calendar(const QString& identifier, const TimeZone& timeZone, const Locale& locale)
    : identifier_(identifier), timeZone_(timeZone), locale_(locale),
      isGregorian_(identifier == GregorianCalendar || identifier == "iso8601"_L1) {}

std::optional<Calendar> Calendar::calendarWithIdentifier(const QString& identifier) {
  if (!isCalendarIdentifier(identifier))
    return std::nullopt;
  return Calendar(identifier, TimeZone::defaultTimeZone(), Locale::currentLocale());
}

Calendar Calendar::currentCalendar() {
  return ofLocale(Locale::currentLocale());
}

Calendar Calendar::ofLocale(const Locale& locale) {
  return Calendar(locale.calendarIdentifier(), TimeZone::defaultTimeZone(), locale);
}

bool Calendar::reaches(const Date& date) {
  // Not a number is not reached either.
  return std::abs(date.timeIntervalSinceReferenceDate()) <= FarthestDate;
}

void Calendar::setTimeZone(const std::optional<TimeZone>& timeZone) {
  timeZone_ = timeZone ? *timeZone : TimeZone::defaultTimeZone();
}

// Seconds on the zone's clocks since they showed 1970-01-01.
std::optional<qint64> Calendar::localSeconds(const Date& date) const {
  if (!reaches(date))
    return std::nullopt;
  const double interval = date.timeIntervalSinceReferenceDate();
  const qint64 seconds = static_cast<qint64>(std::floor(interval)) + UnixSecondsOfReference;
  return seconds + timeZone_.offsetAt(seconds);
}

std::optional<Date> Calendar::dateFromComponents(const DateComponents& components) const {
  const std::optional<qint64> days =
      isGregorian_ ? daysToMonthOf(components)
                   : daysToMonth(identifier_, components.era, components.year.value_or(1),
                                 components.month.value_or(1));
  if (!days)
    return std::nullopt;
  CheckedSum sum;
  sum.add(*days - 1, SecondsPerDay);
  sum.add(components.day.value_or(1), SecondsPerDay);
  sum.add(components.hour.value_or(0), 3600);
  sum.add(components.minute.value_or(0), 60);
  sum.add(components.second.value_or(0), 1);
  const std::optional<qint64> local = sum.value();
  if (!local || std::abs(static_cast<double>(*local)) > 2 * FarthestDate)
    return std::nullopt;
  const auto interval =
      static_cast<double>(*local - timeZone_.offsetOfLocal(*local) - UnixSecondsOfReference);
  return reaches(Date(interval)) ? std::optional(Date(interval)) : std::nullopt;
}

DateComponents Calendar::components(unsigned units, const Date& fromDate) const {
  DateComponents components;
  const std::optional<qint64> local = localSeconds(fromDate);
  if (!local)
    return components;
  const qint64 days = floorQuotient(*local, SecondsPerDay);
  const std::optional<CalendarDay> day =
      isGregorian_ ? dayInEra(gregorianDay(days)) : calendarDay(identifier_, days);
  if (!day)
    return components;
  const qint64 second = *local - days * SecondsPerDay;
  const auto set = [units](CalendarUnit unit, std::optional<qint64>& field, qint64 value) {
    if (units & unit)
      field = value;
  };
  set(EraCalendarUnit, components.era, day->era);
  set(YearCalendarUnit, components.year, day->year);
  set(MonthCalendarUnit, components.month, day->month);
  set(DayCalendarUnit, components.day, day->day);
  set(HourCalendarUnit, components.hour, second / 3600);
  set(MinuteCalendarUnit, components.minute, second / 60 % 60);
  set(SecondCalendarUnit, components.second, second % 60);
  return components;
}

std::optional<qint64> Calendar::ordinalityOfUnit(CalendarUnit unit, CalendarUnit inUnit,
                                                 const Date& forDate) const {
  const std::optional<qint64> local = localSeconds(forDate);
  if (unit != DayCalendarUnit || !local)
    return std::nullopt;
  const qint64 days = floorQuotient(*local, SecondsPerDay);
  if (inUnit == MonthCalendarUnit)
    return components(DayCalendarUnit, forDate).day;
  if (inUnit == YearCalendarUnit)
    return isGregorian_ ? days - daysToGregorianMonth(gregorianDay(days).year, 1) + 1
                        : dayOfYear(identifier_, days);
  if (inUnit != EraCalendarUnit)
    return std::nullopt;
  if (isGregorian_)
    return days - daysToGregorianMonth(1, 1) + 1;
  const std::optional<CalendarDay> day = calendarDay(identifier_, days);
  const std::optional<qint64> first =
      day ? daysToMonth(identifier_, day->era, 1, std::nullopt) : std::nullopt;
  return first ? std::optional(days - *first + 1) : std::nullopt;
}

} // namespace zq::platform
