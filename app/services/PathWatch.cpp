#include "app/services/PathWatch.h"

#include "app/services/ErrorKeepingQueue.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/watching/VXKQueue.h"

#include <cerrno>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// What makes another look at a path necessary.
constexpr std::uint32_t LeavingMask = VnodeDelete | VnodeRename | VnodeRevoke;
constexpr std::uint32_t EntriesMask = LeavingMask | VnodeWrite | VnodeAttrib;
// While files come and go faster than they can be looked at the next event decides.
constexpr int MostAttempts = 16;

// The event of which a file that leaves its path is reported; 0 for other notifications.
std::uint32_t leavingEvent(const QString& notification) {
  if (notification == VXFileWatcherDeleteNotification)
    return VnodeDelete;
  if (notification == VXFileWatcherRenameNotification)
    return VnodeRename;
  return notification == VXFileWatcherAccessRevocationNotification ? std::uint32_t(VnodeRevoke) : 0;
}

bool isOneFile(const std::optional<FileState>& a, const std::optional<FileState>& b) {
  return a && b ? a->isSameFile(*b) : !a && !b;
}

bool watchesEntries(const QString& watch) {
  return watch.endsWith(u'/');
}

// The watches of the folders in `steps`.
QStringList watchesOf(const PathSteps& steps) {
  QStringList watches = steps.passed;
  for (const QString& folder : steps.deciding)
    watches.append(watchesEntries(folder) ? folder : QString(folder + u'/'));
  return watches;
}
} // namespace

int PathWatch::Watcher::start(PathWatch& delegate) {
  if (files)
    return 0;
  queue = ErrorKeepingQueue::make();
  const int error = errno;
  files = VXKQueue::make(queue);
  if (!files)
    return queue ? EAGAIN : error;
  files->setDelegate(&delegate);
  return 0;
}

int PathWatch::Watcher::add(const QString& path, std::uint32_t mask) {
  queue->clearOpenError();
  files->addPathToQueue(path, mask);
  return queue->openError();
}

void PathWatch::Watcher::remove(const QString& path) {
  files->removePathFromQueue(path);
}

PathWatch::PathWatch(Reported reported, Appeared appeared)
    : receivers_(std::make_shared<Receivers>(Receivers{std::move(reported), std::move(appeared)})) {
}

PathWatch::~PathWatch() = default;

int PathWatch::addPath(const QString& path, std::uint32_t mask) {
  if (path.isEmpty() || path.contains(QChar::Null))
    return ENOENT;
  if (const int error = files_.start(*this))
    return error;
  if (const int error = folders_.start(*this))
    return error;
  Followed& followed = paths_[path];
  followed.mask = mask;
  const int error = begin(path, followed);
  followed.last = followed.watched;
  return error;
}

void PathWatch::removePath(const QString& path) {
  const auto found = paths_.find(path);
  if (found == paths_.end())
    return;
  end(path, *found);
  setSteps(path, *found, {});
  paths_.erase(found);
}

// Watches what is at `path` now, and the way to it.
int PathWatch::begin(const QString& path, Followed& followed) {
  int error = 0;
  for (int attempt = 0; attempt < MostAttempts; ++attempt) {
    end(path, followed);
    const auto found = FileState::of(path);
    error = files_.add(path, followed.mask | LeavingMask);
    // One that came since cannot be told from others.
    followed.watched = error == 0 ? found.value_or(FileState()) : std::optional<FileState>();
    updateSteps(path, followed);
    if (isOneFile(found, FileState::of(path)) && (found || error != 0))
      break;
  }
  return error;
}

void PathWatch::end(const QString& path, Followed& followed) {
  if (std::exchange(followed.watched, std::nullopt))
    files_.remove(path);
}

// Whether `path` has other contents than before.
bool PathWatch::beginAgain(const QString& path, Followed& followed) {
  begin(path, followed);
  if (!followed.watched)
    return false;
  return std::exchange(followed.last, followed.watched) != followed.watched;
}

PathSteps PathWatch::stepsTo(const QString& path, const Followed& followed) const {
  PathSteps steps = stepsOf(path);
  if (!followed.watched && !steps.place.isEmpty())
    steps.deciding.append(folderOf(steps.place));
  return steps;
}

