// A delegate and an observer that keep what they hear.
#pragma once

#include "tests/support/waiting.h"
#include "zqticker/platform/objects/MainThread.h"
#include "zqticker/platform/system/Notification.h"
#include "zqticker/platform/system/Workspace.h"
#include "zqticker/watching/VXKQueue.h"

#include <gtest/gtest.h>

#include <functional>
#include <mutex>
#include <ostream>
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
  explicit Observer(const platform::Ref<VXKQueue>& watcher, std::function<void()> first = {})
      : first_(std::move(first)) {
    center().addObserver(this, &Observer::hear, std::nullopt, watcher);
  }
  ~Observer() override { center().removeObserver(this); }

  void hear(const platform::Ref<platform::Notification>& notification) {
    EXPECT_FALSE(platform::isMainThread());
    EXPECT_EQ(notification->userInfo().keys(), QStringList{QStringLiteral("path")});
    if (first_)
      first_();
    // Last: whoever waits for it may end this observer as soon as the mutex is free.
    const std::lock_guard lock(mutex_);
    heard_.push_back(
        {notification->name(), notification->userInfo().value(QStringLiteral("path")).toString()});
  }

  Reports heard() const {
    const std::lock_guard lock(mutex_);
    return heard_;
  }
  bool hears(std::size_t count) const {
    return waitFor([&] { return heard().size() >= count; });
  }

 private:
  static platform::NotificationCenter& center() {
    return platform::Workspace::sharedWorkspace().notificationCenter();
  }

  // Constant after construction.
  std::function<void()> first_;

  mutable std::mutex mutex_;
  Reports heard_;
};

} // namespace zq::testing
