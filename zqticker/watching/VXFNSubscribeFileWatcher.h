// Watching folders as wholes.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Weak.h"
#include "zqticker/platform/system/DirectorySubscription.h"
#include "zqticker/watching/file_watcher.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QHash>

#include <cstdint>
#include <mutex>
#include <utility>

// Reports that something has changed in a folder, not what, always as a write to the folder. What
// counts as a change, and how changes are merged, is said by subscribeByPath.
//
// A report posts VXFileWatcherWriteNotification to the workspace's notification center first and
// calls the delegate then, always both: deliberately the opposite order to VXKQueue's, and without
// its switch.
//
// Reports come from the event loop of the thread that added the path, on that thread; what an
// observer or the delegate raises is logged there. Either may do anything, removing the path and
// letting go of the watcher included.
//
// Thread: one, that of its paths.
class ZQTICKER_EXPORT VXFNSubscribeFileWatcher final : public zq::platform::Object,
                                                       public VXFileWatcher {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "")

 public:
  // The one that the process shares, never released.
  static zq::platform::Ref<VXFNSubscribeFileWatcher> sharedFileWatcher();
  // Operation: init
  static zq::platform::Ref<VXFNSubscribeFileWatcher> make();
  // Ends the subscriptions of its paths.
  ~VXFNSubscribeFileWatcher() override;

  // Watches the folder at `path`; what cannot be watched is logged with the platform's status, an
  // errno value, and nothing changes.
  //
  // A path that is added again gets a new subscription, and the earlier one is deliberately never
  // ended: its calls find no path and raise a RangeException, which the event loop logs.
  void addPath(const QString& path) override;
  // Nothing for a path that is not watched.
  void removePath(const QString& path) override;

  VXFileWatcherDelegate* delegate() const override { return delegate_.get(); }
  void setDelegate(zq::platform::Weak<VXFileWatcherDelegate> delegate) override {
    delegate_ = std::move(delegate);
  }

  // Reports a change of the path that `handle` belongs to; `message` is not used. Raises
  // RangeException for a handle of no path, and what an observer or the delegate raises.
  // Operation: sendDelegateMessage:forSubscription:
  void sendDelegateMessage(std::uint32_t message, zq::platform::DirectorySubscription* handle);

 private:
  VXFNSubscribeFileWatcher();

  zq::platform::Weak<VXFileWatcherDelegate> delegate_;
  // The lock is for removePath alone: deliberately, the rest belongs to one thread.
  std::mutex mutex_;
  QHash<QString, zq::platform::DirectorySubscription*> subscriptions_;
};

// What the platform calls: has the watcher `reference` report, for DirectoryModifiedMessage, and
// logs any other message. Does nothing once that watcher has gone.
ZQTICKER_EXPORT void VXFileSubscriptionProc(std::uint32_t message, std::uint32_t flags,
                                            void* reference,
                                            zq::platform::DirectorySubscription* handle);
