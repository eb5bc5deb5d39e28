// Dates: absolute moments.
#pragma once

#include "zqticker/zqticker_export.h"

#include <compare>

namespace zq::platform {

// Seconds from 1970-01-01 to 2001-01-01, both 00:00:00 UTC.
inline constexpr double TimeIntervalSince1970 = 978'307'200;

// A moment, in seconds since the reference date 2001-01-01 00:00:00 UTC, leap seconds not counted.
// It knows no time zone and no calendar. Dates compare by their seconds, exactly; one whose seconds
// are not a number equals none, itself included.
//
// Calendars reckon with dates up to 5,700,000 years before and after the reference date; what they
// answer for others, infinities and not-a-number among them, is said there.
class ZQTICKER_EXPORT Date {
 public:
  // The reference date.
  constexpr Date() = default;
  // Operation: + dateWithTimeIntervalSinceReferenceDate:
  constexpr explicit Date(double secondsSinceReferenceDate) : seconds_(secondsSinceReferenceDate) {}

  // The present moment, by the system's clock.
  static Date date();

  // Seconds, negative before the reference date.
  constexpr double timeIntervalSinceReferenceDate() const { return seconds_; }

  friend constexpr bool operator==(const Date&, const Date&) = default;
  friend constexpr auto operator<=>(const Date&, const Date&) = default;

 private:
  double seconds_ = 0;
};

} // namespace zq::platform
