// What a watched file's events tell.
#include "QueueProbe.h"

#include <sys/mman.h>
#include <sys/vfs.h>

#include <linux/magic.h>

using namespace zq::platform;
using namespace zq::testing;

TEST(KernelEventQueueFile, TellsAWriteInPlace) {
  QueueProbe probe;
  probe.watch(probe.file("a"));
  probe.write("a", "FIRST");
  EXPECT_EQ(probe.flags(), VnodeWrite);
}

TEST(KernelEventQueueFile, TellsGrowthBesidesTheWriteOfAnAppend) {
  QueueProbe probe;
  probe.watch(probe.file("a"));
  probe.append("a", "more");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend);
  probe.append("a", "and more");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend);
}

TEST(KernelEventQueueFile, TellsNoGrowthOfATruncation) {
  QueueProbe probe;
  const QByteArray path = probe.file("a");
  probe.watch(path);
  ASSERT_EQ(::truncate(path.constData(), 2), 0);
  EXPECT_EQ(probe.flags(), VnodeWrite);
}

TEST(KernelEventQueueFile, TellsModeAndTimesAsAttributes) {
  QueueProbe probe;
  const QByteArray path = probe.file("a");
  probe.watch(path);
  ASSERT_EQ(::chmod(path.constData(), 0600), 0);
  EXPECT_EQ(probe.flags(), VnodeAttrib);
  ASSERT_EQ(::utimensat(AT_FDCWD, path.constData(), nullptr, 0), 0);
  EXPECT_EQ(probe.flags(), VnodeAttrib);
}

TEST(KernelEventQueueFile, TellsALinkMadeAndRemoved) {
  QueueProbe probe;
  probe.watch(probe.file("a"));
  probe.link("a", "b");
  EXPECT_EQ(probe.flags(), VnodeLink);
  probe.unlink("b");
  EXPECT_EQ(probe.flags(), VnodeLink);
}

TEST(KernelEventQueueFile, TellsAttributesBesidesALink) {
  QueueProbe probe;
  const QByteArray path = probe.file("a");
  probe.watch(path);
  probe.link("a", "b");
  ASSERT_EQ(::chmod(path.constData(), 0600), 0);
  EXPECT_EQ(probe.flags(), VnodeLink | VnodeAttrib);
}

TEST(KernelEventQueueFile, TellsARenameInAndOutOfItsFolder) {
  QueueProbe probe;
  probe.folder("other");
  probe.watch(probe.file("a"));
  probe.rename("a", "b");
  EXPECT_EQ(probe.flags(), VnodeRename);
  probe.rename("b", "other/b");
  EXPECT_EQ(probe.flags(), VnodeRename);
  probe.write("other/b", "FIRST");
  EXPECT_EQ(probe.flags(), VnodeWrite);
}

TEST(KernelEventQueueFile, LooksAtARenamedFileUnderItsNewName) {
  QueueProbe probe;
  probe.watch(probe.file("a"));
  probe.rename("a", "b");
  probe.rename("b", "c");
  EXPECT_EQ(probe.flags(), VnodeRename);
  probe.append("c", "more");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend);
  const int holder = ::open(probe.path("c").constData(), O_RDONLY | O_CLOEXEC);
  probe.unlink("c");
  EXPECT_EQ(probe.flags(), VnodeDelete);
  ::close(holder);
  EXPECT_EQ(probe.flags(), 0U);
}

TEST(KernelEventQueueFile, TellsTheRemovalOfTheLastNameOnce) {
  QueueProbe probe;
  probe.watch(probe.file("a"));
  probe.unlink("a");
  EXPECT_EQ(probe.flags(), VnodeDelete);
  EXPECT_EQ(probe.flags(), 0U);
}

TEST(KernelEventQueueFile, TellsTheRemovalOfItsNameOfTwo) {
  QueueProbe probe;
  probe.file("a");
  probe.link("a", "b");
  probe.watch(probe.path("a"));
  probe.unlink("a");
  EXPECT_EQ(probe.flags(), VnodeDelete | VnodeLink);
  probe.unlink("b");
  EXPECT_EQ(probe.flags(), VnodeDelete);
}

