// What is a change in a folder, and which changes are told together; time is the test's own.
#include "FolderProbe.h"

#include "tests/support/LogWatch.h"
#include "zqticker/platform/system/SubscriptionLoop_p.h"

#include <algorithm>
#include <cerrno>
#include <sys/inotify.h>
#include <sys/time.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;
using std::chrono::milliseconds;

namespace {

void ignore(std::uint32_t, std::uint32_t, void*, DirectorySubscription*) {}

class Folders {
 public:
  explicit Folders(const InotifyCalls& calls = InotifyCalls()) : folders(calls) {}

  DirectorySubscription* subscribe(const QByteArray& path) {
    SubscribedFolders::Call call{ignore, nullptr, nullptr};
    EXPECT_EQ(folders.subscribe(path, call, now), 0);
    return call.handle;
  }
  // The calls that are due when some time passes.
  std::vector<DirectorySubscription*> callsAfter(milliseconds time) {
    now += time;
    folders.readChanges(now);
    folders.takeDue(now);
    std::vector<DirectorySubscription*> found;
    SubscribedFolders::Call due;
    while (folders.takeCall(due))
      found.push_back(due.handle);
    return found;
  }
  // All that is to be told.
  std::vector<DirectorySubscription*> calls() {
    auto found = callsAfter(milliseconds(0));
    const auto later = callsAfter(SubscribedFolders::LongestDelay);
    found.insert(found.end(), later.begin(), later.end());
    return found;
  }

  SubscribedFolders folders;
  SubscribedFolders::Clock::time_point now{std::chrono::hours(1)};
};

struct Row {
  const char* name;
  std::function<void(const FolderProbe&)> act;
};

int largestQueue() {
  QFile file(u"/proc/sys/fs/inotify/max_queued_events"_s);
  return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : 0;
}

template <int Error>
int refuse(int) {
  errno = Error;
  return -1;
}

template <int Error>
int refuseWatch(int, const char*, std::uint32_t) {
  errno = Error;
  return -1;
}

int watchNoParents(int instance, const char* path, std::uint32_t mask) {
  if (!(mask & IN_MODIFY)) {
    errno = EACCES;
    return -1;
  }
  return ::inotify_add_watch(instance, path, mask);
}

} // namespace

TEST(SubscribedFolders, TellAnyChangeInsideOnce) {
  const Row rows[] = {
      {"a file comes", [](auto& probe) { probe.write("watched/new"); }},
      {"a file goes", [](auto& probe) { probe.unlink("watched/a"); }},
      {"a file is renamed", [](auto& probe) { probe.rename("watched/a", "watched/b"); }},
      {"a file is moved in", [](auto& probe) { probe.rename("out", "watched/out"); }},
      {"a file is moved out", [](auto& probe) { probe.rename("watched/a", "other/a"); }},
      {"a file is replaced", [](auto& probe) { probe.rename("out", "watched/a"); }},
      {"a file is moved into a subfolder",
       [](auto& probe) { probe.rename("watched/a", "watched/sub/a"); }},
      {"a file is written to", [](auto& probe) { probe.write("watched/a", 0); }},
      {"a file grows", [](auto& probe) { probe.write("watched/a", O_APPEND); }},
      {"a file is emptied",
       [](auto& probe) { EXPECT_EQ(::truncate(probe.path("watched/a").constData(), 0), 0); }},
      {"a file gets another mode", [](auto& probe) { probe.chmod("watched/a"); }},
      {"a file gets other times",
       [](auto& probe) { EXPECT_EQ(::utimes(probe.path("watched/a").constData(), nullptr), 0); }},
      {"a file gets a link",
       [](auto& probe) {
         EXPECT_EQ(::link(probe.path("out").constData(), probe.path("watched/link").constData()),
                   0);
       }},
      {"a symbolic link comes",
       [](auto& probe) {
         EXPECT_EQ(::symlink("nowhere", probe.path("watched/link").constData()), 0);
       }},
      {"a subfolder comes", [](auto& probe) { probe.mkdir("watched/new"); }},
      {"a subfolder goes", [](auto& probe) { probe.removeAll("watched/sub"); }},
      {"a subfolder gets another mode", [](auto& probe) { probe.chmod("watched/sub"); }},
      {"the folder gets another mode", [](auto& probe) { probe.chmod("watched"); }},
      {"the folder is renamed", [](auto& probe) { probe.rename("watched", "renamed"); }},
      {"the folder is moved", [](auto& probe) { probe.rename("watched", "other/watched"); }},
      {"the folder is removed", [](auto& probe) { probe.removeAll("watched"); }},
  };
  for (const Row& row : rows) {
    const FolderProbe probe;
    Folders folders;
    const auto handle = folders.subscribe(probe.path());
    row.act(probe);
    EXPECT_EQ(folders.calls(), std::vector{handle}) << row.name;
    EXPECT_TRUE(folders.calls().empty()) << row.name;
  }
}

