#include "app/services/FileState.h"

#include <QtCore/QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace zq::app {

namespace {
qint64 nanoseconds(const statx_timestamp& time) {
  return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}
} // namespace

std::optional<FileState> FileState::of(const QString& path) {
  struct statx found {};
  if (::statx(AT_FDCWD, QFile::encodeName(path).constData(), AT_NO_AUTOMOUNT,
              STATX_BASIC_STATS | STATX_BTIME, &found) != 0)
    return std::nullopt;
  FileState state;
  state.device = makedev(found.stx_dev_major, found.stx_dev_minor);
  state.inode = found.stx_ino;
  state.born = found.stx_mask & STATX_BTIME ? nanoseconds(found.stx_btime) : 0;
  state.written = nanoseconds(found.stx_mtime);
  state.size = found.stx_size;
  return state;
}

} // namespace zq::app
