#include "zqticker/platform/calendar/Date.h"

#include <chrono>

namespace zq::platform {

Date Date::date() {
  const std::chrono::duration<double> since1970 =
      std::chrono::system_clock::now().time_since_epoch();
  return Date(since1970.count() - TimeIntervalSince1970);
}

} // namespace zq::platform
