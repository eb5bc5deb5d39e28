// What notes and looks at a file amount to.
#pragma once

#include "zqticker/platform/system/InodeTable_p.h"

namespace zq::platform {

// Results are VnodeEvent values. Not thread-safe.
class InodeChanges {
 public:
  explicit InodeChanges(InodeTable& table) : table_(table) {}

  // What the notes about `inode` amount to. `readMore` notes what has arrived meanwhile: a look at
  // the file may be newer than the notes.
  std::uint32_t evaluate(Inode& inode, const std::function<void()>& readMore);

  // What a look at a file tells that caused no event.
  std::uint32_t compareContents(Inode& inode);

 private:
  using Place = Inode::Place;

  Place find(Inode& inode, FileSnapshot& found);
  void findAgain(Inode& inode);
  std::uint32_t evaluateFound(Inode& inode, std::uint32_t seen, const FileSnapshot& found);
  std::uint32_t evaluateGone(Inode& inode, std::uint32_t seen);

  InodeTable& table_;
};

} // namespace zq::platform
