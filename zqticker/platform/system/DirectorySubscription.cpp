#include "zqticker/platform/system/DirectorySubscription.h"

#include "zqticker/platform/system/SubscriptionLoop_p.h"

#include <QtCore/QCoreApplication>

#include <cerrno>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace zq::platform {
namespace {

// Where each handle's subscription is; expired where its thread has ended.
struct Directory {
  static Directory& shared() {
    // Never destroyed: threads may outlive the program's main function.
    static Directory* const directory = new Directory;
    return *directory;
  }

  std::mutex mutex;
  // Protected by the mutex.
  std::unordered_map<DirectorySubscription*, std::weak_ptr<SubscribedFolders>> folders;
};

} // namespace

std::int32_t subscribeByPath(const QByteArray& path, DirectorySubscriptionCallback callback,
                             void* reference, std::uint32_t flags, DirectorySubscription** handle) {
  if (!callback || !handle || flags != 0)
    return EINVAL;
  if (!QCoreApplication::instance())
    return ENOTSUP;
  SubscriptionLoop& loop = SubscriptionLoop::ofThisThread();
  DirectorySubscription* made = nullptr;
  if (const std::int32_t status = loop.subscribe(path, callback, reference, made))
    return status;
  Directory& directory = Directory::shared();
  const std::lock_guard lock(directory.mutex);
  directory.folders.emplace(made, loop.folders());
  *handle = made;
  return 0;
}

std::int32_t unsubscribe(DirectorySubscription* handle) {
  std::shared_ptr<SubscribedFolders> folders;
  {
    Directory& directory = Directory::shared();
    const std::lock_guard lock(directory.mutex);
    const auto found = directory.folders.find(handle);
    if (found == directory.folders.end())
      return EINVAL;
    folders = found->second.lock();
    directory.folders.erase(found);
  }
  if (folders)
    folders->unsubscribe(handle);
  return 0;
}

} // namespace zq::platform
