// What a watcher makes of an event queue that refuses, and of one that has nothing to tell.
#include "FakeEventQueue.h"
#include "WatcherProbe.h"

#include "tests/support/LogWatch.h"

#include <QtCore/QDir>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
const QString Empty = u"VXKQueue { watchedPaths = (\n), alwaysNotify = NO }"_s;
const QString OnlyA = u"VXKQueue { watchedPaths = (\n    a\n), alwaysNotify = NO }"_s;

class VXKQueueRefusal : public ::testing::Test {
 protected:
  VXKQueueRefusal() {
    queue->makeFile("a");
    watcher->setDelegate(&recorder);
  }

  Ref<FakeEventQueue> queue = std::make_shared<FakeEventQueue>();
  Recorder recorder;
  Ref<VXKQueue> watcher = VXKQueue::make(queue);
};
using VXKQueueRefusalThread = VXKQueueRefusal;

qsizetype openDescriptors() {
  return QDir(u"/proc/self/fd"_s)
      .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
      .size();
}
} // namespace

TEST(VXKQueue, IsNotMadeWithoutAQueue) {
  EXPECT_FALSE(VXKQueue::make(nullptr));
}

TEST(VXKQueue, IsNotMadeWhenTheKernelGivesNoDescriptorAndLogsNothing) {
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{0, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const Ref<VXKQueue> watcher = VXKQueue::make();
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_FALSE(watcher);
  EXPECT_TRUE(VXKQueue::make());
}

TEST_F(VXKQueueRefusal, OfOpeningLeavesNothingWatched) {
  queue->refuse(FakeEventQueue::Open);
  watcher->addPath(u"a"_s);
  EXPECT_EQ(queue->openings(), 1);
  EXPECT_EQ(watcher->description(), Empty);
  EXPECT_THROW(watcher->removePath(u"a"_s), RangeException);
}

// Deliberate: the answer to the registration is not looked at.
TEST_F(VXKQueueRefusal, OfARegistrationIsNotNoticed) {
  queue->refuse(FakeEventQueue::Add);
  watcher->addPath(u"a"_s);
  EXPECT_EQ(watcher->description(), OnlyA);
  watcher->removePath(u"a"_s);
  EXPECT_EQ(watcher->description(), Empty);
  EXPECT_EQ(queue->count(), 0u);
}

TEST_F(VXKQueueRefusal, OfClosingADescriptorIsLoggedAndThePathIsRemoved) {
  watcher->addPath(u"a"_s);
  queue->refuse(FakeEventQueue::CloseDescriptor);
  expectLog(u"zqticker.watching: removePathFromQueue: Couldn't close file descriptor (5)"_s);
  watcher->removePath(u"a"_s);
  EXPECT_EQ(watcher->description(), Empty);
}

TEST_F(VXKQueueRefusal, OfClosingDescriptorsIsNotLoggedWhenAllPathsAreRemoved) {
  watcher->addPath(u"a"_s);
  watcher->addPath(u"a"_s);
  queue->refuse(FakeEventQueue::CloseDescriptor);
  watcher->removeAllPathsFromQueue();
  EXPECT_EQ(watcher->description(), Empty);
}

TEST_F(VXKQueueRefusal, OfClosingDescriptorsIsLoggedForEachWhenTheWatcherGoes) {
  watcher->addPath(u"a"_s);
  watcher->addPath(u"a"_s);
  queue->refuse(FakeEventQueue::CloseDescriptor);
  expectLog(u"zqticker.watching: dealloc: Couldn't close file descriptor (5)"_s);
  expectLog(u"zqticker.watching: dealloc: Couldn't close file descriptor (5)"_s);
  watcher.reset();
}

// Deliberate: logged as "release", although the thread closes the queue.
TEST_F(VXKQueueRefusalThread, OfClosingTheQueueIsLogged) {
  queue->refuse(FakeEventQueue::Close);
  expectLog(u"zqticker.watching: release: Couldn't close main kqueue (5)"_s);
  watcher.reset();
  // The thread lets go of the queue when it has done everything else.
  const std::weak_ptr<FakeEventQueue> ending = queue;
  queue.reset();
  EXPECT_TRUE(waitFor([&] { return ending.expired(); }));
}

TEST_F(VXKQueueRefusal, OpensNoPathThatNoFileCanHave) {
  watcher->addPath(QString());
  watcher->addPath(u""_s);
  watcher->addPath(u"a"_s + QChar(u'\0') + u"b"_s);
  watcher->addPath(QString(QChar(0xD800)));
  EXPECT_EQ(queue->openings(), 0);
  EXPECT_EQ(watcher->description(), Empty);
}

TEST_F(VXKQueueRefusalThread, AsksForEventsEveryFiveSecondsAtTheLatest) {
  queue->timeOut();
  queue->timeOut();
  ASSERT_TRUE(queue->waitUntilTaken());
  EXPECT_EQ(queue->waits(), std::vector<std::chrono::nanoseconds>(3, std::chrono::seconds(5)));
}

TEST_F(VXKQueueRefusalThread, ReportsNothingOfAnEventWithoutFlags) {
  std::atomic<int> noted = 0;
  const auto connection =
      QObject::connect(&Workspace::sharedWorkspace(), &Workspace::fileSystemChanged,
                       [&](const QString& path) { noted += path == u"nothing"_s; });
  queue->deliver(KernelEvent{1, 0, u"nothing"_s});
  ASSERT_TRUE(queue->waitUntilTaken());
  EXPECT_EQ(noted, 0);
  queue->deliver(KernelEvent{1, 0x80000000, u"nothing"_s}); // none that has a name
  ASSERT_TRUE(queue->waitUntilTaken());
  EXPECT_EQ(noted, 1);
  EXPECT_TRUE(recorder.heard.empty());
  QObject::disconnect(connection);
}

// What is in flight is reported by the path of the event.
TEST_F(VXKQueueRefusalThread, ReportsAnEventOfAPathThatHasBeenRemovedMeanwhile) {
  queue->deliver(KernelEvent{1, VnodeWrite, u"removed"_s});
  ASSERT_TRUE(recorder.hears(1));
  EXPECT_EQ(recorder.heard, (Reports{{VXFileWatcherWriteNotification, u"removed"_s}}));
}

TEST(VXKQueueThread, LeavesNoDescriptorOpen) {
  EXPECT_TRUE(VXKQueue::make()); // whatever opens its own on first use
  const qsizetype before = openDescriptors();
  for (int i = 0; i < 20; ++i) {
    const auto watcher = VXKQueue::make();
    ASSERT_TRUE(watcher);
    for (const QString& path : {u"/tmp"_s, u"/etc/passwd"_s, u"/tmp"_s, u"/missing"_s})
      watcher->addPath(path);
    watcher->removePath(u"/tmp"_s);
  }
  EXPECT_TRUE(waitFor([&] { return openDescriptors() <= before; }));
}
