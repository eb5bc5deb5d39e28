// What a watcher reports, to whom and in which order, whatever its queue.
#include "WatcherBackends.h"

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
const QString& Written = VXFileWatcherWriteNotification;

constexpr std::uint32_t AllEvents = 0x7F;
} // namespace

template <class Backend>
using VXKQueueThread = WatcherTest<Backend>;
TYPED_TEST_SUITE(VXKQueueThread, Backends, BackendNames);

TYPED_TEST(VXKQueueThread, TellsItsDelegateOfAWriteOnce) {
  const QString path = this->add(u"a"_s);
  const QString last = this->add(u"last"_s);
  this->write(path);
  ASSERT_TRUE(this->recorder.hears(1));
  this->write(last);
  ASSERT_TRUE(this->recorder.hears(2));
  EXPECT_EQ(this->recorder.heard, (Reports{{Written, path}, {Written, last}}));
  EXPECT_EQ(this->recorder.lastWatcher, this->watcher.get());
  EXPECT_EQ(this->watcher->delegate(), &this->recorder);
}

TYPED_TEST(VXKQueueThread, PostsANotificationWithoutADelegate) {
  const Observer observer(this->watcher);
  this->watcher->setDelegate(nullptr);
  EXPECT_EQ(this->watcher->delegate(), nullptr);
  const QString path = this->add(u"a"_s);
  this->write(path);
  ASSERT_TRUE(observer.hears(1));
  EXPECT_EQ(observer.heard(), (Reports{{Written, path}}));
  EXPECT_TRUE(this->recorder.heard.empty());
}

TYPED_TEST(VXKQueueThread, PostsNoNotificationWhileThereIsADelegate) {
  const Observer observer(this->watcher);
  const QString path = this->add(u"a"_s);
  const QString last = this->add(u"last"_s);
  this->write(path);
  ASSERT_TRUE(this->recorder.hears(1));
  // The report of the last path comes after all that belongs to the first.
  this->write(last);
  ASSERT_TRUE(this->recorder.hears(2));
  EXPECT_TRUE(observer.heard().empty());
}

TYPED_TEST(VXKQueueThread, AlwaysNotifyingPostsTheNotificationAfterTheDelegatesCall) {
  EXPECT_FALSE(this->watcher->alwaysNotify());
  this->watcher->setAlwaysNotify(true);
  std::atomic<int> calls = 0;
  std::atomic<int> callsBefore = 0;
  const Observer observer(this->watcher, [&] { callsBefore = calls.load(); });
  this->recorder.then = [&] {
    ++calls;
    EXPECT_TRUE(observer.heard().empty());
  };
  const QString path = this->add(u"a"_s);
  this->write(path);
  ASSERT_TRUE(observer.hears(1));
  EXPECT_EQ(callsBefore, 1);
  EXPECT_EQ(observer.heard(), this->recorder.heard);
}

TYPED_TEST(VXKQueueThread, ReportsTheFlagsOfOneEventInTheOrderOfTheirNames) {
  const QString held = this->add(u"held"_s);
  const QString path = this->backend.make(u"a"_s);
  this->watcher->addPathToQueue(path, AllEvents);
  this->holdThread(held);
  const QStringList names = this->backend.changeInManyWays(path);
  ASSERT_TRUE(this->recorder.hears(1 + std::size_t(names.size())));
  Reports expected{{Written, held}};
  for (const QString& name : names)
    expected.push_back({name, path});
  EXPECT_EQ(this->recorder.heard, expected);
}

TYPED_TEST(VXKQueueThread, ReportsAWriteBeforeTheChangedAttributesOfTheSameEvent) {
  const QString held = this->add(u"held"_s);
  const QString path = this->add(u"a"_s);
  this->holdThread(held);
  this->backend.setMode(path);
  this->write(path);
  ASSERT_TRUE(this->recorder.hears(3));
  EXPECT_EQ(this->recorder.heard, (Reports{{Written, held},
                                           {Written, path},
                                           {VXFileWatcherAttributeChangeNotification, path}}));
}

TYPED_TEST(VXKQueueThread, LeavesSizesOutUnlessAskedFor) {
  const QString path = this->add(u"a"_s);
  const QString all = this->backend.make(u"all"_s);
  this->watcher->addPathToQueue(all, AllEvents);
  const QString byDefault = this->backend.make(u"default"_s);
  this->watcher->addPathToQueue(byDefault);
  this->backend.append(path);
  this->backend.append(byDefault);
  this->backend.append(all);
  ASSERT_TRUE(this->recorder.hears(4));
  EXPECT_EQ(this->recorder.heard, (Reports{{Written, path},
                                           {Written, byDefault},
                                           {Written, all},
                                           {VXFileWatcherSizeIncreaseNotification, all}}));
}

