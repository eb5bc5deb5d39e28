#include "zqticker/watching/subscription_owners_p.h"

#include <memory>
#include <mutex>
#include <unordered_map>

using namespace zq::platform;

namespace {
using Owner = std::weak_ptr<VXFNSubscribeFileWatcher>;

struct Owners {
  std::mutex mutex;
  // Protected by the mutex.
  std::unordered_map<const void*, Owner> byAddress;
  std::unordered_map<DirectorySubscription*, Owner> byHandle;
};

Owners& owners() {
  // Never destroyed: the shared watcher lives as long as the process.
  static Owners* const instance = new Owners;
  return *instance;
}
} // namespace

void noteWatcher(const Ref<VXFNSubscribeFileWatcher>& watcher) {
  const std::lock_guard lock(owners().mutex);
  owners().byAddress[watcher.get()] = watcher;
}

void forgetWatcher(const VXFNSubscribeFileWatcher* watcher) {
  const std::lock_guard lock(owners().mutex);
  owners().byAddress.erase(watcher);
}

void noteSubscription(DirectorySubscription* handle, const Ref<VXFNSubscribeFileWatcher>& owner) {
  const std::lock_guard lock(owners().mutex);
  owners().byHandle[handle] = owner;
}

void forgetSubscription(DirectorySubscription* handle) {
  const std::lock_guard lock(owners().mutex);
  owners().byHandle.erase(handle);
}

Ref<VXFNSubscribeFileWatcher> ownerOfSubscription(const void* reference,
                                                  DirectorySubscription* handle) {
  const std::lock_guard lock(owners().mutex);
  if (const auto found = owners().byHandle.find(handle);
      found != owners().byHandle.end() && found->second.expired())
    return nullptr;
  const auto found = owners().byAddress.find(reference);
  return found == owners().byAddress.end() ? nullptr : found->second.lock();
}
