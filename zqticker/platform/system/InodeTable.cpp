#include "zqticker/platform/system/InodeTable_p.h"

#include "zqticker/platform/system/KernelEventQueue.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace zq::platform {
namespace {

enum Seen : std::uint32_t {
  SeenWritten = 0x001,
  SeenAttributes = 0x002, // or names
  SeenRenamed = 0x004,
  SeenDeleted = 0x008,
  SeenUnmounted = 0x010,
  SeenEntries = 0x020,
  SeenSubfolders = 0x040,
  SeenNameTouched = 0x080, // by what happened in its folder
  SeenNameTaken = 0x100,   // by another file, which has its place in the table already
  SeenLoss = 0x200,
};

constexpr std::uint32_t OfItself = IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;
constexpr std::uint32_t OfFile = OfItself | IN_MODIFY;
constexpr std::uint32_t OfEntries = IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t OfFolder = OfItself | OfEntries | IN_CREATE | IN_ONLYDIR;
// Without the attributes: those of its entries would come as well.
constexpr std::uint32_t OfFolderOfName = OfEntries | IN_MOVE_SELF | IN_DELETE_SELF | IN_ONLYDIR;

std::uint32_t when(bool condition, std::uint32_t flag) {
  return condition ? flag : 0;
}

QByteArray linkOf(int file) {
  return "/proc/self/fd/" + QByteArray::number(file);
}

QByteArray pathOf(int file) {
  std::array<char, 4097> path;
  const ssize_t length = ::readlink(linkOf(file).constData(), path.data(), path.size());
  if (length <= 0 || std::size_t(length) == path.size() || path[0] != '/')
    return {};
  return QByteArray(path.data(), length);
}

} // namespace

InotifyCalls::InotifyCalls()
    : makeInstance(::inotify_init1), addWatch(::inotify_add_watch), makeWakeUp(::eventfd) {}

std::shared_ptr<Inode> InodeTable::watch(int file) {
  const auto snapshot = FileSnapshot::of(file);
  if (!snapshot)
    return nullptr;
  const std::uint32_t mask = snapshot->isFolder() ? OfFolder : OfFile;
  const int watch = calls_.addWatch(instance_, linkOf(file).constData(), mask | IN_MASK_ADD);
  if (watch < 0)
    return nullptr;
  auto inode = inodeOfWatch(watch, *snapshot);
  if (!inode->firstRegistration)
    inode->last = *snapshot; // it may have been the folder of others
  inode->deleted = false;
  if (!inode->folder && snapshot->names > 0 && !setName(inode, pathOf(file))) {
    inode.reset();
    errno = ENOSPC;
  }
  return inode;
}

std::shared_ptr<Inode> InodeTable::inodeOfWatch(int watch, const FileSnapshot& snapshot) {
  auto& known = byWatch_[watch];
  auto inode = known.lock();
  if (!inode) {
    inode.reset(new Inode, [this](Inode* unused) {
      end(*unused);
      delete unused;
    });
    inode->watch = watch;
    inode->last = snapshot;
    known = inode;
  }
  return inode;
}

// False where the kernel refuses the watch on the folder for want of room.
bool InodeTable::setName(const std::shared_ptr<Inode>& inode, const QByteArray& path) {
  const auto slash = path.lastIndexOf('/');
  if (slash < 0 || path.size() == 1)
    return true;
  const QByteArray folderPath = slash == 0 ? QByteArray("/") : path.left(slash);
  const auto snapshot = FileSnapshot::of(folderPath);
  if (!snapshot)
    return true;
  const int watch =
      calls_.addWatch(instance_, folderPath.constData(), OfFolderOfName | IN_MASK_ADD);
  if (watch < 0 && errno == ENOSPC)
    return false;
  std::shared_ptr<Inode> folder;
  if (watch >= 0) {
    folder = inodeOfWatch(watch, *snapshot);
  } else { // it may be entered, not read: files in it can be looked at all the same
    folder = std::make_shared<Inode>();
    folder->last = *snapshot;
  }
  if (folder == inode)
    return true;
  folder->path = folderPath;
  setName(*inode, folder, path.mid(slash + 1));
  return true;
}

void InodeTable::setName(Inode& inode, const std::shared_ptr<Inode>& folder,
                         const QByteArray& name) {
  forgetName(inode);
  inode.folder = folder;
  inode.name = name;
  folder->entries[name] = &inode;
}

