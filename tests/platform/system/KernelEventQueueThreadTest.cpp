// The event queue between threads.
#include "QueueProbe.h"

#include <map>
#include <thread>

using namespace zq::platform;
using namespace zq::testing;

namespace {

constexpr std::chrono::nanoseconds Forever(-1);

} // namespace

TEST(KernelEventQueueThread, LetsAWaitingThreadOutWhenItIsStopped) {
  QueueProbe probe;
  bool stopped = false;
  std::thread waiting([&] {
    stopped = std::holds_alternative<KernelEventQueue::Stopped>(probe.queue->wait(Forever));
  });
  probe.queue->stop();
  waiting.join();
  EXPECT_TRUE(stopped);
  EXPECT_TRUE(std::holds_alternative<KernelEventQueue::Stopped>(probe.queue->wait(Forever)));
}

TEST(KernelEventQueueThread, LetsAWaitingThreadOutWhenItIsClosed) {
  QueueProbe probe;
  const int descriptor = probe.queue->descriptor();
  probe.watch(probe.file("a"));
  std::thread waiting([&] { probe.queue->wait(Forever); });
  EXPECT_EQ(probe.queue->close(), 0);
  waiting.join();
  EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1);
}

TEST(KernelEventQueueThread, TellsAWaitingThreadOfWhatIsAddedMeanwhile) {
  QueueProbe probe;
  std::uint32_t flags = 0;
  std::thread waiting([&] {
    const auto answer = probe.queue->wait(Forever);
    if (const auto* event = std::get_if<KernelEvent>(&answer))
      flags = event->flags;
  });
  probe.watch(probe.file("a"), VnodeDelete);
  probe.write("a", "FIRST"); // left out by the mask
  probe.unlink("a");
  waiting.join();
  EXPECT_EQ(flags, VnodeDelete);
}

TEST(KernelEventQueueThread, KeepsItsOrderWhileDescriptorsComeAndGo) {
  QueueProbe probe;
  const int last = probe.watch(probe.file("last"));
  std::map<int, std::uint32_t> found;
  std::thread waiting([&] {
    for (;;) {
      const auto answer = probe.queue->wait(Forever);
      const auto* event = std::get_if<KernelEvent>(&answer);
      if (!event)
        return;
      found[event->descriptor] |= event->flags;
      if (event->descriptor == last)
        return;
    }
  });
  std::map<int, std::uint32_t> expected;
  for (int i = 0; i < 300; ++i) {
    const QByteArray name = QByteArray::number(i);
    const int descriptor = probe.watch(probe.file(name.constData()), VnodeWrite | VnodeDelete);
    if (i % 3 == 0) {
      probe.write(name.constData(), "FIRST");
      EXPECT_EQ(probe.queue->closeDescriptor(descriptor), 0);
    } else {
      probe.write(name.constData(), "FIRST");
      probe.unlink(name.constData());
      expected[descriptor] = VnodeWrite | VnodeDelete;
    }
  }
  probe.write("last", "FIRST");
  waiting.join();
  for (const auto& [descriptor, flags] : expected)
    EXPECT_EQ(found[descriptor], flags);
}
