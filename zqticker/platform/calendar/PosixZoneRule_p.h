// The rule of a time zone in the notation of the variable TZ: "CET-1CEST,M3.5.0,M10.5.0/3".
#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QtGlobal>

#include <optional>

namespace zq::platform {

// A standard time and, where there is one, a daylight-saving time that comes and goes every year.
class PosixZoneRule {
 public:
  // Nothing for what is no such rule. A daylight-saving time without days begins on the second
  // Sunday of March and ends on the first of November.
  static std::optional<PosixZoneRule> parse(QByteArrayView text);

  // Seconds to add to UTC at a moment, in seconds since 1970.
  qint32 offsetAt(qint64 seconds) const;

 private:
  // A day of each year and a time on it.
  struct Moment {
    enum class Kind {
      JulianDay, // 1 to 365, 29 February never counted
      DayOfYear, // 0 to 365
      Weekday,   // the week-th (5: last) weekday of a month
    };
    Kind kind = Kind::Weekday;
    int month = 1;
    int week = 1;
    int day = 0;
    qint32 time = 7200; // seconds on the clock, beyond the day too

    // Seconds since 1970, on the clock.
    qint64 inYear(qint64 year) const;
  };
  class Reader;

  qint32 standard_ = 0;
  qint32 daylight_ = 0;
  bool hasDaylight_ = false;
  Moment start_;
  Moment end_;
};

} // namespace zq::platform