void InodeTable::forgetName(Inode& inode) {
  if (!inode.folder)
    return;
  const auto found = inode.folder->entries.find(inode.name);
  if (found != inode.folder->entries.end() && *found == &inode)
    inode.folder->entries.erase(found);
  inode.name.clear();
  inode.folder.reset();
}

void InodeTable::end(Inode& inode) {
  forgetName(inode);
  std::erase(noted_, &inode);
  if (inode.watch < 0)
    return;
  byWatch_.erase(inode.watch);
  ::inotify_rm_watch(instance_, inode.watch);
}

void InodeTable::note(Inode& inode, std::uint32_t what) {
  if (!inode.firstRegistration)
    return;
  if (inode.seen == 0)
    noted_.push_back(&inode);
  inode.seen |= what;
}

void InodeTable::note(const inotify_event& event) {
  if (event.mask & IN_Q_OVERFLOW) {
    for (const auto& [watch, known] : byWatch_)
      if (const auto inode = known.lock())
        note(*inode, SeenLoss);
    return;
  }
  const auto found = byWatch_.find(event.wd);
  const auto inode = found == byWatch_.end() ? nullptr : found->second.lock();
  if (!inode)
    return;
  if (event.len > 0) {
    noteEntry(*inode, event);
    return;
  }
  std::uint32_t what = 0;
  what |= when(event.mask & IN_MODIFY, SeenWritten);
  what |= when(event.mask & IN_ATTRIB, SeenAttributes);
  what |= when(event.mask & IN_MOVE_SELF, SeenRenamed);
  what |= when(event.mask & IN_DELETE_SELF, SeenDeleted);
  what |= when(event.mask & IN_UNMOUNT, SeenUnmounted);
  if (what != 0)
    note(*inode, what);
  if (event.mask & (IN_MOVE_SELF | IN_DELETE_SELF | IN_UNMOUNT))
    inode->path.clear();
  if (event.mask & IN_IGNORED) {
    byWatch_.erase(found);
    inode->watch = -1;
  }
}

void InodeTable::noteEntry(Inode& folder, const inotify_event& event) {
  if (!(event.mask & (OfEntries | IN_CREATE)))
    return; // the attributes of an entry
  note(folder, SeenEntries);
  if (event.mask & IN_ISDIR)
    noteFolderMove(folder, event);

  const QByteArray name(event.name);
  const auto entry = folder.entries.find(name);
  if (entry != folder.entries.end()) {
    Inode& inode = **entry;
    note(inode, SeenNameTouched);
    FileSnapshot found;
    // A note can be older than the name.
    if (event.mask & IN_MOVED_FROM && look(inode, found) != Place::Same) {
      entryMove_ = event.cookie;
      movedEntry_.reset();
      if (const auto known = byWatch_.find(inode.watch); known != byWatch_.end())
        movedEntry_ = known->second;
      movedFrom_ = inode.folder;
      forgetName(inode);
    }
  }
  if (event.mask & IN_MOVED_TO && event.cookie == entryMove_)
    noteArrival(folder, name);
}

void InodeTable::noteArrival(Inode& folder, const QByteArray& name) {
  const auto moved = movedEntry_.lock();
  const auto known = byWatch_.find(folder.watch);
  if (!moved || moved->folder || known == byWatch_.end())
    return;
  if (const auto replaced = folder.entries.find(name); replaced != folder.entries.end()) {
    Inode& old = **replaced;
    FileSnapshot found;
    if (look(old, found) == Place::Same)
      return; // the note is older than the name
    note(old, SeenNameTaken);
    forgetName(old);
  }
  setName(*moved, known->second.lock(), name);
  movedEntry_.reset();
  movedFrom_.reset();
}

// A subfolder that is renamed inside the folder leaves the number of subfolders as it was, unless
// it takes the place of another; a look at the number tells.
void InodeTable::noteFolderMove(Inode& folder, const inotify_event& event) {
  const bool inside = event.mask & IN_MOVED_TO && folderMove_ == event.cookie &&
                      movedOutOf_.lock().get() == &folder;
  if (inside) {
    movedOutOf_.reset();
    return;
  }
  settleFolderMove();
  if (event.mask & IN_MOVED_FROM) {
    folderMove_ = event.cookie;
    movedOutOf_ = byWatch_[event.wd];
  } else {
    note(folder, SeenSubfolders);
  }
}

void InodeTable::settleFolderMove() {
  if (const auto folder = movedOutOf_.lock())
    note(*folder, SeenSubfolders);
  movedOutOf_.reset();
}