// Whatever changes after the last look is told by a folder that is watched.
void PathWatch::updateSteps(const QString& path, Followed& followed) {
  PathSteps steps = stepsTo(path, followed);
  for (int attempt = 0; attempt < MostAttempts; ++attempt) {
    setSteps(path, followed, steps);
    steps = stepsTo(path, followed);
    if (steps == followed.steps)
      break;
  }
}

void PathWatch::setSteps(const QString& path, Followed& followed, const PathSteps& steps) {
  const QStringList before = watchesOf(followed.steps);
  const QStringList now = watchesOf(steps);
  followed.steps = steps;
  for (const QString& watch : now)
    if (!before.contains(watch))
      useFolder(watch, path);
  for (const QString& watch : before)
    if (!now.contains(watch))
      leaveFolder(watch, path);
}

void PathWatch::useFolder(const QString& watch, const QString& path) {
  Folder& folder = watchedFolders_[watch];
  folder.paths.insert(path);
  if (!folder.isWatched)
    folder.isWatched = folders_.add(watch, watchesEntries(watch) ? EntriesMask : LeavingMask) == 0;
}

void PathWatch::leaveFolder(const QString& watch, const QString& path) {
  const auto found = watchedFolders_.find(watch);
  found->paths.remove(path);
  if (!found->paths.isEmpty())
    return;
  if (found->isWatched)
    folders_.remove(watch);
  watchedFolders_.erase(found);
}

void PathWatch::watcherReceivedNotification(VXFileWatcher& watcher, const QString& notification,
                                            const QString& path) {
  if (&watcher == folders_.files.get()) {
    folderChanged(path, notification);
    return;
  }
  const auto found = paths_.find(path);
  if (found == paths_.end())
    return;
  const std::uint32_t leaving = leavingEvent(notification);
  bool isTold = leaving == 0 || (found->mask & leaving) != 0;
  bool hasAppeared = false;
  if (leaving == VnodeRename)
    found->leftByRename = true;
  // One that was renamed and then deleted is told of as both, perhaps after another has come.
  if (leaving == VnodeDelete && std::exchange(found->leftByRename, false) && found->watched &&
      isOneFile(FileState::of(path), found->watched))
    isTold = false;
  // Before anybody is told, which may take its time.
  if (leaving != 0)
    hasAppeared = beginAgain(path, *found);
  else if (const auto state = FileState::of(path); state && isOneFile(state, found->watched))
    found->last = state;

  const Weak<PathWatch> self(this);
  const auto receivers = receivers_;
  if (isTold)
    receivers->reported(notification, path);
  if (hasAppeared && receivers->appeared && self && paths_.contains(path))
    receivers->appeared(path);
}

void PathWatch::folderChanged(const QString& watch, const QString& notification) {
  const auto folder = watchedFolders_.find(watch);
  if (folder == watchedFolders_.end())
    return;
  const QSet<QString> paths = folder->paths;
  if (leavingEvent(notification) != 0) {
    // Another folder may stand there.
    if (folder->isWatched)
      folders_.remove(watch);
    folder->isWatched = folders_.add(watch, watchesEntries(watch) ? EntriesMask : LeavingMask) == 0;
  }
  const bool folderMoved = notification == VXFileWatcherRenameNotification;
  QStringList appeared;
  for (const QString& path : paths)
    if (wayChanged(path, paths_[path], folderMoved))
      appeared.append(path);

  const Weak<PathWatch> self(this);
  const auto receivers = receivers_;
  for (const QString& path : appeared)
    if (receivers->appeared && self && paths_.contains(path))
      receivers->appeared(path);
}

// Whether `path` has other contents than before.
bool PathWatch::wayChanged(const QString& path, Followed& followed, bool folderMoved) {
  if (!followed.watched)
    return beginAgain(path, followed);
  if (isOneFile(FileState::of(path), followed.watched)) {
    updateSteps(path, followed);
    return false;
  }
  // The file itself has left: its own report is on the way, and would be lost with its watch.
  if (!folderMoved && !isOneFile(FileState::of(followed.steps.place), followed.watched))
    return false;
  return beginAgain(path, followed);
}

} // namespace zq::app
