// Comparisons with the present moment, at a moment of the caller's choice.
#pragma once

namespace zq::platform {
class CalendarDate;
class Date;
} // namespace zq::platform

namespace zq {

bool isTodayAt(const platform::CalendarDate& date, const platform::Date& now);
bool isYesterdayAt(const platform::CalendarDate& date, const platform::Date& now);

} // namespace zq