TEST(SubscribedFolders, TellNothingThatIsNoChangeInside) {
  const Row rows[] = {
      {"a file is read",
       [](auto& probe) {
         QFile file(QFile::decodeName(probe.path("watched/a")));
         EXPECT_TRUE(file.open(QIODevice::ReadOnly));
         EXPECT_EQ(file.readAll(), "text");
       }},
      {"a file is opened for writing",
       [](auto& probe) { ::close(::open(probe.path("watched/a").constData(), O_WRONLY)); }},
      {"the folder is listed",
       [](auto& probe) { EXPECT_EQ(QDir(QFile::decodeName(probe.path())).count(), 4U); }},
      {"a file is renamed to its own name",
       [](auto& probe) { probe.rename("watched/a", "watched/a"); }},
      {"a file in a subfolder is written to",
       [](auto& probe) { probe.write("watched/sub/b", O_APPEND); }},
      {"a file in a subfolder comes", [](auto& probe) { probe.write("watched/sub/new"); }},
      {"a file in a subfolder goes", [](auto& probe) { probe.unlink("watched/sub/b"); }},
      {"a subfolder's subfolder comes", [](auto& probe) { probe.mkdir("watched/sub/new"); }},
      {"a file beside the folder is written to", [](auto& probe) { probe.write("out"); }},
      {"a folder beside the folder goes", [](auto& probe) { probe.rmdir("other"); }},
  };
  for (const Row& row : rows) {
    const FolderProbe probe;
    Folders folders;
    folders.subscribe(probe.path());
    row.act(probe);
    EXPECT_TRUE(folders.calls().empty()) << row.name;
  }
}

TEST(SubscribedFolders, TellNothingOfAFileThatWasRemovedWhileItIsOpen) {
  const FolderProbe probe;
  const int file = ::open(probe.path("watched/a").constData(), O_WRONLY | O_CLOEXEC);
  Folders folders;
  const auto handle = folders.subscribe(probe.path());
  probe.unlink("watched/a");
  EXPECT_EQ(folders.calls(), std::vector{handle});
  EXPECT_EQ(::write(file, "more", 4), 4);
  EXPECT_TRUE(folders.calls().empty());
  ::close(file);
}

TEST(SubscribedFolders, MergeWhatComesBeforeItHasBeenQuiet) {
  const FolderProbe probe;
  Folders folders;
  const auto handle = folders.subscribe(probe.path());
  const milliseconds nearlyQuiet(29);
  for (const char* name : {"watched/x", "watched/y", "watched/z"}) {
    probe.write(name);
    EXPECT_TRUE(folders.callsAfter(nearlyQuiet).empty()) << name;
  }
  EXPECT_TRUE(folders.callsAfter(nearlyQuiet).empty());
  EXPECT_TRUE(folders.folders.hasChanges());
  EXPECT_EQ(folders.callsAfter(milliseconds(1)), std::vector{handle});
  EXPECT_FALSE(folders.folders.hasChanges());
  probe.write("watched/x");
  EXPECT_EQ(folders.calls(), std::vector{handle});
}

