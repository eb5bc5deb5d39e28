// Watching paths rather than files.
#pragma once

#include "app/services/FileState.h"
#include "app/services/path_steps.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/watching/file_watcher.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

#include <cstdint>
#include <functional>
#include <memory>

class VXKQueue;

namespace zq::app {

class ErrorKeepingQueue;

// Tells what happens to the file at a path, and goes on with the one that takes its place. A
// VXKQueue stays with the file that it found, which an editor's save (a new file is renamed over
// the old one) or the rotation of a log leaves behind. Here a path is followed through such a save,
// through deletion and creation anew, through renaming of the file or of a folder above it, and
// when a symbolic link on the way leads elsewhere. Nothing is polled: while there is no file the
// folder in which the path breaks off is watched.
//
// A file that may not be read cannot be watched, and counts as not there until another takes its
// place.
//
// Thread: main, whose event loop must run.
class PathWatch final : public VXFileWatcherDelegate {
 public:
  // What the watcher reports: one of the names in file_watcher.h, and the path as it was added.
  using Reported = std::function<void(const QString& notification, const QString& path)>;
  // The path has other contents that no report tells of: another file stands there now, or one has
  // come where none was, or the file has come back changed. Follows the report, where there is one,
  // of what became of the file before.
  using Appeared = std::function<void(const QString& path)>;

  // Renaming, writing, deletion, changed attributes; values of VnodeEvent.
  static constexpr std::uint32_t DefaultMask = 0x2B;

  // Both are called from the event loop, never by a function of this class; `appeared` may be null.
  // They may add and remove paths and destroy the watch.
  PathWatch(Reported reported, Appeared appeared);
  ~PathWatch() override;

  // Follows `path` and tells the reports of the events in `mask`. Returns 0 where there is a file
  // that is watched now, otherwise the errno value that says why not: the path is followed all the
  // same, and `appeared` tells when there is one. A path that is followed already is told once, by
  // the new mask.
  int addPath(const QString& path, std::uint32_t mask = DefaultMask);
  // Nothing is told of `path` any more; nothing happens where it is not followed.
  void removePath(const QString& path);

  void watcherReceivedNotification(VXFileWatcher& watcher, const QString& notification,
                                   const QString& path) override;

 private:
  struct Receivers {
    Reported reported;
    Appeared appeared;
  };
  // A watcher, made when it is first needed.
  struct Watcher {
    platform::Ref<ErrorKeepingQueue> queue;
    platform::Ref<VXKQueue> files;

    int start(PathWatch& delegate);
    int add(const QString& path, std::uint32_t mask);
    void remove(const QString& path);
  };
  struct Followed {
    std::uint32_t mask = 0;
    std::optional<FileState> watched; // as it was when its watch began
    std::optional<FileState> last;    // what was at the path when it was last looked at
    PathSteps steps;                  // with what is watched of it
    bool leftByRename = false;        // the file before; its deletion may be told later
  };
  struct Folder {
    QSet<QString> paths; // that lead through it
    bool isWatched = false;
  };

  int begin(const QString& path, Followed& followed);
  void end(const QString& path, Followed& followed);
  bool beginAgain(const QString& path, Followed& followed);
  void setSteps(const QString& path, Followed& followed, const PathSteps& steps);
  void updateSteps(const QString& path, Followed& followed);
  PathSteps stepsTo(const QString& path, const Followed& followed) const;
  void useFolder(const QString& watch, const QString& path);
  void leaveFolder(const QString& watch, const QString& path);
  void folderChanged(const QString& watch, const QString& notification);
  bool wayChanged(const QString& path, Followed& followed, bool folderMoved);

  std::shared_ptr<const Receivers> receivers_;
  Watcher files_;
  // Apart from the files, since a folder may be among these.
  Watcher folders_;
  QHash<QString, Followed> paths_;
  // By the path of their watch: with a slash at its end for one whose entries matter.
  QHash<QString, Folder> watchedFolders_;
};

} // namespace zq::app
