#include "zqticker/platform/system/SubscribedFolders_p.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace zq::platform {
namespace {

constexpr std::uint32_t OfFolder = IN_MODIFY | IN_ATTRIB | IN_CREATE | IN_DELETE | IN_MOVED_FROM |
                                   IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t OfParent = IN_DELETE | IN_DELETE_SELF;
// A file that was removed while it is open has left the folder.
constexpr std::uint32_t How = IN_ONLYDIR | IN_EXCL_UNLINK | IN_MASK_ADD;
constexpr int LargestRead = 64 * 1024;
constexpr int MostReadsInARow = 16;

// Counted, so that a handle which has ended is never taken for another.
DirectorySubscription* makeHandle() {
  static std::atomic<std::uintptr_t> last = 0;
  return reinterpret_cast<DirectorySubscription*>(++last);
}

QByteArray linkOf(int file) {
  return "/proc/self/fd/" + QByteArray::number(file);
}

// An open descriptor, by its path only.
class PathDescriptor {
 public:
  explicit PathDescriptor(const QByteArray& path)
      : file_(::open(path.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}
  ~PathDescriptor() {
    if (file_ >= 0)
      ::close(file_);
  }
  PathDescriptor(const PathDescriptor&) = delete;
  PathDescriptor& operator=(const PathDescriptor&) = delete;

  int get() const { return file_; }

 private:
  int file_;
};

} // namespace

SubscribedFolders::~SubscribedFolders() {
  if (instance_ >= 0)
    ::close(instance_);
}

int SubscribedFolders::descriptor() const {
  const std::lock_guard lock(mutex_);
  return instance_;
}

std::int32_t SubscribedFolders::subscribe(const QByteArray& path, Call& call,
                                          Clock::time_point now) {
  const std::lock_guard lock(mutex_);
  if (instance_ < 0)
    instance_ = calls_.makeInstance(IN_NONBLOCK | IN_CLOEXEC);
  if (instance_ < 0)
    return errno;
  if (path.contains('\0'))
    return ENOENT;
  const PathDescriptor file(path);
  if (file.get() < 0)
    return errno;
  // What has happened by now is for the others.
  readEvents(now);
  const int watch = calls_.addWatch(instance_, linkOf(file.get()).constData(), OfFolder | How);
  if (watch < 0)
    return errno;
  call.handle = makeHandle();
  Folder& folder = folders_[watch];
  folder.subscriptions.push_back(call.handle);
  Subscription& subscription = subscriptions_[call.handle];
  subscription.call = call;
  subscription.watch = watch;
  // Only now: a rename that comes after the watch is noted.
  if (folder.parent < 0)
    setParent(watch, file.get());
  return 0;
}

// While a folder is open somewhere, such as the working folder of a program, its removal causes no
// event on itself; the folder in which it stands tells. Where that must not be watched, the event
// comes when it is closed.
void SubscribedFolders::setParent(int watch, int file) {
  std::array<char, 4097> buffer;
  const ssize_t length = ::readlink(linkOf(file).constData(), buffer.data(), buffer.size());
  if (length <= 1 || std::size_t(length) == buffer.size() || buffer[0] != '/')
    return;
  const QByteArray path(buffer.data(), length);
  const auto slash = path.lastIndexOf('/');
  const QByteArray parentPath = slash == 0 ? QByteArray("/") : path.left(slash);
  const int parent = calls_.addWatch(instance_, parentPath.constData(), OfParent | How);
  if (parent < 0 || parent == watch)
    return;
  Folder& folder = folders_[watch];
  folder.parent = parent;
  folder.name = path.mid(slash + 1);
  auto& subfolders = folders_[parent].subfolders;
  // One whose rename has not been noted yet.
  if (const auto earlier = subfolders.constFind(folder.name); earlier != subfolders.cend())
    folders_[*earlier].parent = -1;
  subfolders[folder.name] = watch;
}

void SubscribedFolders::forgetParent(int watch) {
  const auto found = folders_.find(watch);
  if (found == folders_.end() || found->second.parent < 0)
    return;
  const int parent = std::exchange(found->second.parent, -1);
  Folder& above = folders_[parent];
  const auto entry = above.subfolders.find(found->second.name);
  if (entry != above.subfolders.end() && *entry == watch)
    above.subfolders.erase(entry);
  release(parent);
}

// Ends the watch of a folder of which nobody wants to hear.
void SubscribedFolders::release(int watch) {
  const auto found = folders_.find(watch);
  if (found == folders_.end() || !found->second.subscriptions.empty() ||
      !found->second.subfolders.isEmpty())
    return;
  ::inotify_rm_watch(instance_, watch);
  end(watch);
}

// The kernel has no watch on the folder any more.
void SubscribedFolders::end(int watch) {
  forgetParent(watch);
  const auto found = folders_.find(watch);
  if (found == folders_.end())
    return;
  for (DirectorySubscription* const each : found->second.subscriptions)
    subscriptions_[each].watch = -1;
  for (const int subfolder : std::as_const(found->second.subfolders))
    folders_[subfolder].parent = -1;
  folders_.erase(found);
}

void SubscribedFolders::unsubscribe(DirectorySubscription* handle) {
  const std::lock_guard lock(mutex_);
  const auto found = subscriptions_.find(handle);
  if (found == subscriptions_.end())
    return;
  const int watch = found->second.watch;
  subscriptions_.erase(found);
  std::erase(changed_, handle);
  std::erase(due_, handle);
  if (watch < 0)
    return;
  std::erase(folders_[watch].subscriptions, handle);
  release(watch);
}

void SubscribedFolders::readChanges(Clock::time_point now) {
  const std::lock_guard lock(mutex_);
  if (instance_ >= 0)
    readEvents(now);
}

void SubscribedFolders::readEvents(Clock::time_point now) {
  alignas(inotify_event) std::array<char, LargestRead> buffer;
  for (int reads = 0; reads < MostReadsInARow; ++reads) {
    const ssize_t length = ::read(instance_, buffer.data(), buffer.size());
    if (length <= 0)
      break;
    for (const char* at = buffer.data(); at < buffer.data() + length;) {
      const auto& event = *reinterpret_cast<const inotify_event*>(at);
      note(event, now);
      at += sizeof(inotify_event) + event.len;
    }
  }
}

void SubscribedFolders::note(const inotify_event& event, Clock::time_point now) {
  if (event.mask & IN_Q_OVERFLOW) {
    noteLoss(now);
    return;
  }
  const auto found = folders_.find(event.wd);
  if (found == folders_.end())
    return;
  if (event.mask & (OfFolder | IN_UNMOUNT))
    noteFolder(found->second, now);
  if (event.len > 0 && event.mask & IN_DELETE && event.mask & IN_ISDIR) {
    const int removed = found->second.subfolders.value(event.name, -1);
    if (const auto subfolder = folders_.find(removed); subfolder != folders_.end()) {
      noteFolder(subfolder->second, now);
      ::inotify_rm_watch(instance_, removed); // its end, later, is no second change
      end(removed);
    }
    return;
  }
  if (event.mask & IN_MOVE_SELF)
    forgetParent(event.wd);
  if (event.mask & IN_IGNORED)
    end(event.wd);
}

// Nobody knows who has changed; and a name that was lost must not stand for another folder.
void SubscribedFolders::noteLoss(Clock::time_point now) {
  std::vector<int> watches;
  for (const auto& [watch, folder] : folders_)
    watches.push_back(watch);
  for (const int watch : watches)
    forgetParent(watch);
  for (const auto& [handle, subscription] : subscriptions_)
    noteSubscription(handle, now);
}

void SubscribedFolders::noteFolder(const Folder& folder, Clock::time_point now) {
  for (DirectorySubscription* const each : folder.subscriptions)
    noteSubscription(each, now);
}

void SubscribedFolders::noteSubscription(DirectorySubscription* handle, Clock::time_point now) {
  Subscription& subscription = subscriptions_[handle];
  subscription.lastChange = now;
  if (std::exchange(subscription.isChanged, true))
    return;
  subscription.firstChange = now;
  changed_.push_back(handle);
}

bool SubscribedFolders::hasChanges() const {
  const std::lock_guard lock(mutex_);
  return !changed_.empty();
}

bool SubscribedFolders::takeDue(Clock::time_point now) {
  const std::lock_guard lock(mutex_);
  std::erase_if(changed_, [&](DirectorySubscription* handle) {
    Subscription& subscription = subscriptions_[handle];
    if (now - subscription.lastChange < QuietTime && now - subscription.firstChange < LongestDelay)
      return false;
    subscription.isChanged = false;
    if (!std::exchange(subscription.isDue, true))
      due_.push_back(handle);
    return true;
  });
  return !due_.empty();
}

bool SubscribedFolders::takeCall(Call& due) {
  const std::lock_guard lock(mutex_);
  if (due_.empty())
    return false;
  Subscription& subscription = subscriptions_[due_.front()];
  due_.pop_front();
  subscription.isDue = false;
  due = subscription.call;
  return true;
}

} // namespace zq::platform