TEST(SubscribedFolders, TellWhatDoesNotEndAfterTheLongestDelay) {
  const FolderProbe probe;
  Folders folders;
  folders.subscribe(probe.path());
  probe.write("watched/a", O_APPEND);
  folders.folders.readChanges(folders.now);
  std::vector<milliseconds> told;
  for (milliseconds time(10); time <= milliseconds(1500); time += milliseconds(10)) {
    probe.write("watched/a", O_APPEND);
    if (!folders.callsAfter(milliseconds(10)).empty())
      told.push_back(time);
  }
  // Each burst begins with the change after the last call.
  EXPECT_EQ(told, (std::vector{milliseconds(500), milliseconds(1010)}));
}

TEST(SubscribedFolders, CallEachSubscriptionOfTheSameFolder) {
  const FolderProbe probe;
  Folders folders;
  const auto first = folders.subscribe(probe.path());
  const auto second = folders.subscribe(probe.path("watched/../watched/"));
  probe.write("watched/a");
  EXPECT_EQ(folders.calls(), (std::vector{first, second}));
  folders.folders.unsubscribe(first);
  probe.write("watched/a");
  EXPECT_EQ(folders.calls(), std::vector{second});
}

TEST(SubscribedFolders, TellASubscriptionNothingThatWasBeforeIt) {
  const FolderProbe probe;
  Folders folders;
  const auto first = folders.subscribe(probe.path());
  probe.write("watched/a");
  folders.subscribe(probe.path());
  EXPECT_EQ(folders.calls(), std::vector{first});
}

TEST(SubscribedFolders, TellAFolderInAFolderEachItsOwn) {
  const FolderProbe probe;
  Folders folders;
  const auto outer = folders.subscribe(probe.path());
  const auto inner = folders.subscribe(probe.path("watched/sub"));
  probe.write("watched/sub/b");
  EXPECT_EQ(folders.calls(), std::vector{inner});
  probe.write("watched/a");
  EXPECT_EQ(folders.calls(), std::vector{outer});
  probe.rename("watched/sub", "watched/renamed");
  EXPECT_EQ(folders.calls(), (std::vector{outer, inner}));
  folders.folders.unsubscribe(outer);
  probe.write("watched/a");
  EXPECT_TRUE(folders.calls().empty());
  probe.write("watched/renamed/b");
  EXPECT_EQ(folders.calls(), std::vector{inner});
}

TEST(SubscribedFolders, FollowAFolderThatIsRenamedAndNotItsName) {
  const FolderProbe probe;
  Folders folders;
  const auto handle = folders.subscribe(probe.path());
  probe.rename("watched", "renamed");
  EXPECT_EQ(folders.calls(), std::vector{handle});
  probe.mkdir("watched");
  probe.write("watched/new");
  probe.removeAll("watched");
  EXPECT_TRUE(folders.calls().empty());
  probe.write("renamed/a", O_APPEND);
  EXPECT_EQ(folders.calls(), std::vector{handle});
}

TEST(SubscribedFolders, TellARemovalWhileTheFolderIsOpenSomewhere) {
  const FolderProbe probe;
  const int open = ::open(probe.path("other").constData(), O_RDONLY | O_CLOEXEC);
  Folders folders;
  const auto handle = folders.subscribe(probe.path("other"));
  probe.rmdir("other");
  EXPECT_EQ(folders.calls(), std::vector{handle});
  ::close(open);
  EXPECT_TRUE(folders.calls().empty());
}

TEST(SubscribedFolders, TellARemovalThoughTheParentMustNotBeWatched) {
  const FolderProbe probe;
  InotifyCalls calls;
  calls.addWatch = watchNoParents;
  Folders folders(calls);
  const auto handle = folders.subscribe(probe.path("other"));
  probe.rmdir("other");
  EXPECT_EQ(folders.calls(), std::vector{handle});
}

