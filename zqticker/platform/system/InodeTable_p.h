// What an event queue watches, by the kernel's watches: files, folders, and the folders of both.
#pragma once

#include "zqticker/platform/system/FileSnapshot_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>

#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

struct inotify_event;

namespace zq::platform {

struct Registration;

// The calls that can be refused; a test gives its own.
struct InotifyCalls {
  int (*makeInstance)(int flags) = nullptr;
  int (*addWatch)(int instance, const char* path, std::uint32_t mask) = nullptr;
  int (*makeWakeUp)(unsigned int count, int flags) = nullptr;

  InotifyCalls(); // the kernel's
};

// A file or folder under one watch of the kernel, however many names and registrations it has.
struct Inode {
  int watch = -1; // -1 once it has ended
  // The name by which it can be looked at: null where it is not known, such as after a move into a
  // folder without a watch.
  std::shared_ptr<Inode> folder{};
  QByteArray name{};
  // Of a folder, as long as it is known.
  QByteArray path{};
  QHash<QByteArray, Inode*> entries{}; // those that are known by a name in it
  FileSnapshot last{};
  bool deleted = false; // told already
  std::uint32_t seen = 0;
  Registration* firstRegistration = nullptr;
  Registration* lastRegistration = nullptr;
};

// Not thread-safe.
class InodeTable {
 public:
  InodeTable(int instance, InotifyCalls calls) : instance_(instance), calls_(calls) {}

  InodeTable(const InodeTable&) = delete;
  InodeTable& operator=(const InodeTable&) = delete;

  // Watches what the path-only descriptor `file` is open on, until the last reference is gone; the
  // table outlives them all. Null with errno where the kernel refuses.
  std::shared_ptr<Inode> watch(int file);

  // Notes one event of the kernel, or that some were lost.
  void note(const inotify_event& event);
  // To be called when no more events are at hand.
  void endBatch();
  // To be called before the instance is closed, when all references are gone.
  void end() { movedFrom_.reset(); }

  // Those with new notes, in the order of their first; emptied by the caller.
  std::vector<Inode*>& noted() { return noted_; }

  // What the notes about `inode` amount to, as VnodeEvent values. `readMore` notes what has
  // arrived meanwhile: a look at the file may be newer than the notes.
  std::uint32_t evaluate(Inode& inode, const std::function<void()>& readMore);

  // What a look at a file tells that caused no event.
  std::uint32_t compareContents(Inode& inode);

 private:
  enum class Place { Same, Gone, Unknown };

  std::shared_ptr<Inode> inodeOfWatch(int watch, const FileSnapshot& snapshot);
  bool setName(const std::shared_ptr<Inode>& inode, const QByteArray& path);
  void setName(Inode& inode, const std::shared_ptr<Inode>& folder, const QByteArray& name);
  void forgetName(Inode& inode);
  void end(Inode& inode);
  void note(Inode& inode, std::uint32_t what);
  void noteEntry(Inode& folder, const inotify_event& event);
  void noteArrival(Inode& folder, const QByteArray& name);
  void noteFolderMove(Inode& folder, const inotify_event& event);
  void settleFolderMove();
  Place look(const Inode& inode, FileSnapshot& found) const;
  std::uint32_t evaluateFound(Inode& inode, std::uint32_t seen, const FileSnapshot& found);
  std::uint32_t evaluateGone(Inode& inode, std::uint32_t seen);

  int instance_;
  InotifyCalls calls_;
  std::unordered_map<int, std::weak_ptr<Inode>> byWatch_;
  std::vector<Inode*> noted_;
  // The entry that has just left a folder, until its arrival is noted.
  std::uint32_t entryMove_ = 0;
  std::weak_ptr<Inode> movedEntry_;
  std::shared_ptr<Inode> movedFrom_; // kept, since it may be where the entry arrives
  // The folder out of which a subfolder has just moved.
  std::uint32_t folderMove_ = 0;
  std::weak_ptr<Inode> movedOutOf_;
};

} // namespace zq::platform
