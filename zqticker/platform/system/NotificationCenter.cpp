#include "zqticker/platform/system/NotificationCenter.h"

#include "zqticker/platform/system/Notification.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

namespace zq::platform {

struct NotificationCenter::Entry {
  // Constant after construction.
  Target observer;
  // Kept, since the threads that look for their own observers must not look at others.
  const void* identity;
  Selector selector;
  std::optional<QString> name;
  bool isOfOneObject;
  std::weak_ptr<Object> object;

  std::atomic<bool> isRemoved = false;

  bool wants(const QString& postedName, const Ref<Object>& postedObject) const {
    return (!name || *name == postedName) &&
           (!isOfOneObject || (postedObject && object.lock() == postedObject));
  }
};

NotificationCenter::NotificationCenter() : entries_(std::make_shared<const Entries>()) {}
NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::defaultCenter() {
  // Observers may leave it until the process ends.
  static auto* const center = new NotificationCenter;
  return *center;
}

std::shared_ptr<const NotificationCenter::Entries> NotificationCenter::entries() const {
  const std::lock_guard lock(mutex_);
  return entries_;
}

void NotificationCenter::addObserver(const Target& observer, const Selector& selector,
                                     const std::optional<QString>& name,
                                     const Ref<Object>& object) {
  const std::shared_ptr<Entry> entry(
      new Entry{observer, observer.identity(), selector, name, static_cast<bool>(object), object});
  std::shared_ptr<const Entries> previous;
  const std::lock_guard lock(mutex_);
  auto changed = std::make_shared<Entries>();
  // Nothing is posted any more about objects that have gone.
  std::copy_if(entries_->begin(), entries_->end(), std::back_inserter(*changed),
               [](const std::shared_ptr<Entry>& other) {
                 return !other->isOfOneObject || !other->object.expired();
               });
  changed->push_back(entry);
  previous = std::exchange(entries_, std::move(changed));
}

// What is freed here may run a destructor that comes back, so that it is freed without the mutex.
template <class Predicate>
void NotificationCenter::removeIf(Predicate isLeaving) {
  bool isAnyLeaving = false;
  const std::shared_ptr<const Entries> present = entries();
  for (const std::shared_ptr<Entry>& entry : *present)
    if (isLeaving(*entry)) {
      entry->isRemoved = true;
      isAnyLeaving = true;
    }
  if (!isAnyLeaving)
    return;
  std::shared_ptr<const Entries> previous;
  const std::lock_guard lock(mutex_);
  auto changed = std::make_shared<Entries>();
  std::copy_if(entries_->begin(), entries_->end(), std::back_inserter(*changed),
               [](const std::shared_ptr<Entry>& entry) { return !entry->isRemoved; });
  previous = std::exchange(entries_, std::move(changed));
}

void NotificationCenter::removeObserver(const Target& observer) {
  if (const void* const identity = observer.identity())
    removeIf([&](const Entry& entry) { return entry.identity == identity; });
}

void NotificationCenter::removeObserver(const Target& observer, const QString& name,
                                        const Ref<Object>& object) {
  const void* const identity = observer.identity();
  if (!identity)
    return;
  removeIf([&](const Entry& entry) {
    return entry.identity == identity && entry.name == name &&
           (!object || entry.object.lock() == object);
  });
}

std::size_t NotificationCenter::registrationCount() const {
  return entries()->size();
}

void NotificationCenter::postNotificationName(const QString& name, const Ref<Object>& object,
                                              const QVariantMap& userInfo) {
  QVariantList arguments;
  bool hasFoundGone = false;
  const std::shared_ptr<const Entries> observers = entries();
  for (const std::shared_ptr<Entry>& entry : *observers) {
    if (entry->isRemoved || !entry->wants(name, object))
      continue;
    if (!entry->observer) {
      hasFoundGone = entry->isRemoved = true;
      continue;
    }
    if (arguments.isEmpty())
      arguments = {any(Notification::make(name, object, userInfo))};
    entry->selector.send(entry->observer, arguments);
  }
  if (hasFoundGone)
    removeIf([](const Entry& entry) { return entry.isRemoved.load(); });
}

} // namespace zq::platform
