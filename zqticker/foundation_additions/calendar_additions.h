// Additions to dates and calendars: CalendarDate (ZQAdditions), NSCalendar_ZQGregorian: Calendar
// (ZQGregorian), and Date (NSCalendarDateCompatibility).
//
// A date out of the Gregorian calendar's reach (5,700,000 years from 2001, infinite, not a number)
// lies on no day: what is made of it as a calendar date is not a number, as a date nothing; fields
// are 0, comparisons are false, component records are empty.
//
// Thread: any.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <optional>

namespace zq::platform {
class Calendar;
class CalendarDate;
class Date;
class Locale;
class TimeZone;
struct DateComponents;
} // namespace zq::platform

namespace zq {

// ---- CalendarDate (ZQAdditions) -----------------------------------------------------------------
//
// What these make stands in the default time zone, whatever the zone of the date.

// 00:00:00 of the day that `date` lies on in the default time zone.
// Operation: + dateByRemovingTimeFromDate:
ZQTICKER_EXPORT platform::CalendarDate dateByRemovingTimeFromDate(const platform::Date& date);

// 00:00:00, in the default time zone, of the date's day in its own.
// Operation: startOfDay
ZQTICKER_EXPORT platform::CalendarDate startOfDay(const platform::CalendarDate& date);
// The day after startOfDay.
// Operation: startOfNextDay
ZQTICKER_EXPORT platform::CalendarDate startOfNextDay(const platform::CalendarDate& date);
// 00:00:00, in the default time zone, of the first day of the date's month in its own.
// Operation: startOfMonth
ZQTICKER_EXPORT platform::CalendarDate startOfMonth(const platform::CalendarDate& date);
// The month after startOfMonth.
// Operation: startOfNextMonth
ZQTICKER_EXPORT platform::CalendarDate startOfNextMonth(const platform::CalendarDate& date);

// Whether day, month and year are the same, each date's in its own time zone.
// Operation: equalToDay:
ZQTICKER_EXPORT bool equalToDay(const platform::CalendarDate& date,
                                const platform::CalendarDate& otherDate);
// equalToDay with the present moment in the default time zone.
// Operation: isToday
ZQTICKER_EXPORT bool isToday(const platform::CalendarDate& date);
// equalToDay with the moment 86,400 seconds ago, which on the day after a clock change may lie two
// days back, or on this one.
// Operation: isYesterday
ZQTICKER_EXPORT bool isYesterday(const platform::CalendarDate& date);

// Minutes on the clock since midnight, 0 to 1439.
// Operation: minuteOfDay
ZQTICKER_EXPORT int minuteOfDay(const platform::CalendarDate& date);

// ---- NSCalendar_ZQGregorian: Calendar (ZQGregorian) ---------------------------------------------

// A new Gregorian calendar in the default time zone.
// Operation: + gregorianCalendar
ZQTICKER_EXPORT platform::Calendar gregorianCalendar();

// The date of the numbers, which may be out of range, see Calendar::dateFromComponents; nothing out
// of the calendar's reach. Raises InternalInconsistencyException where `calendar` is not the
// Gregorian one.
// Operation: dateFromYear:month:day:
ZQTICKER_EXPORT std::optional<platform::Date> dateFromYear(const platform::Calendar& calendar,
                                                           qint64 year, qint64 month, qint64 day);
// Operation: dateFromYear:month:day:hour:minute:second:
ZQTICKER_EXPORT std::optional<platform::Date> dateFromYear(const platform::Calendar& calendar,
                                                           qint64 year, qint64 month, qint64 day,
                                                           qint64 hour, qint64 minute,
                                                           qint64 second);

// The fields of `date` in `calendar`, whichever it is: year, month and day; hour, minute and
// second; all six.
// Operation: gregorianDateComponentsForDate:
ZQTICKER_EXPORT platform::DateComponents
gregorianDateComponentsForDate(const platform::Calendar& calendar, const platform::Date& date);
// Operation: gregorianTimeComponentsForDate:
ZQTICKER_EXPORT platform::DateComponents
gregorianTimeComponentsForDate(const platform::Calendar& calendar, const platform::Date& date);
// Operation: gregorianDateAndTimeComponentsForDate:
ZQTICKER_EXPORT platform::DateComponents
gregorianDateAndTimeComponentsForDate(const platform::Calendar& calendar,
                                      const platform::Date& date);

// ---- Date (NSCalendarDateCompatibility) ---------------------------------------------------------
//
// What calendar dates can do, for plain ones: reckoned with the user's current calendar, as it is
// at each call.

// The date of the numbers, which may be out of range, in `timeZone`; nothing for the default one.
// Nothing out of the calendar's reach.
// Operation: + dateWithYear:month:day:hour:minute:second:timeZone:
ZQTICKER_EXPORT std::optional<platform::Date>
dateWithYear(qint64 year, qint64 month, qint64 day, qint64 hour, qint64 minute, qint64 second,
             const std::optional<platform::TimeZone>& timeZone);

// The date whose fields are those of `date`, each with its argument added; then they carry over: a
// month after 31 January is in early March. Fields are whole seconds, so the fraction of one is
// dropped, and they know no era, so a date before the Common Era comes out in it.
// Operation: dateByAddingYears:months:days:hours:minutes:seconds:
ZQTICKER_EXPORT std::optional<platform::Date> dateByAddingYears(const platform::Date& date,
                                                                qint64 years, qint64 months,
                                                                qint64 days, qint64 hours,
                                                                qint64 minutes, qint64 seconds);

// The date's day counted from the first of its era, which is 1.
// Operation: dayOfCommonEra
ZQTICKER_EXPORT qint64 dayOfCommonEra(const platform::Date& date);
// Of its era.
// Operation: yearOfCommonEra
ZQTICKER_EXPORT qint64 yearOfCommonEra(const platform::Date& date);
// From 1 on.
// Operation: monthOfYear
ZQTICKER_EXPORT qint64 monthOfYear(const platform::Date& date);
// From 1 on.
// Operation: dayOfMonth
ZQTICKER_EXPORT qint64 dayOfMonth(const platform::Date& date);
// 0 to 23.
// Operation: hourOfDay
ZQTICKER_EXPORT qint64 hourOfDay(const platform::Date& date);
// 0 to 59.
// Operation: minuteOfHour
ZQTICKER_EXPORT qint64 minuteOfHour(const platform::Date& date);
// 0 to 59.
// Operation: secondOfMinute
ZQTICKER_EXPORT qint64 secondOfMinute(const platform::Date& date);

// The current calendar's: a plain date has none of its own.
// Operation: timeZone
ZQTICKER_EXPORT platform::TimeZone timeZone(const platform::Date& date);

// The text of `date` by a Unicode date pattern, in the default time zone and the locale's words and
// calendar; no locale for the user's. Nothing for a pattern with a letter that is no field.
// Percent patterns are not converted, see ZQTimeFormatPatternConverter.
// Operation: descriptionWithCalendarFormat:locale:
ZQTICKER_EXPORT std::optional<QString>
descriptionWithCalendarFormat(const platform::Date& date, const QString& calendarFormat,
                              const std::optional<platform::Locale>& locale);

} // namespace zq
