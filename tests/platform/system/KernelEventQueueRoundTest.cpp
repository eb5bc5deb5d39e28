// Rounds of looking at files for what causes no event.
#include "QueueProbe.h"

#include "zqticker/platform/system/InotifyEventQueue_p.h"

#include <sys/mman.h>
#include <sys/vfs.h>

#include <linux/magic.h>

using namespace zq::platform;
using namespace zq::testing;
using namespace std::chrono_literals;

namespace {

std::chrono::steady_clock::time_point clockTime;
std::chrono::nanoseconds step; // that each look at the clock takes

std::chrono::steady_clock::time_point tellTime() {
  return clockTime += step;
}

class KernelEventQueueRound : public ::testing::Test {
 protected:
  KernelEventQueueRound() {
    InotifyCalls calls;
    calls.now = tellTime;
    step = 0ns;
    probe.queue = InotifyEventQueue::make(calls);
  }

  void SetUp() override {
    struct statfs system;
    ASSERT_EQ(::statfs(probe.path("").constData(), &system), 0);
    if (system.f_type == TMPFS_MAGIC)
      GTEST_SKIP() << "This file system keeps no time of stores through a map";
  }

  void watchFiles(int count) {
    const timespec old[2] = {{1000, 0}, {1000, 0}};
    for (int i = 0; i < count; ++i) {
      const QByteArray path = probe.file(QByteArray::number(i).constData());
      ASSERT_EQ(::utimensat(AT_FDCWD, path.constData(), old, 0), 0);
      descriptors.push_back(probe.watch(path, VnodeWrite));
    }
  }

  void store(int file) const {
    const QByteArray path = probe.path(QByteArray::number(file).constData());
    const int descriptor = ::open(path.constData(), O_RDWR | O_CLOEXEC);
    auto* map = static_cast<char*>(::mmap(nullptr, 5, PROT_WRITE, MAP_SHARED, descriptor, 0));
    ASSERT_NE(map, MAP_FAILED);
    map[0] = 'F';
    ASSERT_EQ(::msync(map, 5, MS_SYNC), 0);
    ::munmap(map, 5);
    ::close(descriptor);
  }

  // The descriptor of the next event; -1 when the time is over.
  int next() const {
    const auto answer = probe.queue->wait(0ns);
    const auto* event = std::get_if<KernelEvent>(&answer);
    return event ? event->descriptor : -1;
  }

  QueueProbe probe;
  std::vector<int> descriptors;
};

} // namespace

TEST_F(KernelEventQueueRound, LooksAtAllFilesWithinItsPartOfTheTime) {
  watchFiles(200);
  store(199);
  clockTime += 5s;
  EXPECT_EQ(next(), descriptors[199]);
  EXPECT_EQ(next(), -1);
}

TEST_F(KernelEventQueueRound, LooksAtSomeFilesWhateverTheTimeAndGoesOnInTheNextRound) {
  watchFiles(200);
  store(100);
  step = 10ms;
  EXPECT_EQ(next(), -1); // 0 to 63
  EXPECT_EQ(next(), descriptors[100]);
  store(20);
  for (int rounds = 0; rounds < 4; ++rounds)
    if (const int found = next(); found != -1) {
      EXPECT_EQ(found, descriptors[20]);
      EXPECT_GE(rounds, 1);
      return;
    }
  ADD_FAILURE() << "not looked at again";
}

TEST_F(KernelEventQueueRound, FindsAStoreAlthoughEventsOfOthersKeepComing) {
  watchFiles(40);
  const int busy = probe.watch(probe.file("busy"), VnodeWrite);
  store(39);
  bool found = false;
  for (int seconds = 0; seconds < 10; ++seconds) {
    clockTime += 1s;
    probe.write("busy", "FIRST");
    const int descriptor = next();
    EXPECT_TRUE(descriptor == busy || descriptor == descriptors[39]) << seconds;
    found = found || descriptor == descriptors[39];
  }
  EXPECT_TRUE(found);
}

TEST_F(KernelEventQueueRound, LeavesOutFilesWhoseContentsNobodyAsksFor) {
  watchFiles(2);
  EXPECT_EQ(probe.queue->add(descriptors[0], VnodeDelete, {}), 0);
  store(0);
  store(1);
  EXPECT_EQ(next(), descriptors[1]);
  EXPECT_EQ(next(), -1);
}