TEST(SubscribedFolders, KeepQuietAboutANewFolderInThePlaceOfARemovedOne) {
  const FolderProbe probe;
  Folders folders;
  const auto old = folders.subscribe(probe.path("other"));
  probe.rmdir("other");
  probe.mkdir("other");
  EXPECT_EQ(folders.calls(), std::vector{old});
  probe.write("other/a");
  EXPECT_TRUE(folders.calls().empty());
  const auto renewed = folders.subscribe(probe.path("other"));
  probe.write("other/a");
  EXPECT_EQ(folders.calls(), std::vector{renewed});
  folders.folders.unsubscribe(old);
  probe.write("other/a");
  EXPECT_EQ(folders.calls(), std::vector{renewed});
}

TEST(SubscribedFolders, DropWhatIsNotToldWithItsSubscription) {
  const FolderProbe probe;
  Folders folders;
  const auto handle = folders.subscribe(probe.path());
  probe.write("watched/a");
  folders.folders.readChanges(folders.now);
  folders.folders.unsubscribe(handle);
  EXPECT_TRUE(folders.calls().empty());
}

TEST(SubscribedFolders, NeverGiveAHandleTwice) {
  const FolderProbe probe;
  Folders folders;
  const auto first = folders.subscribe(probe.path());
  folders.folders.unsubscribe(first);
  EXPECT_NE(folders.subscribe(probe.path()), first);
}

TEST(SubscribedFolders, CallEverybodyOnceWhenTheKernelsQueueOverflows) {
  const int most = largestQueue();
  if (most == 0 || most > 200000)
    GTEST_SKIP() << "The kernel's queue is too long to be filled";
  const FolderProbe probe;
  probe.write("watched/b");
  Folders folders;
  const auto watched = folders.subscribe(probe.path());
  const auto sub = folders.subscribe(probe.path("watched/sub"));
  const auto other = folders.subscribe(probe.path("other"));
  const QByteArray files[] = {probe.path("watched/a"), probe.path("watched/b")};
  for (int i = 0; i <= most; ++i)
    ASSERT_EQ(::chmod(files[i % 2].constData(), 0600), 0);
  auto calls = folders.calls();
  std::sort(calls.begin(), calls.end());
  EXPECT_EQ(calls, (std::vector{watched, sub, other}));
  probe.write("other/a");
  EXPECT_EQ(folders.calls(), std::vector{other});
}

TEST(SubscribedFolders, RefuseWhatTheKernelRefusesAndNameTheLimitOnce) {
  const FolderProbe probe;
  const auto expectRefusal = [&](const InotifyCalls& calls, int error) {
    SubscriptionLoop loop(calls);
    DirectorySubscription* handle = nullptr;
    for (int i = 0; i < 2; ++i)
      EXPECT_EQ(loop.subscribe(probe.path(), ignore, nullptr, handle), error);
    EXPECT_EQ(handle, nullptr);
  };
  expectLog(u"the limit fs.inotify.max_user_instances is "_s);
  InotifyCalls calls;
  calls.makeInstance = refuse<EMFILE>;
  expectRefusal(calls, EMFILE);
  expectLog(u"the limit fs.file-max is "_s);
  calls.makeInstance = refuse<ENFILE>;
  expectRefusal(calls, ENFILE);
  calls.makeInstance = refuse<ENOMEM>;
  expectRefusal(calls, ENOMEM);
  expectLog(u"the limit fs.inotify.max_user_watches is "_s);
  calls = InotifyCalls();
  calls.addWatch = refuseWatch<ENOSPC>;
  expectRefusal(calls, ENOSPC);
  calls.addWatch = refuseWatch<EACCES>;
  expectRefusal(calls, EACCES);
}
