// Reports about folders.
#include "zqticker/watching/VXFNSubscribeFileWatcher.h"

#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/system/Notification.h"
#include "zqticker/platform/system/Workspace.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

using Watcher = VXFNSubscribeFileWatcher;

class Folder {
 public:
  QString path() const { return folder_.path(); }
  QString path(const QString& name) const { return folder_.filePath(name); }
  void change() const {
    QFile file(path(u"file"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Append));
    file.write("more");
  }

 private:
  QTemporaryDir folder_;
};

NotificationCenter& center() {
  return Workspace::sharedWorkspace().notificationCenter();
}

// Keeps what it hears as a delegate and as an observer, in one list.
class Ear : public VXFileWatcherDelegate {
 public:
  explicit Ear(const Ref<Watcher>& watcher) {
    watcher->setDelegate(this);
    center().addObserver(this, &Ear::notified, std::nullopt, watcher);
  }
  ~Ear() override { center().removeObserver(this); }

  void watcherReceivedNotification(VXFileWatcher& watcher, const QString& notification,
                                   const QString& path) override {
    heard.append(u"delegate "_s + notification + u' ' + path);
    lastWatcher = &watcher;
    if (const auto call = thenByDelegate)
      call();
  }
  void notified(const Ref<Notification>& notification) {
    EXPECT_EQ(notification->userInfo().keys(), QStringList{u"path"_s});
    heard.append(u"observer "_s + notification->name() + u' ' +
                 notification->userInfo().value(u"path"_s).toString());
    if (const auto call = thenByObserver)
      call();
  }
  bool hears(int count) const {
    return waitFor([&] { return heard.size() >= count; }) && heard.size() == count;
  }

  QStringList heard;
  const VXFileWatcher* lastWatcher = nullptr;
  std::function<void()> thenByDelegate;
  std::function<void()> thenByObserver;
};

QStringList reportOf(const QString& path) {
  return {u"observer VXKQueueFileWrittenToNotification "_s + path,
          u"delegate VXKQueueFileWrittenToNotification "_s + path};
}

// Subscribes beside a watcher; its calls come after those of earlier subscriptions of the folder.
class Marker {
 public:
  explicit Marker(const Folder& folder) {
    const auto callBack = [](std::uint32_t, std::uint32_t, void* self, DirectorySubscription*) {
      ++static_cast<Marker*>(self)->calls_;
    };
    EXPECT_EQ(subscribeByPath(QFile::encodeName(folder.path()), callBack, this, 0, &handle_), 0);
  }
  ~Marker() { unsubscribe(handle_); }

  bool passes() {
    const int before = calls_;
    return waitFor([&] { return calls_ > before; });
  }
  // Handles are counted: that of the subscription which is made `count` subscriptions later.
  DirectorySubscription* handleAfter(int count) const {
    return reinterpret_cast<DirectorySubscription*>(reinterpret_cast<std::uintptr_t>(handle_) +
                                                    std::uintptr_t(count));
  }

 private:
  DirectorySubscription* handle_ = nullptr;
  int calls_ = 0;
};

// What the range exception of a subscription without a path says.
const QString NoPath = u"index 0 beyond the paths of a subscription that has none"_s;

QString failure(const QString& path, int status) {
  return u"zqticker.watching: VXFNSubscribeFileWatcher addPath: %1 failed due to error ID=%2."_s
      .arg(path)
      .arg(status);
}

} // namespace

TEST(VXFNSubscribeFileWatcher, PostsTheNotificationFirstAndCallsTheDelegateThen) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  const QString path = folder.path() + u"/./"_s; // reported as added
  watcher->addPath(path);
  folder.change();
  EXPECT_TRUE(ear.hears(2));
  EXPECT_EQ(ear.heard, reportOf(path));
  EXPECT_EQ(ear.lastWatcher, watcher.get());
}

TEST(VXFNSubscribeFileWatcher, ReportsAnyChangeAsAWrite) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  watcher->addPath(folder.path());
  const std::function<void()> changes[] = {
      [&] { folder.change(); },
      [&] { EXPECT_TRUE(QFile::rename(folder.path(u"file"_s), folder.path(u"other"_s))); },
      [&] { EXPECT_TRUE(QFile(folder.path(u"other"_s)).setPermissions(QFile::ReadOwner)); },
      [&] { EXPECT_TRUE(QFile::remove(folder.path(u"other"_s))); },
      [&] { EXPECT_TRUE(QDir(folder.path()).mkdir(u"sub"_s)); },
      [&] { EXPECT_TRUE(QDir(folder.path()).removeRecursively()); },
  };
  for (const auto& change : changes) {
    ear.heard.clear();
    change();
    EXPECT_TRUE(ear.hears(2));
    EXPECT_EQ(ear.heard, reportOf(folder.path()));
  }
}

