// What a file or folder was like when it was last looked at.
#pragma once

#include <QtCore/QByteArray>

#include <cstdint>
#include <optional>

namespace zq::platform {

struct FileSnapshot {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t birth = 0; // nanoseconds, 0 where the file system keeps none
  std::int64_t contentsChanged = 0;
  std::int64_t stateChanged = 0;
  std::uint64_t size = 0;
  std::uint32_t names = 0;
  std::uint32_t owner = 0;
  std::uint32_t group = 0;
  std::uint16_t mode = 0;

  // By an open descriptor, path-only ones included.
  static std::optional<FileSnapshot> of(int descriptor);
  // By a path whose last part is not followed. Nothing where there is none; errno says why.
  static std::optional<FileSnapshot> of(const QByteArray& path);

  bool isFolder() const;
  bool isRegularFile() const;
  bool isSymbolicLink() const;

  // Whether both were taken of the very same file. The birth tells a new file from an old one whose
  // number it has inherited.
  bool isSameFile(const FileSnapshot& other) const;
  bool hasOtherContents(const FileSnapshot& other) const;
  bool hasOtherOwnersOrMode(const FileSnapshot& other) const;

  // Takes names, owners and mode from an `older` one.
  void keepState(const FileSnapshot& older);
};

} // namespace zq::platform
