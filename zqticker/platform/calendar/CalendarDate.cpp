#include "zqticker/platform/calendar/CalendarDate.h"

#include "zqticker/platform/calendar/Calendar.h"

#include <cmath>
#include <limits>

namespace zq::platform {

namespace {
Calendar gregorianCalendar(const TimeZone& timeZone) {
  static const std::optional<Calendar> calendar =
      Calendar::calendarWithIdentifier(GregorianCalendar);
  Calendar result = *calendar;
  result.setTimeZone(timeZone);
  return result;
}

constexpr unsigned AllUnits = EraCalendarUnit | YearCalendarUnit | MonthCalendarUnit |
                              DayCalendarUnit | HourCalendarUnit | MinuteCalendarUnit |
                              SecondCalendarUnit;
constexpr qint64 EraBefore = 0;
} // namespace

CalendarDate::CalendarDate(const Date& date, const std::optional<TimeZone>& timeZone)
    : Date(date), timeZone_(timeZone ? *timeZone : TimeZone::defaultTimeZone()) {}

CalendarDate CalendarDate::date() {
  return CalendarDate(Date::date());
}

CalendarDate CalendarDate::dateWithTimeIntervalSinceReferenceDate(double seconds) {
  return CalendarDate(Date(seconds));
}

CalendarDate CalendarDate::dateWithYear(qint64 year, qint64 month, qint64 day, qint64 hour,
                                        qint64 minute, qint64 second,
                                        const std::optional<TimeZone>& timeZone) {
  const TimeZone zone = timeZone ? *timeZone : TimeZone::defaultTimeZone();
  const std::optional<Date> date = gregorianCalendar(zone).dateFromComponents({.era = {},
                                                                               .year = year,
                                                                               .month = month,
                                                                               .day = day,
                                                                               .hour = hour,
                                                                               .minute = minute,
                                                                               .second = second});
  return CalendarDate(date.value_or(Date(std::numeric_limits<double>::quiet_NaN())), zone);
}

CalendarDate::Fields CalendarDate::fields() const {
  const DateComponents components = gregorianCalendar(timeZone_).components(AllUnits, *this);
  if (!components.era)
    return {};
  const auto number = [](const std::optional<qint64>& field) { return static_cast<int>(*field); };
  return {*components.era == EraBefore ? 1 - *components.year : *components.year,
          number(components.month),
          number(components.day),
          number(components.hour),
          number(components.minute),
          number(components.second)};
}

qint64 CalendarDate::yearOfCommonEra() const {
  return fields().year;
}

int CalendarDate::monthOfYear() const {
  return fields().month;
}

int CalendarDate::dayOfMonth() const {
  return fields().day;
}

int CalendarDate::hourOfDay() const {
  return fields().hour;
}

int CalendarDate::minuteOfHour() const {
  return fields().minute;
}

int CalendarDate::secondOfMinute() const {
  return fields().second;
}

CalendarDate CalendarDate::dateByAddingYears(qint64 years, qint64 months, qint64 days, qint64 hours,
                                             qint64 minutes, qint64 seconds) const {
  const double interval = timeIntervalSinceReferenceDate();
  const Fields from = fields();
  const auto sum = [](qint64 a, qint64 b) {
    qint64 result = 0;
    // Far out of reach either way.
    return __builtin_add_overflow(a, b, &result) ? std::numeric_limits<qint64>::max() : result;
  };
  const CalendarDate whole =
      from.month == 0
          ? CalendarDate(Date(std::numeric_limits<double>::quiet_NaN()), timeZone_)
          : dateWithYear(sum(from.year, years), sum(from.month, months), sum(from.day, days),
                         sum(from.hour, hours), sum(from.minute, minutes),
                         sum(from.second, seconds), timeZone_);
  return CalendarDate(
      Date(whole.timeIntervalSinceReferenceDate() + (interval - std::floor(interval))), timeZone_);
}

} // namespace zq::platform