void InodeTable::endBatch() {
  settleFolderMove();
}

InodeTable::Place InodeTable::look(const Inode& inode, FileSnapshot& found) const {
  if (!inode.folder || inode.folder->path.isEmpty())
    return Place::Unknown;
  const QByteArray& folder = inode.folder->path;
  const auto there = FileSnapshot::of(folder == "/" ? QByteArray(folder + inode.name)
                                                    : QByteArray(folder + '/' + inode.name));
  if (there && there->isSameFile(inode.last)) {
    found = *there;
    return Place::Same;
  }
  // A folder further up may have been renamed.
  const auto its = FileSnapshot::of(folder);
  return its && its->isSameFile(inode.folder->last) ? Place::Gone : Place::Unknown;
}

std::uint32_t InodeTable::evaluate(Inode& inode, const std::function<void()>& readMore) {
  FileSnapshot found;
  Place place = Place::Unknown;
  if (inode.seen & SeenNameTaken) {
    place = Place::Gone;
  } else if (!(inode.seen & (SeenDeleted | SeenUnmounted)) && !inode.deleted) {
    place = look(inode, found);
    // Gone may mean a rename whose event is on its way, Unknown a deletion.
    if (place == Place::Gone || (place == Place::Unknown && inode.seen & SeenAttributes)) {
      readMore();
      place = look(inode, found);
    }
  }
  const std::uint32_t seen = std::exchange(inode.seen, 0);

  std::uint32_t flags = 0;
  flags |= when(seen & (SeenWritten | SeenEntries), VnodeWrite);
  flags |= when(seen & SeenSubfolders, VnodeLink);
  flags |= when(seen & SeenRenamed, VnodeRename);
  flags |= when(seen & SeenUnmounted, VnodeRevoke);
  if (seen & SeenDeleted && !inode.deleted) {
    inode.deleted = true;
    forgetName(inode);
    return flags | VnodeDelete;
  }
  if (inode.deleted || seen & SeenUnmounted)
    return flags;
  switch (place) {
  case Place::Same:
    return flags | evaluateFound(inode, seen, found);
  case Place::Gone:
    return flags | evaluateGone(inode, seen);
  case Place::Unknown:
    break;
  }
  return flags | when(seen & SeenAttributes, VnodeAttrib);
}

std::uint32_t InodeTable::evaluateFound(Inode& inode, std::uint32_t seen,
                                        const FileSnapshot& found) {
  const FileSnapshot last = std::exchange(inode.last, found);
  if (found.names == 0) {
    inode.deleted = true;
    return VnodeDelete;
  }
  const bool otherNames = found.names != last.names;
  const bool otherContents = found.hasOtherContents(last);
  std::uint32_t flags = 0;
  if (otherNames && seen & (SeenAttributes | SeenEntries | SeenLoss))
    flags |= VnodeLink;
  if (found.isRegularFile() && found.size > last.size && seen & (SeenWritten | SeenLoss))
    flags |= VnodeExtend;
  if (seen & SeenAttributes &&
      (!otherNames || found.hasOtherOwnersOrMode(last) || (otherContents && !(seen & SeenWritten))))
    flags |= VnodeAttrib;
  if (seen & SeenLoss) {
    flags |= when(otherContents, VnodeWrite);
    const bool stateOnly = found.stateChanged != last.stateChanged && !otherContents && !otherNames;
    flags |= when(stateOnly || found.hasOtherOwnersOrMode(last), VnodeAttrib);
  }
  return flags;
}

std::uint32_t InodeTable::evaluateGone(Inode& inode, std::uint32_t seen) {
  forgetName(inode);
  std::uint32_t flags = VnodeDelete;
  // Where events were lost nobody can tell a removal from a rename.
  if (seen & SeenLoss)
    return flags | VnodeRename;
  if (!inode.last.isFolder() && inode.last.names > 1) {
    --inode.last.names;
    return flags | VnodeLink;
  }
  inode.deleted = true;
  return flags;
}

std::uint32_t InodeTable::compareContents(Inode& inode) {
  FileSnapshot found;
  if (inode.deleted || !inode.last.isRegularFile() || look(inode, found) != Place::Same ||
      !found.hasOtherContents(inode.last))
    return 0;
  const bool grown = found.size > inode.last.size;
  inode.last = found;
  return grown ? VnodeWrite | VnodeExtend : VnodeWrite;
}

} // namespace zq::platform
