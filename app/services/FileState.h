// What stands at a path, as far as it tells one file from another and one state of it from another.
#pragma once

#include <QtCore/QString>

#include <optional>

namespace zq::app {

struct FileState {
  quint64 device = 0;
  quint64 inode = 0;
  qint64 born = 0;    // nanoseconds; 0 where the file system does not keep it
  qint64 written = 0; // nanoseconds
  quint64 size = 0;

  // Follows symbolic links; nothing where nothing is found. Opens nothing, so that nothing blocks.
  static std::optional<FileState> of(const QString& path);

  // Whether both are states of one file. The number of a deleted file may be given to a new one.
  bool isSameFile(const FileState& other) const {
    return device == other.device && inode == other.inode && born == other.born;
  }
  bool operator==(const FileState&) const = default;
};

} // namespace zq::app