TEST(KernelEventQueueFile, TellsEachOfTwoWatchedNamesItsOwnRemoval) {
  for (const bool held : {false, true}) {
    QueueProbe probe;
    const int a = probe.watch(probe.file("a"));
    probe.link("a", "b");
    EXPECT_EQ(probe.flags(), VnodeLink);
    const int b = probe.watch(probe.path("b"));
    const int holder = held ? ::open(probe.path("a").constData(), O_RDONLY | O_CLOEXEC) : -1;
    probe.unlink("b");
    EXPECT_EQ(probe.flagsByDescriptor(),
              (FlagsByDescriptor{{a, VnodeLink}, {b, VnodeDelete | VnodeLink}}))
        << held;
    probe.unlink("a");
    EXPECT_EQ(probe.flagsByDescriptor(), (FlagsByDescriptor{{a, VnodeDelete}, {b, VnodeDelete}}))
        << held;
    if (held)
      ::close(holder);
    EXPECT_EQ(probe.flags(), 0U) << held;
  }
}

TEST(KernelEventQueueFile, TellsAnAtomicSaveOverOneOfTwoWatchedNames) {
  QueueProbe probe;
  probe.file("a");
  probe.link("a", "b");
  const int a = probe.watch(probe.path("a"), 0x2B);
  const int b = probe.watch(probe.path("b"), 0x2B);
  probe.file("new", "second");
  probe.rename("new", "b");
  EXPECT_EQ(probe.flagsByDescriptor(), (FlagsByDescriptor{{b, VnodeDelete}}));
  probe.write("a", "FIRST");
  EXPECT_EQ(probe.flagsByDescriptor(), (FlagsByDescriptor{{a, VnodeWrite}, {b, VnodeWrite}}));
}

TEST(KernelEventQueueFile, FindsItAgainInAFolderNearbyThatIsNotWatched) {
  for (const char* place : {"folder/within/a", "a", "beside/a"}) {
    QueueProbe probe;
    probe.folder("folder");
    probe.folder("folder/within");
    probe.folder("beside");
    probe.watch(probe.file("folder/a"));
    probe.rename("folder/a", place);
    EXPECT_EQ(probe.flags(), VnodeRename) << place;
    probe.append(place, "more");
    EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend) << place;
    ASSERT_EQ(::chmod(probe.path(place).constData(), 0600), 0);
    EXPECT_EQ(probe.flags(), VnodeAttrib) << place;
    const int holder = ::open(probe.path(place).constData(), O_RDONLY | O_CLOEXEC);
    probe.unlink(place);
    EXPECT_EQ(probe.flags(), VnodeDelete) << place;
    ::close(holder);
    EXPECT_EQ(probe.flags(), 0U) << place;
  }
}

// Where a file cannot be looked at, its removal while it is held open looks like a change of its
// attributes, and a removal must never be told as one.
TEST(KernelEventQueueFile, TellsLinksOfAFileThatIsNowhereNear) {
  QueueProbe probe;
  probe.folder("folder");
  probe.folder("far");
  probe.folder("far/off");
  probe.watch(probe.file("folder/a"));
  probe.rename("folder/a", "far/off/a");
  EXPECT_EQ(probe.flags(), VnodeRename);
  ASSERT_EQ(::chmod(probe.path("far/off/a").constData(), 0600), 0);
  EXPECT_EQ(probe.flags(), VnodeLink);
  probe.write("far/off/a", "FIRST");
  EXPECT_EQ(probe.flags(), VnodeWrite);
  const int holder = ::open(probe.path("far/off/a").constData(), O_RDONLY | O_CLOEXEC);
  probe.unlink("far/off/a");
  EXPECT_EQ(probe.flags(), VnodeLink);
  ::close(holder);
  EXPECT_EQ(probe.flags(), VnodeDelete);
}

