// The days of calendars other than the Gregorian one.
#pragma once

#include <QtCore/QString>

#include <memory>
#include <optional>

#include <unicode/calendar.h>

namespace zq::platform {

struct CalendarDay {
  qint64 era;
  qint64 year;
  qint64 month; // from 1 on
  qint64 day;   // from 1 on
};

// Whether there is a calendar of that identifier.
bool isCalendarIdentifier(const QString& identifier);

// A new calendar of ICU, with no Julian days; null where there is none. Null `zone` stands for UTC.
std::unique_ptr<icu::Calendar> makeCalendar(const QString& identifier, const icu::Locale& locale,
                                            std::unique_ptr<icu::TimeZone> zone);

// Days from 1970-01-01 to the first day of a month, or of the era's first year where `month` is
// nothing; months out of range carry over. Nothing where the calendar has no such era or does not
// reach so far.
std::optional<qint64> daysToMonth(const QString& identifier, std::optional<qint64> era, qint64 year,
                                  std::optional<qint64> month);

// The day that is `days` after 1970-01-01; nothing where the calendar does not reach so far.
std::optional<CalendarDay> calendarDay(const QString& identifier, qint64 days);
std::optional<qint64> dayOfYear(const QString& identifier, qint64 days);

} // namespace zq::platform
