// Dates as HTTP writes them, whatever the locale.
#pragma once

#include <QtCore/QStringView>

#include <optional>

namespace zq::platform {

// Seconds since 1970 in UTC of an HTTP date in any of its three formats:
//   Sun, 06 Nov 1994 08:49:37 GMT     the one that is written today
//   Sunday, 06-Nov-94 08:49:37 GMT    of RFC 850
//   Sun Nov  6 08:49:37 1994          of C's asctime
// Nothing for any other text, other zones included. The day of the week is not compared with the
// date. A year of two digits that would lie more than 50 years after `now` (seconds since 1970)
// means the century before.
std::optional<qint64> secondsOfHTTPDate(QStringView text, qint64 now);

} // namespace zq::platform
