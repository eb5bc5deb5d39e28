#include "zqticker/platform/system/standard_error.h"

#include <QtCore/QStringBuilder>

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace zq::platform {

bool reopenStandardError(const QByteArray& path) {
  // A stream that cannot be reopened is closed: so look first whether it can.
  const int probe = ::open(path.constData(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (probe < 0)
    return false;
  ::close(probe);
  const int before = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const bool isReopened = std::freopen(path.constData(), "a+", stderr) != nullptr;
  if (!isReopened && before >= 0) {
    // Somebody took the file away in between.
    const QByteArray old = "/proc/self/fd/" + QByteArray::number(before);
    if (!std::freopen(old.constData(), "a", stderr))
      ::dup2(before, STDERR_FILENO);
  }
  std::setvbuf(stderr, nullptr, _IONBF, 0);
  if (before >= 0)
    ::close(before);
  return isReopened;
}

} // namespace zq::platform
