#include "zqticker/platform/system/Inode_p.h"

#include "zqticker/platform/system/InodeTable_p.h"

#include <QtCore/QString>

namespace zq::platform {

Inode::~Inode() {
  table.end(*this);
}

QByteArray Inode::pathOf(const QByteArray& entry) const {
  return path == "/" ? QByteArray(path + entry) : QByteArray(path + '/' + entry);
}

Inode::Place Inode::look(FileSnapshot& found) const {
  if (name.isEmpty() || folder->path.isEmpty())
    return Place::Unknown;
  const auto there = FileSnapshot::of(folder->pathOf(name));
  if (there && there->isSameFile(last)) {
    found = *there;
    return Place::Same;
  }
  // A folder further up may have been renamed.
  const auto its = FileSnapshot::of(folder->path);
  return its && its->isSameFile(folder->last) ? Place::Gone : Place::Unknown;
}

} // namespace zq::platform
