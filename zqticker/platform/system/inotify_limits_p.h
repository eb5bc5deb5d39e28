// The kernel's limits on watching, told to whoever meets one.
#pragma once

namespace zq::platform {

// Logs which limit it was for which the kernel refused a watch or an instance with `error`, and how
// to raise it. An error that is no limit is not logged: false.
bool logInotifyLimit(int error);

} // namespace zq::platform