TEST(KernelEventQueueFile, KnowsItsPlaceAgainWhenItIsOpenedThere) {
  QueueProbe probe;
  probe.folder("folder");
  probe.folder("far");
  probe.folder("far/off");
  const int old = probe.watch(probe.file("folder/a"));
  probe.rename("folder/a", "far/off/a");
  EXPECT_EQ(probe.flags(), VnodeRename);
  const int anew = probe.watch(probe.path("far/off/a"));
  const int holder = ::open(probe.path("far/off/a").constData(), O_RDONLY | O_CLOEXEC);
  probe.unlink("far/off/a");
  EXPECT_EQ(probe.flagsByDescriptor(),
            (FlagsByDescriptor{{old, VnodeDelete}, {anew, VnodeDelete}}));
  ::close(holder);
}

TEST(KernelEventQueueFile, TellsADeletionInAFolderThatWasRenamed) {
  for (const char* renamed : {"up", "up/folder"}) {
    QueueProbe probe;
    probe.folder("up");
    probe.folder("up/folder");
    probe.watch(probe.file("up/folder/a"));
    probe.rename(renamed, "away");
    const char* now = qstrlen(renamed) == 2 ? "away/folder/a" : "away/a";
    probe.append(now, "more");
    EXPECT_TRUE(probe.flags() & VnodeWrite) << renamed;
    const int holder = ::open(probe.path(now).constData(), O_RDONLY | O_CLOEXEC);
    probe.unlink(now);
    EXPECT_EQ(probe.flags(), VnodeDelete) << renamed;
    ::close(holder);
    EXPECT_EQ(probe.flags(), 0U) << renamed;
  }
}

TEST(KernelEventQueueFile, LooksAtItInItsFolderThatWasRenamed) {
  QueueProbe probe;
  probe.folder("folder");
  probe.watch(probe.file("folder/a"));
  probe.rename("folder", "other");
  probe.append("other/a", "more");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend);
  probe.link("other/a", "other/b");
  EXPECT_EQ(probe.flags(), VnodeLink);
}

TEST(KernelEventQueueFile, TakesANewFolderUnderAnOldPathForAnother) {
  QueueProbe probe;
  probe.folder("up");
  probe.folder("up/folder");
  const int old = probe.watch(probe.file("up/folder/a"));
  probe.rename("up", "away");
  probe.folder("up");
  probe.folder("up/folder");
  const int anew = probe.watch(probe.file("up/folder/b"));
  const int holder = ::open(probe.path("up/folder/b").constData(), O_RDONLY | O_CLOEXEC);
  probe.rename("up/folder/b", "up/folder/c");
  EXPECT_EQ(probe.flagsByDescriptor(), (FlagsByDescriptor{{anew, VnodeRename}}));
  probe.unlink("up/folder/c");
  probe.unlink("away/folder/a");
  EXPECT_EQ(probe.flagsByDescriptor(),
            (FlagsByDescriptor{{old, VnodeDelete}, {anew, VnodeDelete}}));
  ::close(holder);
}

TEST(KernelEventQueueFile, TellsADeletionAtOnceWhileTheFileIsHeldOpen) {
  QueueProbe probe;
  const int holder = ::open(probe.file("a").constData(), O_RDWR | O_CLOEXEC);
  probe.watch(probe.path("a"));
  probe.unlink("a");
  EXPECT_EQ(probe.flags(), VnodeDelete);
  ::close(holder);
  EXPECT_EQ(probe.flags(), 0U);
}

TEST(KernelEventQueueFile, TellsADeletionToANameThatIsTakenAgain) {
  QueueProbe probe;
  probe.watch(probe.file("a"));
  const int holder = ::open(probe.path("a").constData(), O_RDONLY | O_CLOEXEC);
  probe.unlink("a");
  probe.file("a", "second");
  EXPECT_EQ(probe.flags(), VnodeDelete);
  ::close(holder);
}

