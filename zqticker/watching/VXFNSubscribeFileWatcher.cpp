#include "zqticker/watching/VXFNSubscribeFileWatcher.h"

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/system/Workspace.h"
#include "zqticker/watching/path_text_p.h"
#include "zqticker/watching/subscription_owners_p.h"
#include "zqticker/watching/watching_log_p.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;

void VXFileSubscriptionProc(std::uint32_t message, std::uint32_t, void* reference,
                            DirectorySubscription* handle) {
  if (message != DirectoryModifiedMessage) {
    qCWarning(watchingLog, "VXFileSubscriptionProc: Unknown message %u", message);
    return;
  }
  // Kept until it has reported, whatever its delegate does.
  if (const auto watcher = ownerOfSubscription(reference, handle))
    watcher->sendDelegateMessage(message, handle);
}

Ref<VXFNSubscribeFileWatcher> VXFNSubscribeFileWatcher::sharedFileWatcher() {
  static const auto* const shared = new Ref<VXFNSubscribeFileWatcher>(make());
  return *shared;
}

Ref<VXFNSubscribeFileWatcher> VXFNSubscribeFileWatcher::make() {
  const Ref<VXFNSubscribeFileWatcher> watcher(new VXFNSubscribeFileWatcher);
  noteWatcher(watcher);
  return watcher;
}

VXFNSubscribeFileWatcher::VXFNSubscribeFileWatcher() = default;

VXFNSubscribeFileWatcher::~VXFNSubscribeFileWatcher() {
  for (DirectorySubscription* const handle : std::as_const(subscriptions_)) {
    unsubscribe(handle);
    forgetSubscription(handle);
  }
  forgetWatcher(this);
}

void VXFNSubscribeFileWatcher::addPath(const QString& path) {
  DirectorySubscription* handle = nullptr;
  const std::int32_t status =
      subscribeByPath(fileSystemRepresentation(path), VXFileSubscriptionProc, this, 0, &handle);
  if (status != 0) {
    qCWarning(watchingLog).noquote().nospace() << u"VXFNSubscribeFileWatcher addPath: "_s << path
                                               << u" failed due to error ID="_s << status << u"."_s;
    return;
  }
  noteSubscription(handle, std::static_pointer_cast<VXFNSubscribeFileWatcher>(shared_from_this()));
  // Deliberately not unsubscribed, should there be an earlier one.
  subscriptions_.insert(path, handle);
}

void VXFNSubscribeFileWatcher::removePath(const QString& path) {
  DirectorySubscription* handle = nullptr;
  {
    const std::lock_guard lock(mutex_);
    handle = subscriptions_.take(path);
  }
  if (!handle)
    return;
  unsubscribe(handle);
  forgetSubscription(handle);
}

void VXFNSubscribeFileWatcher::sendDelegateMessage(std::uint32_t, DirectorySubscription* handle) {
  const QStringList paths = subscriptions_.keys(handle);
  if (paths.isEmpty())
    throw RangeException(u"index 0 beyond the paths of a subscription that has none"_s);
  const Ref<Object> self = shared_from_this();
  const QString path = paths.first();
  Workspace::sharedWorkspace().notificationCenter().postNotificationName(
      VXFileWatcherWriteNotification, self, {{u"path"_s, path}});
  if (VXFileWatcherDelegate* const receiver = delegate())
    receiver->watcherReceivedNotification(*this, VXFileWatcherWriteNotification, path);
}
