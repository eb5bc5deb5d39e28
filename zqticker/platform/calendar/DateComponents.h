// A date split into the fields of a calendar.
#pragma once

#include <QtCore/QtGlobal>

#include <optional>

namespace zq::platform {

// Units of a calendar, as bits of a mask.
enum CalendarUnit : unsigned {
  EraCalendarUnit = 2,
  YearCalendarUnit = 4,
  MonthCalendarUnit = 8,
  DayCalendarUnit = 16,
  HourCalendarUnit = 32,
  MinuteCalendarUnit = 64,
  SecondCalendarUnit = 128,
};

// Whole numbers by unit; a field that is nothing is not set. Values need not be in range: month 13
// is the first month of the next year, day 0 the last of the month before. The calendar carries
// over, see Calendar::dateFromComponents.
struct DateComponents {
  std::optional<qint64> era;
  std::optional<qint64> year;  // in its era
  std::optional<qint64> month; // from 1 on
  std::optional<qint64> day;   // of the month, from 1 on
  std::optional<qint64> hour;
  std::optional<qint64> minute;
  std::optional<qint64> second;

  friend bool operator==(const DateComponents&, const DateComponents&) = default;
};

} // namespace zq::platform
