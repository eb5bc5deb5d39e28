#include "app/services/FolderWatch.h"

#include "zqticker/platform/system/DirectorySubscription.h"
#include "zqticker/watching/VXFNSubscribeFileWatcher.h"

#include <QtCore/QFile>

#include <cerrno>
#include <utility>

namespace zq::app {

using namespace platform;

namespace {
// Why there can be no subscription, which the watcher tells in its log only; 0 where there can.
int subscriptionError(const QString& path) {
  if (path.contains(QChar::Null))
    return ENOENT;
  DirectorySubscription* subscription = nullptr;
  const int error = subscribeByPath(
      QFile::encodeName(path), [](std::uint32_t, std::uint32_t, void*, DirectorySubscription*) {},
      nullptr, 0, &subscription);
  if (error == 0)
    unsubscribe(subscription);
  return error;
}
} // namespace

FolderWatch::FolderWatch(PathWatch::Reported reported)
    : reported_(std::move(reported)), watcher_(VXFNSubscribeFileWatcher::make()),
      paths_([](const QString&, const QString&) {},
             [this](const QString& path) { folderAppeared(path); }) {
  watcher_->setDelegate(this);
}

FolderWatch::~FolderWatch() = default;

int FolderWatch::addPath(const QString& path) {
  if (const int error = subscriptionError(path))
    return error;
  watcher_->removePath(path);
  watcher_->addPath(path);
  return paths_.addPath(path, 0);
}

void FolderWatch::folderAppeared(const QString& path) {
  if (subscriptionError(path) != 0)
    return;
  watcher_->removePath(path);
  watcher_->addPath(path);
  reported_(VXFileWatcherWriteNotification, path);
}

void FolderWatch::watcherReceivedNotification(VXFileWatcher&, const QString& notification,
                                              const QString& path) {
  reported_(notification, path);
}

} // namespace zq::app
