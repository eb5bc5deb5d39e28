// Notifications from whoever posts them to whoever observes.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Selector.h"
#include "zqticker/platform/objects/Target.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QVariantMap>

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace zq::platform {

class Notification;

// Observers are sent what is posted, at once, on the posting thread, in the order in which they
// were added.
//
//     center.addObserver(this, &Reader::changed, u"…"_s);
//     …
//     void Reader::changed(const Ref<Notification>& notification);
//
// Thread: any, also from inside an observer. An observer for whose notifications another thread may
// be posting must be removed before it is destroyed, and may be sent once more by a post that is
// under way meanwhile.
class ZQTICKER_EXPORT NotificationCenter {
 public:
  // The program's own center.
  static NotificationCenter& defaultCenter();

  NotificationCenter();
  ~NotificationCenter();
  NotificationCenter(const NotificationCenter&) = delete;
  NotificationCenter& operator=(const NotificationCenter&) = delete;

  // Has `selector` sent to `observer`, with a Ref<Notification> as its argument, for each
  // notification with this name, or with any, about this very object, or about any. Neither is
  // owned: an observer that has gone is sent nothing, and nothing is about an object that has gone.
  // Whoever is added twice is sent twice; whoever is added by an observer is sent from the next
  // post on.
  // Operation: addObserver:selector:name:object:
  void addObserver(const Target& observer, const Selector& selector,
                   const std::optional<QString>& name = std::nullopt,
                   const Ref<Object>& object = nullptr);

  // Takes back all that was added for `observer`. One that is removed while a post is under way on
  // this thread is not sent any more.
  void removeObserver(const Target& observer);
  // Takes back what was added for `observer` with this very name, whatever the object, or only
  // what was added with `object` where there is one.
  // Operation: removeObserver:name:object:
  void removeObserver(const Target& observer, const QString& name,
                      const Ref<Object>& object = nullptr);

  // How many registrations there are. That of an observer that has gone counts until the next post
  // that it is meant for, one about an object that has gone until another registration is added.
  std::size_t registrationCount() const;

  // Sends a notification to its observers and returns when all have been called. What one of them
  // raises is raised here, and those after it are not called. `object` may be null.
  // Operation: postNotificationName:object:userInfo:
  void postNotificationName(const QString& name, const Ref<Object>& object,
                            const QVariantMap& userInfo = {});

 private:
  struct Entry;
  using Entries = std::vector<std::shared_ptr<Entry>>;

  std::shared_ptr<const Entries> entries() const;
  template <class Predicate>
  void removeIf(Predicate isLeaving);

  mutable std::mutex mutex_;
  // Protected by the mutex; what it points to never changes, so that posts read it without.
  std::shared_ptr<const Entries> entries_;
};

} // namespace zq::platform
