// Subscriptions on threads that Qt did not start.
#include "FolderProbe.h"

#include "tests/support/waiting.h"

#include <QtCore/QEventLoop>

#include <atomic>
#include <cerrno>
#include <thread>

using namespace zq::platform;
using namespace zq::testing;

TEST(DirectorySubscriptionThread, CallsBackOnTheThreadThatSubscribed) {
  const FolderProbe probe;
  std::atomic<bool> isSubscribed = false;
  Subscriber here;
  ASSERT_EQ(here.subscribe(probe.path()), 0);
  std::thread::id calledOn;
  std::thread::id thread;
  std::thread worker([&] {
    thread = std::this_thread::get_id();
    Subscriber there;
    there.then = [&] { calledOn = std::this_thread::get_id(); };
    EXPECT_EQ(there.subscribe(probe.path()), 0); // before it has any event loop
    isSubscribed = true;
    EXPECT_TRUE(waitFor([&] { return there.calls > 0; }));
  });
  EXPECT_TRUE(waitFor([&] { return isSubscribed.load(); }));
  probe.write("watched/a");
  EXPECT_TRUE(waitFor([&] { return here.calls > 0; }));
  worker.join();
  EXPECT_EQ(calledOn, thread);
}

TEST(DirectorySubscriptionThread, CallsBackInAnEventLoopOfTheThreadsOwn) {
  const FolderProbe probe;
  std::atomic<bool> isSubscribed = false;
  int calls = 0;
  std::thread worker([&] {
    QEventLoop loop;
    Subscriber subscriber;
    subscriber.then = [&] { loop.quit(); };
    EXPECT_EQ(subscriber.subscribe(probe.path()), 0);
    isSubscribed = true;
    loop.exec();
    calls = subscriber.calls;
  });
  EXPECT_TRUE(waitFor([&] { return isSubscribed.load(); }));
  probe.write("watched/a");
  worker.join();
  EXPECT_EQ(calls, 1);
}

TEST(DirectorySubscriptionThread, LeavesNothingOpenWhenItsThreadEnds) {
  const FolderProbe probe;
  Subscriber marker;
  ASSERT_EQ(marker.subscribe(probe.path()), 0);
  runPostedEvents();
  const int before = ::dup(0);
  ::close(before);
  Subscriber left;
  std::thread worker([&] { EXPECT_EQ(left.subscribe(probe.path()), 0); });
  worker.join();
  const int after = ::dup(0);
  ::close(after);
  EXPECT_EQ(after, before);
  probe.write("watched/a");
  EXPECT_TRUE(waitFor([&] { return marker.calls == 1; }));
  EXPECT_EQ(left.calls, 0);
  EXPECT_EQ(left.unsubscribe(), 0);
}

TEST(DirectorySubscriptionThread, EndsOnAnotherThread) {
  const FolderProbe probe;
  std::atomic<bool> isSubscribed = false;
  std::atomic<bool> isEnded = false;
  std::atomic<int> calls = 0;
  Subscriber ended;
  std::thread worker([&] {
    ended.then = [&] { ++calls; };
    EXPECT_EQ(ended.subscribe(probe.path()), 0);
    Subscriber marker;
    EXPECT_EQ(marker.subscribe(probe.path()), 0);
    isSubscribed = true;
    EXPECT_TRUE(waitFor([&] { return isEnded.load(); }));
    const int callsBefore = calls;
    const int markerBefore = marker.calls;
    probe.write("watched/a");
    EXPECT_TRUE(waitFor([&] { return marker.calls > markerBefore; }));
    EXPECT_EQ(calls, callsBefore);
  });
  EXPECT_TRUE(waitFor([&] { return isSubscribed.load(); }));
  for (int i = 0; calls == 0; ++i)
    probe.write("watched/file" + QByteArray::number(i % 100));
  EXPECT_EQ(unsubscribe(ended.handle), 0);
  isEnded = true;
  worker.join();
  EXPECT_EQ(unsubscribe(ended.handle), EINVAL);
  ended.handle = nullptr;
}

TEST(DirectorySubscriptionThread, ServesManyThreadsThatSubscribeAndEnd) {
  const FolderProbe probe;
  std::vector<std::thread> workers;
  for (int i = 0; i < 4; ++i)
    workers.emplace_back([&] {
      for (int round = 0; round < 5; ++round) {
        Subscriber first;
        Subscriber second;
        EXPECT_EQ(first.subscribe(probe.path()), 0);
        EXPECT_EQ(second.subscribe(probe.path("other")), 0);
        probe.write("watched/a");
        probe.write("other/a");
        EXPECT_TRUE(waitFor([&] { return first.calls > 0 && second.calls > 0; }));
      }
    });
  for (std::thread& worker : workers)
    worker.join();
}
