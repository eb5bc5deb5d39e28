// The making of ICU's calendars and formats.
#pragma once

#include <mutex>

namespace zq::platform {

// Held while one is made. ICU sets its tables up then, guarded in a way that the thread sanitizer
// does not see; what is made is kept for its thread, so that nobody waits for long.
inline std::mutex& icuMakingMutex() {
  static std::mutex mutex;
  return mutex;
}

} // namespace zq::platform
