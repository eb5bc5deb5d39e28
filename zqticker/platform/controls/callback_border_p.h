// Where the event loop calls, nothing may be raised.
#pragma once

#include <functional>

namespace zq::platform {

// Runs `callback`, and logs what it raises.
void logRaised(const std::function<void()>& callback);

} // namespace zq::platform
