#include "zqticker/platform/system/InodeChanges_p.h"

#include "zqticker/platform/system/KernelEventQueue.h"
#include "zqticker/platform/system/nearby_search_p.h"

#include <utility>

namespace zq::platform {
namespace {

std::uint32_t when(bool condition, std::uint32_t flag) {
  return condition ? flag : 0;
}

} // namespace

std::uint32_t InodeChanges::evaluate(Inode& inode, const std::function<void()>& readMore) {
  FileSnapshot found;
  Place place = Place::Unknown;
  if (!(inode.seen & (SeenDeleted | SeenUnmounted | SeenNameTaken)) && !inode.deleted) {
    place = find(inode, found);
    // Gone may mean a rename whose event is on its way, Unknown a deletion.
    if (place == Place::Gone || (place == Place::Unknown && !(inode.seen == SeenWritten))) {
      readMore();
      if (inode.name.isEmpty() && inode.folder && !(inode.seen & SeenNameTaken))
        findAgain(inode);
      place = find(inode, found);
    }
    if (place == Place::Unknown && inode.seen & SeenNameRemoved)
      place = Place::Gone;
  }
  const std::uint32_t seen = std::exchange(inode.seen, 0);
  if (seen & SeenNameTaken)
    place = Place::Gone;

  std::uint32_t flags = 0;
  flags |= when(seen & (SeenWritten | SeenEntries), VnodeWrite);
  flags |= when(seen & SeenSubfolders, VnodeLink);
  flags |= when(seen & SeenRenamed, VnodeRename);
  flags |= when(seen & SeenUnmounted, VnodeRevoke);
  if (seen & SeenDeleted && !inode.deleted) {
    inode.deleted = true;
    table_.forgetPlace(inode);
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
  if (!(seen & SeenAttributes))
    return flags;
  // As long as its folder tells of its name, the name is there. Else its removal looks the same,
  // and must not be taken for a change of attributes.
  return flags | (!inode.name.isEmpty() && inode.folder->watch >= 0 ? VnodeAttrib : VnodeLink);
}

// Without a name of its own, by another one that is watched.
Inode::Place InodeChanges::find(Inode& inode, FileSnapshot& found) {
  if (!inode.name.isEmpty())
    return inode.look(found);
  bool deleted = false;
  for (auto* each = table_.firstOfWatch(inode.watch); each; each = each->nextOfWatch) {
    if (const Place place = each->look(found); place != Place::Unknown)
      return place;
    deleted = deleted || each->deleted;
  }
  return deleted ? Place::Gone : Place::Unknown;
}

// After it has left its folder for one without a watch.
void InodeChanges::findAgain(Inode& inode) {
  const QByteArray path =
      inode.folder->path.isEmpty() ? QByteArray() : findNearby(inode.folder->path, inode.last);
  inode.folder.reset();
  if (!path.isEmpty())
    table_.setName(inode, path);
}

std::uint32_t InodeChanges::evaluateFound(Inode& inode, std::uint32_t seen,
                                          const FileSnapshot& found) {
  const FileSnapshot last = std::exchange(inode.last, found);
  if (!(seen & (SeenAttributes | SeenEntries | SeenLoss)))
    inode.last.keepState(last); // changes of it that the look has found already have a note to come
  if (found.names == 0) {
    inode.deleted = true;
    table_.forgetPlace(inode);
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

std::uint32_t InodeChanges::evaluateGone(Inode& inode, std::uint32_t seen) {
  // Where events were lost it can have been renamed.
  if (seen & SeenLoss && !inode.name.isEmpty() && !(seen & SeenNameTaken)) {
    table_.forgetName(inode);
    findAgain(inode);
    FileSnapshot found;
    if (find(inode, found) == Place::Same) {
      // The rename has changed its state.
      const bool otherAttributes = found.hasOtherOwnersOrMode(inode.last);
      return VnodeRename | (evaluateFound(inode, seen, found) & ~std::uint32_t(VnodeAttrib)) |
             when(otherAttributes, VnodeAttrib);
    }
  }
  table_.forgetPlace(inode);
  if (seen & SeenLoss) // nor can anybody tell a removal from a rename to somewhere else
    return VnodeDelete | VnodeRename;
  if (!inode.last.isFolder() && inode.last.names > 1) {
    --inode.last.names;
    return VnodeDelete | VnodeLink;
  }
  inode.deleted = true;
  return VnodeDelete;
}

std::uint32_t InodeChanges::compareContents(Inode& inode) {
  FileSnapshot found;
  if (inode.deleted || !inode.last.isRegularFile() || find(inode, found) != Place::Same ||
      !found.hasOtherContents(inode.last))
    return 0;
  const bool grown = found.size > inode.last.size;
  found.keepState(inode.last);
  inode.last = found;
  return grown ? VnodeWrite | VnodeExtend : VnodeWrite;
}

} // namespace zq::platform
