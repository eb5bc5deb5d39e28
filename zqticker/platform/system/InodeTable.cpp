#include "zqticker/platform/system/InodeTable_p.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace zq::platform {
namespace {

constexpr std::uint32_t OfItself = IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;
constexpr std::uint32_t OfFile = OfItself | IN_MODIFY;
constexpr std::uint32_t OfEntries = IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t OfFolder = OfItself | OfEntries | IN_CREATE | IN_ONLYDIR;
// Without the attributes: those of its entries would come as well.
constexpr std::uint32_t OfFolderOfName = OfEntries | IN_MOVE_SELF | IN_DELETE_SELF | IN_ONLYDIR;

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

QByteArray folderOf(const QByteArray& path) {
  const auto slash = path.lastIndexOf('/');
  return slash == 0 ? QByteArray("/") : path.left(slash);
}

QByteArray nameOf(const QByteArray& path) {
  return path.mid(path.lastIndexOf('/') + 1);
}

} // namespace

std::shared_ptr<Inode> InodeTable::watchInKnownFolder(const QByteArray& path) {
  if (!path.startsWith('/') || path.endsWith('/') || path.endsWith("/.") || path.endsWith("/.."))
    return nullptr;
  const QByteArray folderPath = folderOf(path);
  Inode* known = folders_.value(folderPath);
  if (!known || known->watch < 0)
    return nullptr;
  const auto its = FileSnapshot::of(folderPath);
  const auto before = FileSnapshot::of(path);
  if (!its || !its->isSameFile(known->last) || !before || before->isSymbolicLink())
    return nullptr;
  const auto folder = known->shared_from_this();
  const int watch = watchFile(path.constData(), *before, IN_DONT_FOLLOW);
  if (watch < 0)
    return nullptr;
  const auto after = FileSnapshot::of(path);
  if (after && after->isSameFile(*before))
    return inodeOfFile(watch, *after, folder, nameOf(path));
  if (!firstOfWatch(watch)) // of one that has just taken the place of the other, or left it
    ::inotify_rm_watch(instance_, watch);
  return nullptr;
}

std::shared_ptr<Inode> InodeTable::watch(int file) {
  const auto snapshot = FileSnapshot::of(file);
  if (!snapshot)
    return nullptr;
  const QByteArray path = snapshot->names > 0 ? pathOf(file) : QByteArray();
  std::shared_ptr<Inode> folder;
  if (path.size() > 1) {
    errno = 0;
    folder = folderAt(folderOf(path));
    if (!folder && (errno == ENOSPC || errno == ENOMEM))
      return nullptr;
  }
  const int watch = watchFile(linkOf(file).constData(), *snapshot, 0);
  if (watch < 0) {
    const int error = errno;
    folder.reset();
    errno = error;
    return nullptr;
  }
  return inodeOfFile(watch, *snapshot, folder, folder ? nameOf(path) : QByteArray());
}

int InodeTable::watchFile(const char* path, const FileSnapshot& snapshot, std::uint32_t how) const {
  const std::uint32_t mask = snapshot.isFolder() ? OfFolder : OfFile;
  return calls_.addWatch(instance_, path, mask | how | IN_MASK_ADD);
}

// Null where there is none, with errno where the kernel refuses its watch.
std::shared_ptr<Inode> InodeTable::folderAt(const QByteArray& path) {
  const auto snapshot = FileSnapshot::of(path);
  if (!snapshot)
    return nullptr;
  Inode* known = folders_.value(path);
  if (known && known->last.isSameFile(*snapshot))
    return known->shared_from_this();
  const int watch = calls_.addWatch(instance_, path.constData(), OfFolderOfName | IN_MASK_ADD);
  // What may be entered but not read gets none: files in it can be looked at all the same.
  if (watch < 0 && errno != EACCES)
    return nullptr;
  known = firstOfWatch(watch);
  auto folder = known ? known->shared_from_this() : newInode(watch, *snapshot);
  setPath(*folder, path);
  return folder;
}

