// Dates as archives count them: seconds since 2001-01-01 00:00:00 UTC.
#pragma once

#include <QtCore/QDateTime>

#include <cmath>
#include <optional>

namespace zq::platform {

// Milliseconds from 1970-01-01 to 2001-01-01, UTC.
inline constexpr qint64 ReferenceDateMilliseconds = 978307200000;

inline double secondsOfDate(const QDateTime& date) {
  return double(date.toMSecsSinceEpoch() - ReferenceDateMilliseconds) / 1000;
}

// The date, to the millisecond, in UTC; nothing where it is beyond what QDateTime counts.
inline std::optional<QDateTime> dateOfSeconds(double seconds) {
  // A thousandth of 2^63 milliseconds stays clear of every overflow.
  if (!(std::abs(seconds) < 9.0e12))
    return std::nullopt;
  return QDateTime::fromMSecsSinceEpoch(
      qint64(std::llround(seconds * 1000)) + ReferenceDateMilliseconds, Qt::UTC);
}

} // namespace zq::platform