TEST(VXFNSubscribeFileWatcher, ReportsABurstOnce) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  watcher->addPath(folder.path());
  const Marker marker(folder);
  for (int i = 0; i < 100; ++i)
    folder.change();
  EXPECT_TRUE(ear.hears(2));
  folder.change();
  EXPECT_TRUE(ear.hears(4));
}

TEST(VXFNSubscribeFileWatcher, TellsFoldersApart) {
  const Folder one;
  const Folder two;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  watcher->addPath(one.path());
  watcher->addPath(two.path());
  two.change();
  EXPECT_TRUE(ear.hears(2));
  EXPECT_EQ(ear.heard, reportOf(two.path()));
}

TEST(VXFNSubscribeFileWatcher, PostsWithoutADelegate) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  {
    Ear gone(watcher);
    EXPECT_EQ(watcher->delegate(), &gone);
  }
  EXPECT_EQ(watcher->delegate(), nullptr);
  watcher->addPath(folder.path());
  folder.change();
  EXPECT_TRUE(ear.hears(1));
  EXPECT_EQ(ear.heard, reportOf(folder.path()).mid(0, 1));
}

TEST(VXFNSubscribeFileWatcher, CallsTheDelegateWithoutAnObserver) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  center().removeObserver(&ear);
  watcher->addPath(folder.path());
  folder.change();
  EXPECT_TRUE(ear.hears(1));
  EXPECT_EQ(ear.heard, reportOf(folder.path()).mid(1));
}

TEST(VXFNSubscribeFileWatcher, ReportsNoPathThatWasRemoved) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  watcher->addPath(folder.path());
  Marker marker(folder);
  folder.change();
  watcher->removePath(folder.path());
  EXPECT_EQ(unsubscribe(marker.handleAfter(-1)), EINVAL);
  EXPECT_TRUE(marker.passes());
  EXPECT_TRUE(ear.heard.isEmpty());
  watcher->addPath(folder.path());
  folder.change();
  EXPECT_TRUE(ear.hears(2));
}

TEST(VXFNSubscribeFileWatcher, RemovesAPathThatIsNotWatchedWithoutEffect) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  watcher->removePath(folder.path());
  watcher->addPath(folder.path());
  watcher->removePath(folder.path() + u'/');
  watcher->removePath(QString());
  folder.change();
  EXPECT_TRUE(ear.hears(2));
}

TEST(VXFNSubscribeFileWatcher, LogsWhatCannotBeWatchedAndGoesOn) {
  const Folder folder;
  folder.change();
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  const std::pair<QString, int> rows[] = {
      {folder.path(u"missing"_s), ENOENT},
      {folder.path(u"file"_s), ENOTDIR},
      {QString(), ENOENT},
      {folder.path() + QChar(QChar::Null) + u"more"_s, ENOENT},
      {folder.path() + QChar(0xD800), ENOENT},
  };
  for (const auto& [path, status] : rows) {
    expectLog(failure(path, status));
    watcher->addPath(path);
    watcher->removePath(path);
  }
  watcher->addPath(folder.path());
  folder.change();
  EXPECT_TRUE(ear.hears(2));
}

TEST(VXFNSubscribeFileWatcher, LogsMessagesThatItDoesNotKnow) {
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  expectLog(u"zqticker.watching: VXFileSubscriptionProc: Unknown message 0"_s);
  VXFileSubscriptionProc(0, 0, watcher.get(), nullptr);
  expectLog(u"zqticker.watching: VXFileSubscriptionProc: Unknown message 4294967295"_s);
  VXFileSubscriptionProc(4294967295U, 0, watcher.get(), nullptr);
  EXPECT_TRUE(ear.heard.isEmpty());
}

