// Watching folders with the files in them.
#pragma once

#include "app/services/PathWatch.h"

class VXFNSubscribeFileWatcher;

namespace zq::app {

// Tells that something has changed in a folder: VXFNSubscribeFileWatcher, which also tells why a
// folder cannot be watched and goes on with another folder that takes its place.
//
// A folder that is renamed is watched, under the path as it was added, until another stands there.
//
// Thread: main, whose event loop must run.
class FolderWatch final : public VXFileWatcherDelegate {
 public:
  // `reported` is told each burst of changes, and that another folder stands at a path, both as
  // VXFileWatcherWriteNotification.
  explicit FolderWatch(PathWatch::Reported reported);
  ~FolderWatch() override;

  // Watches the folder at `path`. Returns 0, or the errno value that says why it cannot be watched;
  // nothing changes then.
  int addPath(const QString& path);

  void watcherReceivedNotification(VXFileWatcher& watcher, const QString& notification,
                                   const QString& path) override;

 private:
  void folderAppeared(const QString& path);

  PathWatch::Reported reported_;
  platform::Ref<VXFNSubscribeFileWatcher> watcher_;
  PathWatch paths_;
};

} // namespace zq::app
