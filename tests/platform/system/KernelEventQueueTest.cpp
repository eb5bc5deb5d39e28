// Registration, merging, order and limits of the event queue.
#include "QueueProbe.h"

#include "tests/support/LogWatch.h"
#include "zqticker/platform/system/InotifyEventQueue_p.h"

#include <cerrno>
#include <malloc.h>
#include <sys/inotify.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

// Watches that the kernel still allows, for calls that are refused.
int allowedWatches = 0;

int addWatchUntilFull(int instance, const char* path, std::uint32_t mask) {
  if (allowedWatches-- <= 0) {
    errno = ENOSPC;
    return -1;
  }
  return ::inotify_add_watch(instance, path, mask);
}

int refusal = 0;

int refuseWatch(int, const char*, std::uint32_t) {
  errno = refusal;
  return -1;
}

int refuseFolders(int instance, const char* path, std::uint32_t mask) {
  if (mask & IN_ONLYDIR) {
    errno = refusal;
    return -1;
  }
  return ::inotify_add_watch(instance, path, mask);
}

// Another file takes the place of what is watched, just before or just after.
QByteArray replacement;
QByteArray replacedPath;
bool isReplacedBefore = false;

int addWatchWhileReplaced(int instance, const char* path, std::uint32_t mask) {
  const bool meant = replacedPath == path;
  if (meant && isReplacedBefore)
    ::rename(replacement.constData(), path);
  const int watch = ::inotify_add_watch(instance, path, mask);
  if (meant && !isReplacedBefore)
    ::rename(replacement.constData(), path);
  return watch;
}

int refuseOpening(const char*) {
  errno = refusal;
  return -1;
}

int refuseInstance(int) {
  errno = EMFILE;
  return -1;
}

int refuseWakeUp(unsigned int, int) {
  errno = EMFILE;
  return -1;
}

// How far the queue's clock is ahead.
std::chrono::seconds laterBy(0);

int largestQueue() {
  QFile file(u"/proc/sys/fs/inotify/max_queued_events"_s);
  return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : 0;
}

} // namespace

TEST(KernelEventQueue, MergesFlagsUntilTheyAreTaken) {
  QueueProbe probe;
  const QByteArray path = probe.file("a");
  const int descriptor = probe.watch(path, AllEvents, u"path as added"_s);
  probe.append("a", "more");
  ASSERT_EQ(::chmod(path.constData(), 0600), 0);
  probe.rename("a", "b");
  const auto found = probe.events();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].flags, VnodeWrite | VnodeExtend | VnodeAttrib | VnodeRename);
  EXPECT_EQ(found[0].descriptor, descriptor);
  EXPECT_EQ(found[0].userData, u"path as added"_s);
  EXPECT_EQ(probe.flags(), 0U);
}

TEST(KernelEventQueue, TellsEventsInTheOrderInWhichTheirDescriptorsBecamePending) {
  QueueProbe probe;
  const int a = probe.watch(probe.file("a"));
  const int b = probe.watch(probe.file("b"));
  const int c = probe.watch(probe.file("c"));
  for (const char* name : {"c", "a", "b", "c", "a"})
    probe.write(name, "FIRST");
  const auto found = probe.events();
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].descriptor, c);
  EXPECT_EQ(found[1].descriptor, a);
  EXPECT_EQ(found[2].descriptor, b);
}

TEST(KernelEventQueue, TellsNothingThatTheMaskLeavesOut) {
  QueueProbe probe;
  probe.watch(probe.file("a"), VnodeDelete);
  probe.append("a", "more");
  probe.link("a", "b");
  EXPECT_EQ(probe.flags(), 0U);
}

TEST(KernelEventQueue, TellsOnlyTheFlagsOfTheMask) {
  QueueProbe probe;
  probe.watch(probe.file("a"), VnodeExtend);
  probe.append("a", "more");
  EXPECT_EQ(probe.flags(), VnodeExtend);
}

TEST(KernelEventQueue, TellsBothOfTheSamePath) {
  QueueProbe probe;
  const int first = probe.watch(probe.file("a"), AllEvents, u"1"_s);
  const int second = probe.watch(probe.path("a"), AllEvents, u"2"_s);
  EXPECT_NE(first, second);
  probe.write("a", "FIRST");
  const auto found = probe.events();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].userData, u"1"_s);
  EXPECT_EQ(found[1].userData, u"2"_s);
  EXPECT_EQ(probe.queue->closeDescriptor(first), 0);
  probe.write("a", "SECON");
  const auto left = probe.events();
  ASSERT_EQ(left.size(), 1U);
  EXPECT_EQ(left[0].descriptor, second);
}