TEST(VXFNSubscribeFileWatcher, ReportsWhateverTheMessageSays) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  const Marker marker(folder);
  watcher->addPath(folder.path());
  watcher->sendDelegateMessage(7, marker.handleAfter(1));
  EXPECT_EQ(ear.heard, reportOf(folder.path()));
  VXFileSubscriptionProc(1, 0, watcher.get(), marker.handleAfter(1));
  EXPECT_EQ(ear.heard, reportOf(folder.path()) + reportOf(folder.path()));
}

TEST(VXFNSubscribeFileWatcher, RaisesForASubscriptionThatHasNoPath) {
  const Folder folder;
  const auto watcher = Watcher::make();
  const Marker marker(folder);
  EXPECT_THROW(watcher->sendDelegateMessage(1, nullptr), RangeException);
  EXPECT_THROW(watcher->sendDelegateMessage(1, marker.handleAfter(0)), RangeException);
  EXPECT_THROW(VXFileSubscriptionProc(1, 0, watcher.get(), nullptr), RangeException);
}

// Deliberate: a path that is added twice has a subscription that nobody ends.
TEST(VXFNSubscribeFileWatcher, KeepsTheNewerSubscriptionOfAPathAddedTwiceAndNeverEndsTheOlder) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  Marker marker(folder);
  watcher->addPath(folder.path());
  watcher->addPath(folder.path());
  EXPECT_THROW(watcher->sendDelegateMessage(1, marker.handleAfter(1)), RangeException);
  EXPECT_TRUE(ear.heard.isEmpty());
  watcher->sendDelegateMessage(1, marker.handleAfter(2));
  EXPECT_EQ(ear.heard, reportOf(folder.path()));

  // From the event loop the older one's exception is logged, and the newer one reports.
  ear.heard.clear();
  expectLog(NoPath);
  folder.change();
  EXPECT_TRUE(ear.hears(2));
  EXPECT_EQ(ear.heard, reportOf(folder.path()));

  // Removing the path ends only the newer one.
  watcher->removePath(folder.path());
  EXPECT_EQ(unsubscribe(marker.handleAfter(2)), EINVAL);
  Marker last(folder);
  expectLog(NoPath);
  folder.change();
  EXPECT_TRUE(last.passes());
  EXPECT_EQ(unsubscribe(marker.handleAfter(1)), 0);
}

TEST(VXFNSubscribeFileWatcher, EndsItsSubscriptionsWhenItGoes) {
  const Folder one;
  const Folder two;
  auto watcher = Watcher::make();
  const Marker marker(one);
  watcher->addPath(one.path());
  watcher->addPath(two.path());
  watcher.reset();
  EXPECT_EQ(unsubscribe(marker.handleAfter(1)), EINVAL);
  EXPECT_EQ(unsubscribe(marker.handleAfter(2)), EINVAL);
}

TEST(VXFNSubscribeFileWatcher, IsNotLookedAtBySubscriptionsThatOutliveIt) {
  const Folder folder;
  auto watcher = Watcher::make();
  const Marker first(folder);
  watcher->addPath(folder.path());
  watcher->addPath(folder.path());
  const void* const gone = watcher.get();
  watcher.reset();
  Marker last(folder);
  folder.change();
  EXPECT_TRUE(last.passes()); // nothing is logged
  DirectorySubscription* const older = first.handleAfter(1);
  VXFileSubscriptionProc(1, 0, const_cast<void*>(gone), older);
  VXFileSubscriptionProc(1, 0, const_cast<void*>(gone), nullptr);
  // Another watcher may get the same address.
  const auto other = Watcher::make();
  Ear ear(other);
  VXFileSubscriptionProc(1, 0, other.get(), older);
  EXPECT_TRUE(ear.heard.isEmpty());
  EXPECT_EQ(unsubscribe(older), 0);
}

TEST(VXFNSubscribeFileWatcher, LetsItsDelegateRemoveThePath) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  watcher->addPath(folder.path());
  ear.thenByDelegate = [&] { watcher->removePath(folder.path()); };
  folder.change();
  EXPECT_TRUE(ear.hears(2));
  Marker marker(folder);
  folder.change();
  EXPECT_TRUE(marker.passes());
  EXPECT_EQ(ear.heard.size(), 2);
}