std::shared_ptr<Inode> InodeTable::inodeOfFile(int watch, const FileSnapshot& snapshot,
                                               const std::shared_ptr<Inode>& folder,
                                               const QByteArray& name) {
  Inode* found = nullptr;
  for (auto* each = firstOfWatch(watch); each; each = each->nextOfWatch) {
    if (snapshot.isFolder() || (each->folder == folder && each->name == name)) {
      found = each;
      break;
    }
    if (each->name.isEmpty() && !each->deleted)
      found = each;
  }
  auto inode = found ? found->shared_from_this() : newInode(watch, snapshot);
  if (!inode->firstRegistration)
    inode->last = snapshot; // it may have been the folder of others
  inode->deleted = false;
  if (inode->name.isEmpty() && folder && folder != inode)
    setName(*inode, folder, name);
  return inode;
}

std::shared_ptr<Inode> InodeTable::newInode(int watch, const FileSnapshot& snapshot) {
  auto inode = std::make_shared<Inode>(*this);
  inode->last = snapshot;
  inode->watch = watch;
  if (watch < 0)
    return inode;
  Inode** link = &byWatch_[watch];
  while (*link)
    link = &(*link)->nextOfWatch;
  *link = inode.get();
  return inode;
}

Inode* InodeTable::firstOfWatch(int watch) const {
  return byWatch_.value(watch);
}

std::vector<Inode*> InodeTable::named(const Inode& folder, const QByteArray& name) const {
  const auto [begin, end] = byName_.equal_range(Name{&folder, name});
  return {begin, end};
}

void InodeTable::forgetWatch(int watch) {
  for (auto* each = firstOfWatch(watch); each; each = std::exchange(each->nextOfWatch, nullptr))
    each->watch = -1;
  byWatch_.remove(watch);
}

void InodeTable::setName(Inode& inode, const std::shared_ptr<Inode>& folder,
                         const QByteArray& name) {
  forgetName(inode);
  inode.folder = folder;
  inode.name = name;
  byName_.insert(&inode);
}

void InodeTable::setName(Inode& inode, const QByteArray& path) {
  if (const auto folder = folderAt(folderOf(path)))
    setName(inode, folder, nameOf(path));
  if (inode.last.isFolder())
    setPath(inode, path);
}

void InodeTable::forgetName(Inode& inode) {
  if (inode.name.isEmpty())
    return;
  auto [each, end] = byName_.equal_range(&inode);
  while (each != end && *each != &inode)
    ++each;
  if (each != end)
    byName_.erase(each);
  inode.name.clear();
}

void InodeTable::forgetPlace(Inode& inode) {
  forgetName(inode);
  inode.folder.reset();
}

void InodeTable::setPath(Inode& folder, const QByteArray& path) {
  const auto old = folders_.constFind(folder.path);
  if (old != folders_.constEnd() && *old == &folder)
    folders_.erase(old);
  folder.path = path;
  if (!path.isEmpty())
    folders_.insert(path, &folder);
}

void InodeTable::end(Inode& inode) {
  forgetPlace(inode);
  if (!inode.path.isEmpty())
    setPath(inode, {});
  if (inode.seen != 0)
    std::erase(noted_, &inode);
  if (inode.watch < 0)
    return;
  const auto found = byWatch_.find(inode.watch);
  Inode** link = &found.value();
  while (*link != &inode)
    link = &(*link)->nextOfWatch;
  *link = inode.nextOfWatch;
  if (found.value())
    return;
  byWatch_.erase(found);
  ::inotify_rm_watch(instance_, inode.watch);
}

void InodeTable::note(Inode& inode, std::uint32_t what) {
  if (!inode.firstRegistration || what == 0)
    return;
  if (inode.seen == 0)
    noted_.push_back(&inode);
  inode.seen |= std::uint16_t(what);
}

void InodeTable::noteLoss() {
  for (Inode* const first : std::as_const(byWatch_))
    for (auto* each = first; each; each = each->nextOfWatch)
      note(*each, SeenLoss);
}

} // namespace zq::platform
