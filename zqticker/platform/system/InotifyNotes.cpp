#include "zqticker/platform/system/InotifyNotes_p.h"

#include "zqticker/platform/system/nearby_search_p.h"

#include <sys/inotify.h>

namespace zq::platform {
namespace {

constexpr std::uint32_t OfEntries = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
// Both halves of a move follow each other closely.
constexpr std::size_t MostMoves = 16;

std::uint32_t when(bool condition, std::uint32_t what) {
  return condition ? what : 0;
}

} // namespace

void InotifyNotes::note(const inotify_event& event) {
  if (event.mask & IN_Q_OVERFLOW) {
    table_.noteLoss();
    return;
  }
  auto* each = table_.firstOfWatch(event.wd);
  if (each && event.len > 0) {
    noteEntry(*each, event);
    return;
  }
  for (; each; each = each->nextOfWatch)
    noteItself(*each, event);
  if (event.mask & IN_IGNORED)
    table_.forgetWatch(event.wd);
}

void InotifyNotes::noteItself(Inode& inode, const inotify_event& event) {
  std::uint32_t what = 0;
  what |= when(event.mask & IN_MODIFY, SeenWritten);
  what |= when(event.mask & IN_ATTRIB, SeenAttributes);
  what |= when(event.mask & IN_MOVE_SELF, SeenRenamed);
  what |= when(event.mask & IN_DELETE_SELF, SeenDeleted);
  what |= when(event.mask & IN_UNMOUNT, SeenUnmounted);
  table_.note(inode, what);
  if (inode.path.isEmpty())
    return;
  if (event.mask & IN_MOVE_SELF)
    followFolder(inode);
  if (event.mask & (IN_DELETE_SELF | IN_UNMOUNT))
    table_.setPath(inode, {});
}

void InotifyNotes::followFolder(Inode& folder) {
  FileSnapshot found;
  if (folder.look(found) == Inode::Place::Same) {
    table_.setPath(folder, folder.folder->pathOf(folder.name));
    return;
  }
  const auto slash = folder.path.lastIndexOf('/');
  table_.setPath(folder,
                 findNearby(slash == 0 ? QByteArray("/") : folder.path.left(slash), folder.last));
}

void InotifyNotes::noteEntry(Inode& folder, const inotify_event& event) {
  if (!(event.mask & OfEntries))
    return; // the attributes of an entry
  table_.note(folder, SeenEntries);
  if (event.mask & IN_ISDIR)
    noteFolderMove(folder, event);

  const QByteArray name(event.name);
  for (Inode* inode : table_.named(folder, name)) {
    table_.note(*inode, SeenNameTouched | when(event.mask & IN_DELETE, SeenNameRemoved));
    FileSnapshot found;
    // A note can be older than the name.
    if (event.mask & IN_MOVED_FROM && inode->look(found) != Inode::Place::Same) {
      if (moves_.size() == MostMoves)
        moves_.erase(moves_.begin());
      moves_.push_back({event.cookie, inode->weak_from_this()});
      table_.forgetName(*inode);
    }
  }
  if (event.mask & IN_MOVED_TO)
    noteArrival(folder, name, event.cookie);
}

void InotifyNotes::noteArrival(Inode& folder, const QByteArray& name, std::uint32_t cookie) {
  std::vector<std::shared_ptr<Inode>> moved;
  for (const Move& each : moves_)
    if (const auto inode = each.inode.lock();
        inode && each.cookie == cookie && inode->name.isEmpty())
      moved.push_back(inode);
  if (moved.empty())
    return;
  std::erase_if(moves_, [cookie](const Move& each) { return each.cookie == cookie; });
  for (Inode* old : table_.named(folder, name)) {
    FileSnapshot found;
    if (old->watch == moved.front()->watch)
      continue; // it was opened by its new name already
    if (old->look(found) == Inode::Place::Same)
      return; // the note is older than the name
    table_.note(*old, SeenNameTaken);
    table_.forgetPlace(*old);
  }
  for (const auto& inode : moved)
    table_.setName(*inode, folder.shared_from_this(), name);
}

// A subfolder that is renamed inside the folder leaves the number of subfolders as it was, unless
// it takes the place of another; a look at the number tells.
void InotifyNotes::noteFolderMove(Inode& folder, const inotify_event& event) {
  const bool inside = event.mask & IN_MOVED_TO && folderMove_ == event.cookie &&
                      movedOutOf_.lock().get() == &folder;
  if (inside) {
    movedOutOf_.reset();
    return;
  }
  endBatch();
  if (event.mask & IN_MOVED_FROM) {
    folderMove_ = event.cookie;
    movedOutOf_ = folder.weak_from_this();
  } else {
    table_.note(folder, SeenSubfolders);
  }
}

void InotifyNotes::endBatch() {
  if (const auto folder = movedOutOf_.lock())
    table_.note(*folder, SeenSubfolders);
  movedOutOf_.reset();
}

} // namespace zq::platform
