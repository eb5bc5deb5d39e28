// How watchers begin and end, that of the process included, and what they do when the program ends.
#include "FakeEventQueue.h"
#include "Files.h"
#include "WatcherProbe.h"

#include <QtCore/QCoreApplication>

#include <atomic>
#include <cstdlib>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
const QString& Written = VXFileWatcherWriteNotification;

class VXKQueueEnd : public ::testing::Test {
 protected:
  VXKQueueEnd() { watcher->setDelegate(&recorder); }

  void deliver(const QString& path) const { queue->deliver(KernelEvent{1, VnodeWrite, path}); }
  // As the end of exec() does, without events between.
  static void quitLoop() {
    ASSERT_TRUE(QMetaObject::invokeMethod(qApp, "aboutToQuit", Qt::DirectConnection));
  }
  bool endsItsThread() const {
    return waitFor([&] { return queue->descriptor() == -1; });
  }

  Ref<FakeEventQueue> queue = std::make_shared<FakeEventQueue>();
  Recorder recorder;
  Ref<VXKQueue> watcher = VXKQueue::make(queue);
};
using VXKQueueEndThread = VXKQueueEnd;
} // namespace

TEST_F(VXKQueueEndThread, ComesAtOnceWhenTheLastReferenceGoes) {
  ASSERT_TRUE(queue->waitUntilTaken());
  EXPECT_EQ(watcher.use_count(), 1);
  EXPECT_EQ(watcher->queueFD(), FakeEventQueue::QueueDescriptor);
  watcher.reset();
  EXPECT_TRUE(endsItsThread());
  // No time-out was needed.
  EXPECT_EQ(queue->waits().size(), 1u);
}

TEST_F(VXKQueueEndThread, IsNotWaitedForByWhomeverTheThreadWaits) {
  const std::weak_ptr<VXKQueue> watching = watcher;
  std::atomic<bool> isReporting = false;
  const auto connection = QObject::connect(
      &Workspace::sharedWorkspace(), &Workspace::fileSystemChanged, [&] { isReporting = true; });
  deliver(u"a"_s);
  while (!isReporting)
    std::this_thread::yield();
  watcher.reset(); // would hang here
  ASSERT_TRUE(recorder.hears(1));
  EXPECT_TRUE(waitFor([&] { return watching.expired(); }));
  EXPECT_TRUE(endsItsThread());
  QObject::disconnect(connection);
}

TEST_F(VXKQueueEndThread, MayComeOnAnotherThread) {
  std::thread([this] { watcher.reset(); }).join();
  EXPECT_TRUE(endsItsThread());
}

TEST_F(VXKQueueEndThread, OfTheMainLoopDropsReportsToTheDelegateUntilOneRunsAgain) {
  // Waits for the loop, or is about to, when that quits.
  deliver(u"a"_s);
  quitLoop();
  deliver(u"b"_s);
  ASSERT_TRUE(queue->waitUntilTaken());
  // Posting needs no main thread.
  watcher->setAlwaysNotify(true);
  const Observer observer(watcher);
  deliver(u"c"_s);
  ASSERT_TRUE(queue->waitUntilTaken());
  EXPECT_EQ(observer.heard(), (Reports{{Written, u"c"_s}}));
  EXPECT_TRUE(recorder.heard.empty());

  runPostedEvents();
  deliver(u"d"_s);
  ASSERT_TRUE(recorder.hears(1));
  EXPECT_EQ(recorder.heard, (Reports{{Written, u"d"_s}}));
}

TEST_F(VXKQueueEndThread, OfTheMainLoopAndTheWatcherEndsTheThread) {
  deliver(u"a"_s);
  quitLoop();
  watcher.reset();
  EXPECT_TRUE(queue->waitUntilClosed());
  EXPECT_TRUE(recorder.heard.empty());
  runPostedEvents();
}

TEST(VXKQueueSharedThread, IsTheSameForAllThreadsThatAskAtOnce) {
  std::vector<std::thread> threads;
  std::vector<Ref<VXKQueue>> found(8);
  for (Ref<VXKQueue>& each : found)
    threads.emplace_back([&] { each = VXKQueue::sharedFileWatcher(); });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_TRUE(found.front());
  for (const Ref<VXKQueue>& each : found)
    EXPECT_EQ(each, found.front());
  EXPECT_NE(VXKQueue::make(), found.front());
}

TEST(VXKQueueSharedThread, WatchesWithoutAnybodyHoldingIt) {
  const Files files;
  const QString path = files.make(u"a"_s);
  Recorder recorder;
  VXKQueue::sharedFileWatcher()->setDelegate(&recorder);
  VXKQueue::sharedFileWatcher()->addPath(path);
  Files::write(path, "FIRST");
  EXPECT_TRUE(recorder.hears(1));
  VXKQueue::sharedFileWatcher()->removePath(path);
  VXKQueue::sharedFileWatcher()->setDelegate(nullptr);
}

// Each in a process of its own, whose end a sanitizer would complain about.
TEST(VXKQueueThreadDeathTest, LetsTheProgramEndWhileTheSharedWatcherReports) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        static const Files files; // removed when the program ends
        const QString path = files.make(u"a"_s);
        const auto watcher = VXKQueue::sharedFileWatcher();
        const Observer observer(watcher);
        watcher->addPath(path);
        std::thread([file = ::open(Files::encoded(path).constData(), O_WRONLY | O_CLOEXEC)] {
          while (::pwrite(file, "other", 5, 0) == 5) {
          }
        }).detach();
        if (!observer.hears(100))
          std::abort();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(VXKQueueThreadDeathTest, LetsTheProgramEndWhileTheSharedWatcherWaitsForTheMainThread) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        static const Files files;
        const QString path = files.make(u"a"_s);
        Recorder recorder;
        const auto watcher = VXKQueue::sharedFileWatcher();
        watcher->setDelegate(&recorder);
        watcher->addPath(path);
        std::thread([file = ::open(Files::encoded(path).constData(), O_WRONLY | O_CLOEXEC)] {
          while (::pwrite(file, "other", 5, 0) == 5) {
          }
        }).detach();
        if (!recorder.hears(100))
          std::abort();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}