TEST(KernelEventQueue, DropsWhatIsPendingWithItsDescriptor) {
  QueueProbe probe;
  const int a = probe.watch(probe.file("a"));
  const int b = probe.watch(probe.file("b"));
  probe.write("b", "FIRST");
  probe.write("a", "FIRST");
  const auto first = probe.queue->wait(std::chrono::nanoseconds(0));
  ASSERT_EQ(std::get<KernelEvent>(first).descriptor, b);
  EXPECT_EQ(probe.queue->closeDescriptor(a), 0);
  EXPECT_EQ(probe.flags(), 0U);
}

TEST(KernelEventQueue, TakesASecondRegistrationInThePlaceOfTheFirst) {
  QueueProbe probe;
  const int a = probe.watch(probe.file("a"), VnodeWrite, u"1"_s);
  EXPECT_EQ(probe.queue->add(a, VnodeAttrib, u"2"_s), 0);
  probe.write("a", "FIRST");
  EXPECT_EQ(probe.flags(), 0U);
  ASSERT_EQ(::chmod(probe.path("a").constData(), 0600), 0);
  const auto found = probe.events();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].userData, u"2"_s);
}

TEST(KernelEventQueue, RefusesDescriptorsThatAreNotItsOwn) {
  QueueProbe probe;
  const int a = probe.watch(probe.file("a"));
  EXPECT_EQ(probe.queue->closeDescriptor(a), 0);
  errno = 0;
  EXPECT_EQ(probe.queue->closeDescriptor(a), -1);
  EXPECT_EQ(errno, EBADF);
  errno = 0;
  EXPECT_EQ(probe.queue->add(0, AllEvents, {}), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST(KernelEventQueue, HasADescriptorUntilItIsClosed) {
  QueueProbe probe;
  const int descriptor = probe.queue->descriptor();
  EXPECT_NE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
  probe.watch(probe.file("a"));
  EXPECT_EQ(probe.queue->close(), 0);
  EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1);
  EXPECT_EQ(probe.queue->descriptor(), -1);
  EXPECT_EQ(probe.queue->close(), -1);
  EXPECT_EQ(probe.queue->openForEvents(probe.path("a")), -1);
  EXPECT_TRUE(std::holds_alternative<KernelEventQueue::Stopped>(
      probe.queue->wait(std::chrono::nanoseconds(-1))));
}

TEST(KernelEventQueue, IsNothingWhereTheKernelGivesNone) {
  InotifyCalls calls;
  calls.makeInstance = refuseInstance;
  EXPECT_EQ(InotifyEventQueue::make(calls), nullptr);
  EXPECT_EQ(errno, EMFILE);
  errno = 0;
  calls = InotifyCalls();
  calls.makeWakeUp = refuseWakeUp;
  EXPECT_EQ(InotifyEventQueue::make(calls), nullptr);
  EXPECT_EQ(errno, EMFILE);
}

TEST(KernelEventQueue, NamesTheLimitOnceWhereTheKernelRefusesMoreWatches) {
  expectLog(u"fs.inotify.max_user_watches"_s);
  QueueProbe probe;
  InotifyCalls calls;
  calls.addWatch = addWatchUntilFull;
  probe.queue = InotifyEventQueue::make(calls);
  allowedWatches = 2; // the file and its folder
  probe.watch(probe.file("a"));
  probe.folder("other");
  for (const int allowed : {0, 1}) {
    allowedWatches = allowed;
    errno = 0;
    EXPECT_EQ(probe.queue->openForEvents(probe.file("other/b")), -1) << allowed;
    EXPECT_EQ(errno, ENOSPC) << allowed;
  }
  allowedWatches = 0;
  EXPECT_EQ(probe.queue->openForEvents(probe.file("c")), -1);
  EXPECT_EQ(errno, ENOSPC);
  probe.write("a", "FIRST");
  EXPECT_EQ(probe.flags(), VnodeWrite);
}

TEST(KernelEventQueue, NamesTheLimitOnceWhereTheKernelOpensNoMoreFiles) {
  expectLog(u"The kernel refuses"_s);
  QueueProbe probe;
  InotifyCalls calls;
  calls.openPath = refuseOpening;
  probe.queue = InotifyEventQueue::make(calls);
  refusal = EMFILE;
  for (int i = 0; i < 2; ++i) {
    errno = 0;
    EXPECT_EQ(probe.queue->openForEvents(probe.file("a")), -1);
    EXPECT_EQ(errno, EMFILE);
  }
}

TEST(KernelEventQueue, TakesWhatTheKernelDoesNotWatchForWhatCannotBeOpened) {
  for (const int error : {ENOMEM, EACCES}) {
    QueueProbe probe;
    InotifyCalls calls;
    calls.addWatch = refuseWatch;
    probe.queue = InotifyEventQueue::make(calls);
    refusal = error;
    errno = 0;
    EXPECT_EQ(probe.queue->openForEvents(probe.file("a")), -1) << error;
    EXPECT_EQ(errno, error);
  }
  QueueProbe probe;
  InotifyCalls calls;
  calls.addWatch = refuseFolders;
  probe.queue = InotifyEventQueue::make(calls);
  refusal = ENOMEM;
  errno = 0;
  EXPECT_EQ(probe.queue->openForEvents(probe.file("a")), -1);
  EXPECT_EQ(errno, ENOMEM);
}

TEST(KernelEventQueue, WatchesFilesInAFolderThatMayNotBeRead) {
  QueueProbe probe;
  InotifyCalls calls;
  calls.addWatch = refuseFolders;
  probe.queue = InotifyEventQueue::make(calls);
  refusal = EACCES;
  probe.watch(probe.file("a"));
  probe.append("a", "more");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend);
  const int holder = ::open(probe.path("a").constData(), O_RDONLY | O_CLOEXEC);
  probe.unlink("a");
  EXPECT_EQ(probe.flags(), VnodeDelete);
  ::close(holder);
}

