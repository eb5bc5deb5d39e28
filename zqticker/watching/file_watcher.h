// What all watchers of files have in common: paths, a delegate, and the names of what they report.
#pragma once

#include "zqticker/platform/objects/Weak.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

class VXFileWatcher;

// Hears what happens to watched files. On which thread, and before or after the notification, is
// said by each watcher.
class ZQTICKER_EXPORT VXFileWatcherDelegate : public zq::platform::WeakReferenced {
 public:
  ~VXFileWatcherDelegate() override;

  // `notification` is one of the names below; `path` is the path as it was added.
  // Operation: watcher:receivedNotification:forPath:
  virtual void watcherReceivedNotification(VXFileWatcher& watcher, const QString& notification,
                                           const QString& path) = 0;
};

// Either watcher, for callers that do not care which.
class ZQTICKER_EXPORT VXFileWatcher {
 public:
  virtual ~VXFileWatcher();

  // Watches what is at `path`, in the system's own notation. Nothing changes where that cannot be
  // watched.
  virtual void addPath(const QString& path) = 0;
  virtual void removePath(const QString& path) = 0;

  // Not owned; null for none, and once it has gone.
  virtual VXFileWatcherDelegate* delegate() const = 0;
  virtual void setDelegate(zq::platform::Weak<VXFileWatcherDelegate> delegate) = 0;

 protected:
  VXFileWatcher() = default;
  VXFileWatcher(const VXFileWatcher&) = default;
  VXFileWatcher& operator=(const VXFileWatcher&) = default;
};

// The names under which changes are reported, and posted to the workspace's notification center
// with the watcher as the object and the path, as it was added, under "path" in the user info. In
// the order in which those of one event are reported. A name and its value differ.
ZQTICKER_EXPORT extern const QString VXFileWatcherRenameNotification;
ZQTICKER_EXPORT extern const QString VXFileWatcherWriteNotification;
ZQTICKER_EXPORT extern const QString VXFileWatcherDeleteNotification;
ZQTICKER_EXPORT extern const QString VXFileWatcherAttributeChangeNotification;
ZQTICKER_EXPORT extern const QString VXFileWatcherSizeIncreaseNotification;
ZQTICKER_EXPORT extern const QString VXFileWatcherLinkCountChangeNotification;
ZQTICKER_EXPORT extern const QString VXFileWatcherAccessRevocationNotification;