TEST(KernelEventQueueFile, TellsThatAnotherWasRenamedOverIt) {
  for (const bool held : {false, true}) {
    QueueProbe probe;
    probe.watch(probe.file("a"));
    const int holder = held ? ::open(probe.path("a").constData(), O_RDONLY | O_CLOEXEC) : -1;
    probe.file("new", "second");
    probe.rename("new", "a");
    EXPECT_EQ(probe.flags(), VnodeDelete) << held;
    if (held)
      ::close(holder);
    EXPECT_EQ(probe.flags(), 0U) << held;
  }
}

TEST(KernelEventQueueFile, TellsWhenOneWatchedFileTakesTheNameOfAnother) {
  QueueProbe probe;
  const int a = probe.watch(probe.file("a"));
  const int b = probe.watch(probe.file("b"));
  const int holder = ::open(probe.path("a").constData(), O_RDONLY | O_CLOEXEC);
  probe.rename("b", "a");
  std::uint32_t ofA = 0;
  std::uint32_t ofB = 0;
  for (const auto& event : probe.events())
    (event.descriptor == a ? ofA : ofB) |= event.flags;
  EXPECT_EQ(ofA, VnodeDelete);
  EXPECT_EQ(ofB, VnodeRename);
  probe.append("a", "more");
  const auto found = probe.events();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].descriptor, b);
  EXPECT_EQ(found[0].flags, VnodeWrite | VnodeExtend);
  ::close(holder);
}

TEST(KernelEventQueueFile, TellsNothingOfReadingAndOfARenameOntoItself) {
  QueueProbe probe;
  const QByteArray path = probe.file("a");
  probe.watch(path);
  const int file = ::open(path.constData(), O_RDWR | O_CLOEXEC);
  char byte = 0;
  EXPECT_EQ(::read(file, &byte, 1), 1);
  ::close(file);
  probe.rename("a", "a");
  EXPECT_EQ(probe.flags(), 0U);
}

TEST(KernelEventQueueFile, TakesARenamedFolderForNoDeletion) {
  QueueProbe probe;
  probe.folder("up");
  probe.folder("up/folder");
  probe.watch(probe.file("up/folder/a"));
  probe.rename("up", "away");
  ASSERT_EQ(::chmod(probe.path("away/folder/a").constData(), 0600), 0);
  EXPECT_EQ(probe.flags(), VnodeAttrib);
}

TEST(KernelEventQueueFile, FindsAStoreThroughAMemoryMapWhenTheTimeIsOver) {
  QueueProbe probe;
  const QByteArray path = probe.file("a");
  struct statfs system;
  ASSERT_EQ(::statfs(path.constData(), &system), 0);
  if (system.f_type == TMPFS_MAGIC)
    GTEST_SKIP() << "This file system keeps no time of stores through a map";
  const timespec old[2] = {{1000, 0}, {1000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.constData(), old, 0), 0);
  probe.watch(path);
  const int file = ::open(path.constData(), O_RDWR | O_CLOEXEC);
  auto* map = static_cast<char*>(::mmap(nullptr, 5, PROT_WRITE, MAP_SHARED, file, 0));
  ASSERT_NE(map, MAP_FAILED);
  map[0] = 'F';
  ASSERT_EQ(::msync(map, 5, MS_SYNC), 0);
  EXPECT_EQ(probe.flags(), VnodeWrite);
  EXPECT_EQ(probe.flags(), 0U);
  ::munmap(map, 5);
  ::close(file);
}

TEST(KernelEventQueueFile, ReportsEveryAtomicSaveOfAFileThatIsWatchedAnew) {
  QueueProbe probe;
  int descriptor = probe.watch(probe.file("a"), 0x2B);
  for (int save = 0; save < 5; ++save) {
    probe.file("a.new", QByteArray::number(save));
    probe.rename("a.new", "a");
    EXPECT_EQ(probe.flags(), VnodeDelete) << save;
    EXPECT_EQ(probe.queue->closeDescriptor(descriptor), 0);
    descriptor = probe.watch(probe.path("a"), 0x2B);
  }
}
