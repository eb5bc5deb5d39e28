// Watches files and folders one by one, and tells what happens to each.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Weak.h"
#include "zqticker/watching/file_watcher.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

namespace zq::platform {
class KernelEventQueue;
}
class VXMainThreadProxy;
class WatchedPaths;

// A watcher over the kernel's event queue, with a thread of its own that waits for events.
//
//     const auto watcher = VXKQueue::make();
//     watcher->setDelegate(this);
//     watcher->addPath(u"/etc/hosts"_s);
//
// For each event the workspace is told that the file system changed (noteFileSystemChanged), then
// each of its flags is reported, in the order of the names in file_watcher.h: to the delegate, on
// the main thread, and where there is none, or `alwaysNotify` is set, as a notification of the
// workspace's center, posted on the watcher's thread. One that has gone counts as no delegate.
//
// What a delegate, an observer or a slot raises by an exception of the platform is logged and ends
// the reports of that event. Any other exception ends the watching quietly: the queue is closed.
//
// The thread knows its watcher only while it reports. When the last reference goes the thread
// ends, at once or after the report that it is making, and nobody waits for it; the watcher may be
// destroyed on that thread.
//
// Thread: any. A report waits until the main thread runs its event loop; where that has quit
// already, or there is no application, the delegate is not told, without a log line.
class ZQTICKER_EXPORT VXKQueue : public zq::platform::Object, public VXFileWatcher {
  Q_GADGET
  ZQ_OBJECT

 public:
  // The watcher of the whole process, made when it is first asked for and never destroyed. Null
  // where none can be made; then the next call tries again.
  static zq::platform::Ref<VXKQueue> sharedFileWatcher();

  // Null where the kernel gives no queue or no thread.
  // Operation: init
  static zq::platform::Ref<VXKQueue> make();
  // A watcher over `queue`, which it stops and closes in the end. Null for null.
  static zq::platform::Ref<VXKQueue> make(zq::platform::Ref<zq::platform::KernelEventQueue> queue);

  ~VXKQueue() override;

  // The descriptor of the event queue; -1 after an exception has ended the watching.
  int queueFD() const;

  // Not owned; called on the main thread, which must also be the one that destroys it.
  VXFileWatcherDelegate* delegate() const override;
  void setDelegate(zq::platform::Weak<VXFileWatcherDelegate> delegate) override;

  // Whether notifications are posted although there is a delegate; after it has been called. False
  // by default.
  bool alwaysNotify() const { return alwaysNotify_; }
  void setAlwaysNotify(bool alwaysNotify) { alwaysNotify_ = alwaysNotify; }

  // Class name, watched paths and alwaysNotify.
  QString description() const override;

  // Watches what is at `path` for renaming, changed attributes, writing and deletion. Nothing
  // changes where that cannot be opened. A path that is added twice is watched and reported twice.
  // Symbolic links are followed; what is watched is the file, whatever becomes of its name.
  void addPath(const QString& path) override;
  void addPathToQueue(const QString& path);
  // The same for the events in `mask`, values of zq::platform::VnodeEvent.
  // Operation: addPathToQueue:notifyingAbout:
  void addPathToQueue(const QString& path, std::uint32_t mask);

  // Ends the watch that was added first for this very `path`. An event that is being reported
  // meanwhile may still come. Raises RangeException where there is none.
  void removePath(const QString& path) override;
  void removePathFromQueue(const QString& path);
  void removeAllPathsFromQueue();

  // Reports `name`, one of the names in file_watcher.h, about `path`, as said above. Called by the
  // watcher's thread. Raises what the delegate and the observers raise.
  // Operation: postNotification:forFile:
  void postNotification(const QString& name, const QString& path);

 private:
  explicit VXKQueue(zq::platform::Ref<zq::platform::KernelEventQueue> queue);
  void closeDescriptor(int descriptor, const char* operation);

  // Constant after construction.
  zq::platform::Ref<zq::platform::KernelEventQueue> queue_;

  std::atomic<bool> alwaysNotify_ = false;

  mutable std::mutex delegateMutex_;
  // Protected by it.
  zq::platform::Weak<VXFileWatcherDelegate> delegate_;
  zq::platform::Ref<VXMainThreadProxy> delegateProxy_;

  mutable std::mutex mutex_;
  // What it points to is protected by it.
  const std::unique_ptr<WatchedPaths> watched_;
};
