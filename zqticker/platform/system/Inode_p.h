// A file or folder that an event queue watches.
#pragma once

#include "zqticker/platform/system/FileSnapshot_p.h"

#include <QtCore/QByteArray>

#include <cstdint>
#include <functional>
#include <memory>

namespace zq::platform {

class InodeTable;
struct Registration;

// What was noted about a file or folder and has not been evaluated yet.
enum Seen : std::uint16_t {
  SeenWritten = 0x001,
  SeenAttributes = 0x002, // or names
  SeenRenamed = 0x004,
  SeenDeleted = 0x008,
  SeenUnmounted = 0x010,
  SeenEntries = 0x020,
  SeenSubfolders = 0x040,
  SeenNameTouched = 0x080, // by what happened in its folder
  SeenNameRemoved = 0x100,
  SeenNameTaken = 0x200, // by another file, which has its place in the table already
  SeenLoss = 0x400,
};

// A file or folder by one of its names. Those of the same file share one watch of the kernel.
struct Inode : std::enable_shared_from_this<Inode> {
  explicit Inode(InodeTable& itsTable) : table(itsTable) {}
  ~Inode(); // leaves the table
  Inode(const Inode&) = delete;
  Inode& operator=(const Inode&) = delete;

  enum class Place { Same, Gone, Unknown };
  // Looks at what has the name.
  Place look(FileSnapshot& found) const;
  QByteArray pathOf(const QByteArray& entry) const;

  InodeTable& table;
  // The name by which it can be looked at: empty where it is not known, such as after a move into
  // a folder without a watch; its folder is then the one that it has left, or null.
  std::shared_ptr<Inode> folder{};
  QByteArray name{};
  QByteArray path{}; // of a folder that others are in, as long as it is known
  FileSnapshot last{};
  Inode* nextOfWatch = nullptr;
  Registration* firstRegistration = nullptr;
  Registration* lastRegistration = nullptr;
  int watch = -1; // -1 where there is none, or no longer
  std::uint16_t seen = 0;
  bool deleted = false; // told already
};

} // namespace zq::platform
