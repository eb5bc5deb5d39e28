#include "zqticker/foundation_additions/calendar_additions.h"

#include "zqticker/foundation_additions/calendar_additions_p.h"
#include "zqticker/platform/calendar/Calendar.h"
#include "zqticker/platform/calendar/CalendarDate.h"
#include "zqticker/platform/calendar/DateFormatter.h"
#include "zqticker/platform/objects/AssertionHandler.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace zq {

using namespace platform;

namespace {
constexpr double SecondsPerDay = 86'400;
constexpr unsigned DateUnits = YearCalendarUnit | MonthCalendarUnit | DayCalendarUnit;
constexpr unsigned TimeUnits = HourCalendarUnit | MinuteCalendarUnit | SecondCalendarUnit;

// The beginning of a day of the date's month, in the default time zone.
CalendarDate midnight(const CalendarDate& date, int day) {
  if (!Calendar::reaches(date))
    return CalendarDate(Date(std::numeric_limits<double>::quiet_NaN()));
  return CalendarDate::dateWithYear(date.yearOfCommonEra(), date.monthOfYear(), day, 0, 0, 0,
                                    std::nullopt);
}

// One field in the user's calendar.
qint64 component(const Date& date, CalendarUnit unit,
                 std::optional<qint64> DateComponents::*field) {
  return (Calendar::currentCalendar().components(unit, date).*field).value_or(0);
}

DateComponents record(qint64 year, qint64 month, qint64 day, qint64 hour, qint64 minute,
                      qint64 second) {
  return {.era = {},
          .year = year,
          .month = month,
          .day = day,
          .hour = hour,
          .minute = minute,
          .second = second};
}

// Adds to a field that is set; false where the sum is too large for it.
bool add(std::optional<qint64>& field, qint64 number) {
  return !__builtin_add_overflow(*field, number, &*field);
}
} // namespace

CalendarDate dateByRemovingTimeFromDate(const Date& date) {
  return startOfDay(CalendarDate(date));
}

CalendarDate startOfDay(const CalendarDate& date) {
  return midnight(date, date.dayOfMonth());
}

CalendarDate startOfNextDay(const CalendarDate& date) {
  return startOfDay(date).dateByAddingYears(0, 0, 1, 0, 0, 0);
}

CalendarDate startOfMonth(const CalendarDate& date) {
  return midnight(date, 1);
}

CalendarDate startOfNextMonth(const CalendarDate& date) {
  return startOfMonth(date).dateByAddingYears(0, 1, 0, 0, 0, 0);
}

bool equalToDay(const CalendarDate& date, const CalendarDate& otherDate) {
  return date.dayOfMonth() == otherDate.dayOfMonth() &&
         date.monthOfYear() == otherDate.monthOfYear() &&
         date.yearOfCommonEra() == otherDate.yearOfCommonEra() && date.dayOfMonth() != 0;
}

bool isTodayAt(const CalendarDate& date, const Date& now) {
  return equalToDay(date, CalendarDate(now));
}

bool isYesterdayAt(const CalendarDate& date, const Date& now) {
  // A day of exactly so many seconds is meant, also where the clocks were changed in between.
  return equalToDay(date, CalendarDate::dateWithTimeIntervalSinceReferenceDate(
                              now.timeIntervalSinceReferenceDate() - SecondsPerDay));
}

bool isToday(const CalendarDate& date) {
  return isTodayAt(date, Date::date());
}

bool isYesterday(const CalendarDate& date) {
  return isYesterdayAt(date, Date::date());
}

int minuteOfDay(const CalendarDate& date) {
  return date.hourOfDay() * 60 + date.minuteOfHour();
}

Calendar gregorianCalendar() {
  return *Calendar::calendarWithIdentifier(GregorianCalendar);
}

std::optional<Date> dateFromYear(const Calendar& calendar, qint64 year, qint64 month, qint64 day) {
  return dateFromYear(calendar, year, month, day, 0, 0, 0);
}

std::optional<Date> dateFromYear(const Calendar& calendar, qint64 year, qint64 month, qint64 day,
                                 qint64 hour, qint64 minute, qint64 second) {
  if (calendar.calendarIdentifier() != GregorianCalendar)
    failAssertion(u"gregorian calendar expected!"_s, "NSCalendar_ZQGregorian", 28);
  return calendar.dateFromComponents(record(year, month, day, hour, minute, second));
}

DateComponents gregorianDateComponentsForDate(const Calendar& calendar, const Date& date) {
  return calendar.components(DateUnits, date);
}

DateComponents gregorianTimeComponentsForDate(const Calendar& calendar, const Date& date) {
  return calendar.components(TimeUnits, date);
}

DateComponents gregorianDateAndTimeComponentsForDate(const Calendar& calendar, const Date& date) {
  return calendar.components(DateUnits | TimeUnits, date);
}

std::optional<Date> dateWithYear(qint64 year, qint64 month, qint64 day, qint64 hour, qint64 minute,
                                 qint64 second, const std::optional<TimeZone>& timeZone) {
  Calendar calendar = Calendar::currentCalendar();
  calendar.setTimeZone(timeZone);
  return calendar.dateFromComponents(record(year, month, day, hour, minute, second));
}

std::optional<Date> dateByAddingYears(const Date& date, qint64 years, qint64 months, qint64 days,
                                      qint64 hours, qint64 minutes, qint64 seconds) {
  const Calendar calendar = Calendar::currentCalendar();
  DateComponents components = calendar.components(DateUnits | TimeUnits, date);
  if (!components.year)
    return std::nullopt;
  // The era is left out on purpose: a date before the Common Era is moved into it.
  if (!add(components.year, years) || !add(components.month, months) ||
      !add(components.day, days) || !add(components.hour, hours) ||
      !add(components.minute, minutes) || !add(components.second, seconds))
    return std::nullopt;
  return calendar.dateFromComponents(components);
}

qint64 dayOfCommonEra(const Date& date) {
  return Calendar::currentCalendar()
      .ordinalityOfUnit(DayCalendarUnit, EraCalendarUnit, date)
      .value_or(0);
}

qint64 yearOfCommonEra(const Date& date) {
  return component(date, YearCalendarUnit, &DateComponents::year);
}

qint64 monthOfYear(const Date& date) {
  return component(date, MonthCalendarUnit, &DateComponents::month);
}

qint64 dayOfMonth(const Date& date) {
  return component(date, DayCalendarUnit, &DateComponents::day);
}

qint64 hourOfDay(const Date& date) {
  return component(date, HourCalendarUnit, &DateComponents::hour);
}

qint64 minuteOfHour(const Date& date) {
  return component(date, MinuteCalendarUnit, &DateComponents::minute);
}

qint64 secondOfMinute(const Date& date) {
  return component(date, SecondCalendarUnit, &DateComponents::second);
}

TimeZone timeZone(const Date&) {
  return Calendar::currentCalendar().timeZone();
}

std::optional<QString> descriptionWithCalendarFormat(const Date& date,
                                                     const QString& calendarFormat,
                                                     const std::optional<Locale>& locale) {
  DateFormatter formatter;
  formatter.setDateFormat(calendarFormat);
  formatter.setLocale(locale);
  return formatter.stringFromDate(date);
}

} // namespace zq