TEST(KernelEventQueue, WatchesTheFileThatTakesThePlaceOfAnotherMeanwhile) {
  for (const bool before : {false, true}) {
    QueueProbe probe;
    InotifyCalls calls;
    calls.addWatch = addWatchWhileReplaced;
    probe.queue = InotifyEventQueue::make(calls);
    probe.watch(probe.file("known"));
    replacedPath = probe.file("a");
    probe.link("a", "kept");
    replacement = probe.file("new", "second");
    isReplacedBefore = before;
    probe.watch(replacedPath);
    EXPECT_EQ(probe.flags(), 0U) << before;
    probe.append("a", "more");
    EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend) << before;
    probe.append("kept", "more");
    EXPECT_EQ(probe.flags(), 0U) << before;
    const int holder = ::open(replacedPath.constData(), O_RDONLY | O_CLOEXEC);
    probe.unlink("a");
    EXPECT_EQ(probe.flags(), VnodeDelete) << before;
    ::close(holder);
  }
}

TEST(KernelEventQueue, LetsNoBusyFileKeepOthersWaiting) {
  QueueProbe probe;
  const int busy = probe.watch(probe.file("busy"));
  const int a = probe.watch(probe.file("a"));
  const int b = probe.watch(probe.file("b"));
  const auto next = [&probe] {
    return std::get<KernelEvent>(probe.queue->wait(std::chrono::nanoseconds(0))).descriptor;
  };
  probe.write("busy", "FIRST");
  probe.write("a", "FIRST");
  EXPECT_EQ(next(), busy);
  probe.write("busy", "FIRST");
  probe.write("b", "FIRST");
  EXPECT_EQ(next(), a);
  probe.write("busy", "FIRST");
  EXPECT_EQ(next(), busy);
  probe.write("busy", "FIRST");
  EXPECT_EQ(next(), b);
  EXPECT_EQ(next(), busy);
  EXPECT_EQ(probe.flags(), 0U);
}

TEST(KernelEventQueue, KeepsTheOrderOfManyFilesThroughSeveralReadsOfTheKernelsQueue) {
  constexpr int Count = 3000;
  QueueProbe probe;
  std::vector<int> descriptors;
  for (int i = 0; i < Count; ++i)
    descriptors.push_back(probe.watch(probe.file(QByteArray::number(i).constData())));
  // The folder is told of none of them, each of them of more than 20 bytes.
  for (int i = Count - 1; i >= 0; --i)
    for (int times = 0; times < 2; ++times)
      probe.write(QByteArray::number((i + times) % Count).constData(), "FIRST");
  std::vector<int> found;
  for (const auto& event : probe.events())
    found.push_back(event.descriptor);
  std::vector<int> expected = {descriptors[Count - 1], descriptors[0]};
  for (int i = Count - 2; i > 0; --i)
    expected.push_back(descriptors[std::size_t(i)]);
  EXPECT_EQ(found, expected);
}