TYPED_TEST(VXKQueueThread, ReportsAPathTwiceThatWasAddedTwiceUntilItIsRemovedOnce) {
  const QString path = this->add(u"a"_s);
  this->watcher->addPath(path);
  this->write(path);
  ASSERT_TRUE(this->recorder.hears(2));
  this->watcher->removePath(path);
  const QString last = this->add(u"last"_s);
  this->write(path);
  this->write(last);
  ASSERT_TRUE(this->recorder.hears(4));
  EXPECT_EQ(this->recorder.heard,
            (Reports{{Written, path}, {Written, path}, {Written, path}, {Written, last}}));
  this->watcher->removePathFromQueue(path);
  EXPECT_THROW(this->watcher->removePathFromQueue(path), RangeException);
}

TYPED_TEST(VXKQueueThread, ReportsNothingOfPathsThatWereRemoved) {
  const QString path = this->add(u"a"_s);
  const QString other = this->add(u"b"_s);
  this->watcher->removeAllPathsFromQueue();
  const QString last = this->add(u"last"_s);
  this->write(path);
  this->write(other);
  this->write(last);
  ASSERT_TRUE(this->recorder.hears(1));
  EXPECT_EQ(this->recorder.heard, (Reports{{Written, last}}));
}

TYPED_TEST(VXKQueueThread, RaisesForAPathThatIsNotWatchedAndGoesOn) {
  const QString path = this->add(u"a"_s);
  EXPECT_THROW(this->watcher->removePath(path + u'/'), RangeException);
  EXPECT_THROW(this->watcher->removePath(QString()), RangeException);
  // The lock is free again, for other threads as well.
  std::thread([&] { this->watcher->removePath(path); }).join();
  EXPECT_THROW(this->watcher->removePath(path), RangeException);
}

TYPED_TEST(VXKQueueThread, TellsTheWorkspaceBeforeItReports) {
  const QString path = this->add(u"a"_s);
  std::atomic<int> noted = 0;
  const auto connection = QObject::connect(
      &Workspace::sharedWorkspace(), &Workspace::fileSystemChanged, [&](const QString& changed) {
        EXPECT_FALSE(isMainThread());
        if (changed == path)
          ++noted;
      });
  this->showConnection();
  int notedBefore = 0;
  this->recorder.then = [&] { notedBefore = noted; };
  this->backend.write(path);
  ASSERT_TRUE(this->recorder.hears(1));
  EXPECT_EQ(notedBefore, 1);
  QObject::disconnect(connection);
}

TYPED_TEST(VXKQueueThread, DescribesItselfByItsPathsAndWhetherItAlwaysNotifies) {
  EXPECT_EQ(this->watcher->description(), u"VXKQueue { watchedPaths = (\n), alwaysNotify = NO }"_s);
  const QString first = this->add(u"first 1"_s);
  const QString second = this->add(u"second 2"_s);
  this->watcher->addPath(first);
  // Changes nothing.
  this->watcher->addPath(first + u".missing"_s);
  this->watcher->setAlwaysNotify(true);
  EXPECT_EQ(this->watcher->description(),
            u"VXKQueue { watchedPaths = (\n    \"%1\",\n    \"%2\",\n    \"%1\"\n), "
            u"alwaysNotify = YES }"_s.arg(first, second));
  this->watcher->removePath(first);
  EXPECT_EQ(this->watcher->description(),
            u"VXKQueue { watchedPaths = (\n    \"%2\",\n    \"%1\"\n), alwaysNotify = YES }"_s.arg(
                first, second));
}

TEST(VXKQueue, DescribesPathsInTheSystemsNotation) {
  const FakeBackend backend;
  const auto watcher = VXKQueue::make(backend.queue);
  for (const QString& name :
       {u"Plain7"_s, u"a b"_s, u"say \"x\\y\"\n\t\r\x01"_s, u"\u00e9\u20ac"_s})
    watcher->addPath(backend.make(name));
  EXPECT_EQ(watcher->description(),
            u"VXKQueue { watchedPaths = (\n    Plain7,\n    \"a b\",\n"
            u"    \"say \\\"x\\\\y\\\"\\n\\t\\r\\001\",\n    \"\\U00e9\\U20ac\"\n), "
            u"alwaysNotify = NO }"_s);
}
