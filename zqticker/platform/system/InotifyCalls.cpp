#include "zqticker/platform/system/InotifyCalls_p.h"

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>

namespace zq::platform {
namespace {

int openPath(const char* path) {
  return ::open(path, O_PATH | O_CLOEXEC);
}

} // namespace

InotifyCalls::InotifyCalls()
    : makeInstance(::inotify_init1), openPath(platform::openPath), addWatch(::inotify_add_watch),
      makeWakeUp(::eventfd), now(std::chrono::steady_clock::now) {}

} // namespace zq::platform
