#include "app/intake/SilencedStandardError.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace zq::app {

std::recursive_mutex& SilencedStandardError::mutex() {
  static std::recursive_mutex instance;
  return instance;
}

SilencedStandardError::SilencedStandardError() : lock_(mutex()) {
  std::fflush(stderr);
  const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nothing < 0)
    return;
  kept_ = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
  if (kept_ >= 0)
    ::dup2(nothing, STDERR_FILENO);
  ::close(nothing);
}

SilencedStandardError::~SilencedStandardError() {
  if (kept_ < 0)
    return;
  std::fflush(stderr);
  ::dup2(kept_, STDERR_FILENO);
  ::close(kept_);
}

} // namespace zq::app
