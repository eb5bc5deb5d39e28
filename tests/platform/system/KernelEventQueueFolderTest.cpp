// What a watched folder's events tell.
#include "QueueProbe.h"

#include <sched.h>
#include <set>
#include <sys/mount.h>
#include <sys/wait.h>

using namespace zq::platform;
using namespace zq::testing;

TEST(KernelEventQueueFolder, TellsFilesMadeAndRemovedAsWrites) {
  QueueProbe probe;
  probe.watch(probe.folder("f"));
  probe.file("f/a");
  EXPECT_EQ(probe.flags(), VnodeWrite);
  probe.unlink("f/a");
  EXPECT_EQ(probe.flags(), VnodeWrite);
}

TEST(KernelEventQueueFolder, TellsFilesRenamedInInsideAndOutAsWrites) {
  QueueProbe probe;
  probe.watch(probe.folder("f"));
  probe.file("a");
  probe.rename("a", "f/a");
  EXPECT_EQ(probe.flags(), VnodeWrite);
  probe.rename("f/a", "f/b");
  EXPECT_EQ(probe.flags(), VnodeWrite);
  probe.rename("f/b", "b");
  EXPECT_EQ(probe.flags(), VnodeWrite);
}

TEST(KernelEventQueueFolder, TellsSubfoldersMadeAndRemovedAsLinksToo) {
  QueueProbe probe;
  probe.watch(probe.folder("f"));
  probe.folder("f/s");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeLink);
  probe.rmdir("f/s");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeLink);
  probe.folder("f/s");
  probe.rmdir("f/s");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeLink);
}

TEST(KernelEventQueueFolder, TellsSubfoldersRenamedInOutAndOverAnotherAsLinksToo) {
  QueueProbe probe;
  probe.folder("s");
  probe.watch(probe.folder("f"));
  probe.rename("s", "f/s");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeLink);
  probe.rename("f/s", "f/t");
  EXPECT_EQ(probe.flags(), VnodeWrite);
  probe.folder("f/u");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeLink);
  probe.rename("f/t", "f/u");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeLink);
  probe.rename("f/u", "s");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeLink);
}

TEST(KernelEventQueueFolder, TellsNothingOfWhatHappensInsideItsFiles) {
  QueueProbe probe;
  probe.folder("f");
  const QByteArray file = probe.file("f/a");
  probe.watch(probe.path("f"));
  probe.append("f/a", "more");
  ASSERT_EQ(::chmod(file.constData(), 0600), 0);
  EXPECT_EQ(probe.flags(), 0U);
}

TEST(KernelEventQueueFolder, TellsItsOwnRenameAndAttributes) {
  QueueProbe probe;
  probe.watch(probe.folder("f"));
  ASSERT_EQ(::chmod(probe.path("f").constData(), 0700), 0);
  EXPECT_EQ(probe.flags(), VnodeAttrib);
  probe.rename("f", "g");
  EXPECT_EQ(probe.flags(), VnodeRename);
}

TEST(KernelEventQueueFolder, TellsItsRemovalAlsoWhileItIsHeldOpen) {
  for (const bool held : {false, true}) {
    QueueProbe probe;
    probe.watch(probe.folder("f"));
    const int holder = held ? ::open(probe.path("f").constData(), O_PATH | O_CLOEXEC) : -1;
    probe.rmdir("f");
    EXPECT_EQ(probe.flags(), VnodeDelete) << held;
    if (held)
      ::close(holder);
    EXPECT_EQ(probe.flags(), 0U) << held;
  }
}

TEST(KernelEventQueueFolder, TellsThatAnotherFolderWasRenamedOverIt) {
  for (const bool held : {false, true}) {
    QueueProbe probe;
    probe.watch(probe.folder("f"));
    const int holder = held ? ::open(probe.path("f").constData(), O_PATH | O_CLOEXEC) : -1;
    probe.folder("g");
    probe.rename("g", "f");
    EXPECT_EQ(probe.flags(), VnodeDelete) << held;
    if (held)
      ::close(holder);
  }
}

TEST(KernelEventQueueFolder, IsWatchedBesidesFilesInIt) {
  QueueProbe probe;
  probe.folder("f");
  const int file = probe.watch(probe.file("f/a"));
  const int folder = probe.watch(probe.path("f"));
  probe.unlink("f/a");
  std::uint32_t ofFile = 0;
  std::uint32_t ofFolder = 0;
  for (const auto& event : probe.events())
    (event.descriptor == file ? ofFile : ofFolder) |= event.flags;
  EXPECT_EQ(ofFile, VnodeDelete);
  EXPECT_EQ(ofFolder, VnodeWrite);
  EXPECT_EQ(probe.queue->closeDescriptor(file), 0);
  probe.file("f/b");
  const auto found = probe.events();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].descriptor, folder);
}

namespace {

// In a process of its own: what it does to its name spaces is nobody else's matter, and a process
// with several threads may not have a user name space made.
enum Outcome { Passed, Failed, Forbidden };

Outcome unmountWhatIsWatched(const QByteArray& where) {
  const int spaces = CLONE_NEWNS | (::geteuid() == 0 ? 0 : CLONE_NEWUSER);
  if (::unshare(spaces) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      ::mount("none", where.constData(), "tmpfs", 0, nullptr) != 0)
    return Forbidden;
  const auto queue = KernelEventQueue::make();
  ::close(::open(QByteArray(where + "/a").constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
  std::set<int> descriptors;
  for (const auto& path : {QByteArray(where + "/a"), where}) {
    const int descriptor = queue->openForEvents(path);
    if (descriptor < 0 || queue->add(descriptor, AllEvents, {}) != 0)
      return Failed;
    descriptors.insert(descriptor);
  }
  // What is watched must not keep it mounted.
  if (::umount(where.constData()) != 0)
    return Failed;
  while (!descriptors.empty()) {
    const auto answer = queue->wait(std::chrono::nanoseconds(0));
    const auto* event = std::get_if<KernelEvent>(&answer);
    if (!event || event->flags != VnodeRevoke || descriptors.erase(event->descriptor) != 1)
      return Failed;
  }
  const auto last = queue->wait(std::chrono::nanoseconds(0));
  return std::holds_alternative<KernelEventQueue::TimedOut>(last) ? Passed : Failed;
}

} // namespace

TEST(KernelEventQueueFolder, TellsTheUnmountingOfItsFileSystem) {
  QueueProbe probe;
  const QByteArray where = probe.folder("mounted");
  const pid_t child = ::fork();
  if (child == 0)
    ::_exit(unmountWhatIsWatched(where));
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == Forbidden)
    GTEST_SKIP() << "The kernel forbids a name space of mounts";
  EXPECT_EQ(WEXITSTATUS(status), Passed);
}
