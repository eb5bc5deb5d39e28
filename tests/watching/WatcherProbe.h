// A delegate and an observer that keep what they hear, and files to be changed.
#pragma once

#include "tests/support/waiting.h"
#include "zqticker/platform/objects/MainThread.h"
#include "zqticker/platform/system/Notification.h"
#include "zqticker/platform/system/Workspace.h"
#include "zqticker/watching/VXKQueue.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <fcntl.h>
#include <functional>
#include <mutex>
#include <ostream>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zq::testing {

struct Report {
  QString notification;
  QString path;

  friend bool operator==(const Report& a, const Report& b) {
    return a.notification == b.notification && a.path == b.path;
  }
  friend void PrintTo(const Report& report, std::ostream* stream) {
    *stream << report.notification.toStdString() << ' ' << report.path.toStdString();
  }
};
using Reports = std::vector<Report>;

// Lives on the main thread.
class Recorder : public VXFileWatcherDelegate {
 public:
  void watcherReceivedNotification(VXFileWatcher& watcher, const QString& notification,
                                   const QString& path) override {
    EXPECT_TRUE(platform::isMainThread());
    lastWatcher = &watcher;
    heard.push_back({notification, path});
    // A copy, for it may be replaced meanwhile.
    if (const auto call = then)
      call();
  }

  bool hears(std::size_t count) const {
    return waitFor([&] { return heard.size() >= count; });
  }

  Reports heard;
  const VXFileWatcher* lastWatcher = nullptr;
  std::function<void()> then;
};

// Observes all notifications about one watcher, on that watcher's thread.
class Observer : public platform::WeakReferenced {
 public:
  explicit Observer(const platform::Ref<VXKQueue>& watcher) {
    center().addObserver(this, &Observer::hear, std::nullopt, watcher);
  }
  ~Observer() override { center().removeObserver(this); }

  void hear(const platform::Ref<platform::Notification>& notification) {
    EXPECT_FALSE(platform::isMainThread());
    EXPECT_EQ(notification->userInfo().keys(), QStringList{QStringLiteral("path")});
    {
      const std::lock_guard lock(mutex_);
      heard_.push_back({notification->name(),
                        notification->userInfo().value(QStringLiteral("path")).toString()});
    }
    if (then)
      then();
  }

  Reports heard() const {
    const std::lock_guard lock(mutex_);
    return heard_;
  }
  bool hears(std::size_t count) const {
    return waitFor([&] { return heard().size() >= count; });
  }

  // Set before anything is reported.
  std::function<void()> then;

 private:
  static platform::NotificationCenter& center() {
    return platform::Workspace::sharedWorkspace().notificationCenter();
  }

  mutable std::mutex mutex_;
  Reports heard_;
};

// A folder of its own. Paths are given by the name in it.
class Files {
 public:
  QString path(const QString& name) const { return folder_.filePath(name); }

  QString make(const QString& name, const QByteArray& contents = "first") const {
    write(name, contents, O_CREAT | O_TRUNC);
    return path(name);
  }
  void write(const QString& name, const QByteArray& contents, int flags = 0) const {
    const int file =
        ::open(QFile::encodeName(path(name)).constData(), O_WRONLY | O_CLOEXEC | flags, 0644);
    EXPECT_GE(file, 0);
    EXPECT_EQ(::write(file, contents.constData(), std::size_t(contents.size())), contents.size());
    ::close(file);
  }
  void rename(const QString& from, const QString& to) const {
    EXPECT_EQ(::rename(QFile::encodeName(path(from)).constData(),
                       QFile::encodeName(path(to)).constData()),
              0);
  }

 private:
  QTemporaryDir folder_;
};

} // namespace zq::testing