TEST(KernelEventQueue, KeepsTheOrderOfFilesThatItIsAboutToLookAt) {
  QueueProbe probe;
  InotifyCalls calls;
  calls.now = [] { return std::chrono::steady_clock::now() + laterBy; };
  laterBy = std::chrono::seconds(0);
  probe.queue = InotifyEventQueue::make(calls);
  const int a = probe.watch(probe.file("a"));
  const int b = probe.watch(probe.file("b"));
  const int c = probe.watch(probe.file("c"));
  probe.write("c", "FIRST");
  probe.write("b", "FIRST");
  probe.write("a", "FIRST");
  laterBy = std::chrono::minutes(1);
  std::vector<int> found;
  for (const auto& event : probe.events())
    found.push_back(event.descriptor);
  EXPECT_EQ(found, (std::vector<int>{c, b, a}));
}

TEST(KernelEventQueue, LosesNothingWhenTheKernelsOwnQueueOverflows) {
  const int most = largestQueue();
  if (most == 0 || most > 200000)
    GTEST_SKIP() << "The kernel's queue is too long to be filled";
  QueueProbe probe;
  std::map<int, std::uint32_t> found;
  const int x = probe.watch(probe.file("x"), VnodeAttrib);
  const int y = probe.watch(probe.file("y"), VnodeAttrib);
  const int grown = probe.watch(probe.file("grown"));
  const int linked = probe.watch(probe.file("linked"));
  const int moded = probe.watch(probe.file("moded"));
  const int removed = probe.watch(probe.file("removed"));
  const int folder = probe.watch(probe.folder("folder"));
  const int same = probe.watch(probe.file("same"));
  const timespec old[2] = {{1000, 0}, {1000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, probe.file("written").constData(), old, 0), 0);
  const int written = probe.watch(probe.path("written"));
  const int replaced = probe.watch(probe.file("replaced"));
  const int renamed = probe.watch(probe.file("renamed"));
  const int filled = probe.watch(probe.folder("filled"));
  const int emptied = probe.watch(probe.folder("emptied"));
  const QByteArray first = probe.path("x");
  const QByteArray second = probe.path("y");
  for (int i = 0; i <= most; ++i)
    ASSERT_EQ(::chmod((i % 2 ? first : second).constData(), 0600), 0);
  probe.append("grown", "more");
  probe.link("linked", "link");
  ASSERT_EQ(::chmod(probe.path("moded").constData(), 0600), 0);
  probe.unlink("removed");
  probe.folder("folder/new");
  probe.write("written", "FIRST");
  probe.file("new", "second");
  probe.rename("new", "replaced");
  probe.rename("renamed", "name");
  probe.file("filled/new");
  probe.rmdir("emptied");
  for (const auto& event : probe.events())
    found[event.descriptor] |= event.flags;
  EXPECT_EQ(found[x], VnodeAttrib);
  EXPECT_EQ(found[y], VnodeAttrib);
  EXPECT_EQ(found[grown], VnodeWrite | VnodeExtend);
  EXPECT_EQ(found[linked], VnodeLink);
  EXPECT_EQ(found[moded], VnodeAttrib);
  EXPECT_TRUE(found[removed] & VnodeDelete);
  EXPECT_EQ(found[folder], VnodeWrite | VnodeLink);
  EXPECT_EQ(found[same], 0U);
  EXPECT_EQ(found[written], VnodeWrite);
  EXPECT_TRUE(found[replaced] & VnodeDelete);
  EXPECT_EQ(found[renamed], VnodeRename);
  EXPECT_EQ(found[filled], VnodeWrite);
  EXPECT_TRUE(found[emptied] & VnodeDelete);
  // All is as before from here on.
  probe.append("name", "more");
  EXPECT_EQ(probe.flagsByDescriptor(), (FlagsByDescriptor{{renamed, VnodeWrite | VnodeExtend}}));
}

TEST(KernelEventQueue, TakesLessThan512BytesAPathAndNoOpenFile) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "A sanitizer's allocator does not count";
#else
  constexpr int Count = 5000;
  QueueProbe probe;
  for (int i = 0; i < Count; ++i)
    probe.file(QByteArray::number(100000 + i).constData());
  const int before = ::dup(0);
  const auto bytesBefore = ::mallinfo2().uordblks;
  for (int i = 0; i < Count; ++i)
    probe.watch(probe.path(QByteArray::number(100000 + i).constData()));
  const auto bytes = ::mallinfo2().uordblks - bytesBefore;
  const int after = ::dup(0);
  RecordProperty("bytesAPath", int(bytes / Count));
  EXPECT_LT(bytes / Count, 512U);
  EXPECT_EQ(after, before + 1);
  ::close(before);
  ::close(after);
#endif
}
