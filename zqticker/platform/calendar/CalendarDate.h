// Dates that carry a time zone.
#pragma once

#include "zqticker/platform/calendar/Date.h"
#include "zqticker/platform/calendar/TimeZone.h"
#include "zqticker/zqticker_export.h"

#include <optional>

namespace zq::platform {

// A date with a time zone in which its Gregorian fields are read: a value. Equal dates may have
// different time zones.
//
// Years count on through 0, which is the year before 1, to negative ones. The fields of a date that
// the Gregorian calendar does not reach are 0.
//
// Thread: any; one value from one thread at a time.
class ZQTICKER_EXPORT CalendarDate : public Date {
 public:
  // Nothing stands for the default time zone as it is now.
  explicit CalendarDate(const Date& date, const std::optional<TimeZone>& timeZone = std::nullopt);

  // The present moment in the default time zone.
  // Operation: + date
  static CalendarDate date();
  // In the default time zone.
  // Operation: + dateWithTimeIntervalSinceReferenceDate:
  static CalendarDate dateWithTimeIntervalSinceReferenceDate(double seconds);
  // The date of the fields, which carry over like those of Calendar::dateFromComponents, in
  // `timeZone`; nothing for the default one. Not a number where it is out of reach.
  static CalendarDate dateWithYear(qint64 year, qint64 month, qint64 day, qint64 hour,
                                   qint64 minute, qint64 second,
                                   const std::optional<TimeZone>& timeZone);

  const TimeZone& timeZone() const { return timeZone_; }

  qint64 yearOfCommonEra() const;
  int monthOfYear() const;  // 1 to 12
  int dayOfMonth() const;   // 1 to 31
  int hourOfDay() const;    // 0 to 23
  int minuteOfHour() const; // 0 to 59
  int secondOfMinute() const;

  // The date whose fields are these, each with its argument added, in the same time zone. The
  // fraction of a second is kept. Not a number where it is out of reach.
  CalendarDate dateByAddingYears(qint64 years, qint64 months, qint64 days, qint64 hours,
                                 qint64 minutes, qint64 seconds) const;

  // Compares the moments.
  friend bool operator==(const CalendarDate& a, const CalendarDate& b) {
    return static_cast<const Date&>(a) == static_cast<const Date&>(b);
  }

 private:
  struct Fields {
    qint64 year = 0;
    int month = 0, day = 0, hour = 0, minute = 0, second = 0;
  };
  Fields fields() const;

  TimeZone timeZone_;
};

} // namespace zq::platform
