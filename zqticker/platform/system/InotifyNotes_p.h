// Notes in an inode table what the kernel tells.
#pragma once

#include "zqticker/platform/system/InodeTable_p.h"

struct inotify_event;

namespace zq::platform {

// Not thread-safe.
class InotifyNotes {
 public:
  explicit InotifyNotes(InodeTable& table) : table_(table) {}

  // One event, or that some were lost.
  void note(const inotify_event& event);
  // To be called when no more events are at hand.
  void endBatch();

 private:
  // An entry that has left a folder; its arrival in another can follow.
  struct Move {
    std::uint32_t cookie;
    std::weak_ptr<Inode> inode;
  };

  void noteItself(Inode& inode, const inotify_event& event);
  void noteEntry(Inode& folder, const inotify_event& event);
  void noteArrival(Inode& folder, const QByteArray& name, std::uint32_t cookie);
  void noteFolderMove(Inode& folder, const inotify_event& event);
  void followFolder(Inode& folder);

  InodeTable& table_;
  std::vector<Move> moves_;
  // The folder out of which a subfolder has just moved.
  std::uint32_t folderMove_ = 0;
  std::weak_ptr<Inode> movedOutOf_;
};

} // namespace zq::platform
