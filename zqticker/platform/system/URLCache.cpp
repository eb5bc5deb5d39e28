#include "zqticker/platform/system/URLCache.h"

#include "zqticker/platform/system/HTTPCacheStore_p.h"

#include <atomic>
#include <mutex>

namespace zq::platform {

struct URLCache::State {
  // Tells loads without a lock that there is no store, the case of most programs.
  std::atomic<bool> keeps = false;
  std::mutex mutex;
  std::shared_ptr<HTTPCacheStore> store; // protected by mutex
};

URLCache::URLCache() : state_(std::make_unique<State>()) {}

URLCache::~URLCache() = default;

URLCache& URLCache::sharedURLCache() {
  static URLCache cache;
  return cache;
}

void URLCache::setStore(const QString& directory, qint64 maximumBytes) {
  auto store = directory.isEmpty() || maximumBytes <= 0
                   ? nullptr
                   : std::make_shared<HTTPCacheStore>(directory, maximumBytes);
  const std::lock_guard lock(state_->mutex);
  state_->keeps = store != nullptr;
  state_->store.swap(store);
}

void URLCache::removeAllCachedResponses() {
  if (const auto store = sharedHTTPCacheStore())
    store->removeAll();
}

std::shared_ptr<HTTPCacheStore> sharedHTTPCacheStore() {
  URLCache::State& state = *URLCache::sharedURLCache().state_;
  if (!state.keeps.load(std::memory_order_relaxed))
    return nullptr;
  const std::lock_guard lock(state.mutex);
  return state.store;
}

} // namespace zq::platform