TEST(VXFNSubscribeFileWatcher, LivesUntilItsReportIsDone) {
  for (const bool byObserver : {true, false}) {
    const Folder folder;
    auto watcher = Watcher::make();
    const std::weak_ptr<Watcher> weak = watcher;
    Ear ear(watcher);
    watcher->addPath(folder.path());
    (byObserver ? ear.thenByObserver : ear.thenByDelegate) = [&] { watcher.reset(); };
    folder.change();
    EXPECT_TRUE(ear.hears(2));
    EXPECT_EQ(ear.heard, reportOf(folder.path()));
    EXPECT_TRUE(weak.expired());
  }
}

TEST(VXFNSubscribeFileWatcher, LetsAnObserverTakeTheDelegateAway) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  watcher->addPath(folder.path());
  ear.thenByObserver = [&] { watcher->setDelegate(nullptr); };
  folder.change();
  Marker marker(folder);
  folder.change();
  EXPECT_TRUE(marker.passes());
  EXPECT_EQ(ear.heard, reportOf(folder.path()).mid(0, 1));
}

TEST(VXFNSubscribeFileWatcher, RaisesWhatItsListenersRaiseAndTheEventLoopLogsIt) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  const Marker marker(folder);
  watcher->addPath(folder.path());
  ear.thenByDelegate = [] { throw RangeException(u"by the delegate"_s); };
  EXPECT_THROW(watcher->sendDelegateMessage(1, marker.handleAfter(1)), RangeException);
  ear.heard.clear();
  expectLog(u"by the delegate"_s);
  folder.change();
  EXPECT_TRUE(ear.hears(2));
  ear.heard.clear();
  ear.thenByDelegate = nullptr;
  folder.change();
  EXPECT_TRUE(ear.hears(2));
}

TEST(VXFNSubscribeFileWatcher, IsSharedByTheProcess) {
  const Folder folder;
  const auto shared = Watcher::sharedFileWatcher();
  ASSERT_NE(shared, nullptr);
  EXPECT_EQ(Watcher::sharedFileWatcher(), shared);
  EXPECT_NE(Watcher::make(), shared);
  Ear ear(shared);
  shared->addPath(folder.path());
  folder.change();
  EXPECT_TRUE(ear.hears(2));
  shared->removePath(folder.path());
}

TEST(VXFNSubscribeFileWatcher, ServesCallersThatKnowOnlyTheProtocol) {
  const Folder folder;
  const auto watcher = Watcher::make();
  Ear ear(watcher);
  VXFileWatcher& protocol = *watcher;
  protocol.setDelegate(nullptr);
  EXPECT_EQ(protocol.delegate(), nullptr);
  protocol.setDelegate(&ear);
  EXPECT_EQ(protocol.delegate(), &ear);
  protocol.addPath(folder.path());
  folder.change();
  EXPECT_TRUE(ear.hears(2));
  EXPECT_EQ(watcher->className(), u"VXFNSubscribeFileWatcher"_s);
}

TEST(VXFNSubscribeFileWatcherThread, ReportsOnTheThreadThatAddedThePath) {
  const Folder folder;
  std::atomic<bool> isWatching = false;
  bool wasOnThread = false;
  std::thread thread([&] {
    const auto watcher = Watcher::make();
    Ear ear(watcher);
    ear.thenByDelegate = [&, id = std::this_thread::get_id()] {
      wasOnThread = std::this_thread::get_id() == id;
    };
    watcher->addPath(folder.path());
    isWatching = true;
    EXPECT_TRUE(waitFor([&] { return ear.heard.size() >= 2; }));
    EXPECT_EQ(ear.heard.mid(0, 2), reportOf(folder.path()));
  });
  EXPECT_TRUE(waitFor([&] { return isWatching.load(); }));
  folder.change();
  thread.join();
  EXPECT_TRUE(wasOnThread);
}

TEST(VXFNSubscribeFileWatcherThread, IsLetGoOfByAnotherThreadWhileItReports) {
  for (int round = 0; round < 10; ++round) {
    const Folder folder;
    std::atomic<bool> isWatching = false;
    std::atomic<bool> isGone = false;
    Ref<Watcher> watcher;
    std::thread thread([&] {
      watcher = Watcher::make();
      watcher->addPath(folder.path());
      isWatching = true;
      EXPECT_TRUE(waitFor([&] { return isGone.load(); }));
    });
    EXPECT_TRUE(waitFor([&] { return isWatching.load(); }));
    folder.change();
    watcher.reset();
    isGone = true;
    thread.join();
  }
}
