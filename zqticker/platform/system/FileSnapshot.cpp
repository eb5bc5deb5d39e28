#include "zqticker/platform/system/FileSnapshot_p.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace zq::platform {
namespace {

std::int64_t nanoseconds(const struct statx_timestamp& time) {
  return time.tv_sec * std::int64_t(1'000'000'000) + time.tv_nsec;
}

std::optional<FileSnapshot> take(int folder, const char* path, int flags) {
  struct statx state;
  if (::statx(folder, path, flags | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME, &state) != 0)
    return std::nullopt;
  FileSnapshot found;
  found.device = makedev(state.stx_dev_major, state.stx_dev_minor);
  found.inode = state.stx_ino;
  found.birth = state.stx_mask & STATX_BTIME ? nanoseconds(state.stx_btime) : 0;
  found.contentsChanged = nanoseconds(state.stx_mtime);
  found.stateChanged = nanoseconds(state.stx_ctime);
  found.size = state.stx_size;
  found.names = state.stx_nlink;
  found.owner = state.stx_uid;
  found.group = state.stx_gid;
  found.mode = state.stx_mode;
  return found;
}

} // namespace

std::optional<FileSnapshot> FileSnapshot::of(int descriptor) {
  return take(descriptor, "", AT_EMPTY_PATH);
}

std::optional<FileSnapshot> FileSnapshot::of(const QByteArray& path) {
  return take(AT_FDCWD, path.constData(), AT_SYMLINK_NOFOLLOW);
}

bool FileSnapshot::isFolder() const {
  return S_ISDIR(mode);
}

bool FileSnapshot::isRegularFile() const {
  return S_ISREG(mode);
}

bool FileSnapshot::isSymbolicLink() const {
  return S_ISLNK(mode);
}

bool FileSnapshot::isSameFile(const FileSnapshot& other) const {
  return inode == other.inode && device == other.device && birth == other.birth;
}

bool FileSnapshot::hasOtherContents(const FileSnapshot& other) const {
  return size != other.size || contentsChanged != other.contentsChanged;
}

bool FileSnapshot::hasOtherOwnersOrMode(const FileSnapshot& other) const {
  return mode != other.mode || owner != other.owner || group != other.group;
}

void FileSnapshot::keepState(const FileSnapshot& older) {
  names = older.names;
  owner = older.owner;
  group = older.group;
  mode = older.mode;
}

} // namespace zq::platform
