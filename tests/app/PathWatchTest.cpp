// Paths that are followed, over what stands at them.
#include "app/services/PathWatch.h"

#include "tests/support/waiting.h"
#include "zqticker/platform/system/KernelEventQueue.h"
#include "zqticker/watching/VXKQueue.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;
using namespace zq::testing;

namespace {
class PathWatching : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return folder_.filePath(name); }
  void write(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    file.write(bytes);
  }
  void append(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Append)) << name.toStdString();
    file.write(bytes);
  }
  // Over what is there.
  void rename(const QString& from, const QString& to) const {
    ASSERT_EQ(::rename(QFile::encodeName(path(from)).constData(),
                       QFile::encodeName(path(to)).constData()),
              0);
  }
  void remove(const QString& name) const { ASSERT_TRUE(QFile::remove(path(name))); }
  void makeFolder(const QString& name) const { ASSERT_TRUE(QDir().mkpath(path(name))); }
  void link(const QString& target, const QString& name) const {
    ASSERT_TRUE(QFile::link(target, path(name)));
  }

  int follow(const QString& name, std::uint32_t mask = PathWatch::DefaultMask) {
    return watch_->addPath(path(name), mask);
  }
  // "written f" for a report, "appeared f".
  bool hears(const QString& line) {
    return waitFor([&] { return told_.contains(line); });
  }
  QString take(const QString& line) {
    const bool isThere = hears(line);
    const QString all = told_.join(u", ");
    told_.clear();
    return isThere ? line : all;
  }

  QTemporaryDir folder_;
  QStringList told_;
  std::unique_ptr<PathWatch> watch_ = std::make_unique<PathWatch>(
      [this](const QString& notification, const QString& path) {
        QString word = notification;
        word.remove("VXKQueueFile"_L1).remove("Notification"_L1);
        told_.append(word + u' ' + QDir(folder_.path()).relativeFilePath(path));
      },
      [this](const QString& path) {
        told_.append(u"appeared "_s + QDir(folder_.path()).relativeFilePath(path));
      });
};
} // namespace

TEST_F(PathWatching, TellsWhatTheWatcherReports) {
  write(u"f"_s, "a");
  EXPECT_EQ(follow(u"f"_s), 0);
  append(u"f"_s, "b");
  ASSERT_TRUE(hears(u"WrittenTo f"_s));
  EXPECT_EQ(told_, QStringList{u"WrittenTo f"_s});
}

TEST_F(PathWatching, TellsEveryOneOfManyReplacements) {
  write(u"f"_s, "0");
  follow(u"f"_s);
  for (int i = 1; i <= 5; ++i) {
    write(u"new"_s, QByteArray::number(i));
    rename(u"new"_s, u"f"_s);
    ASSERT_TRUE(hears(u"appeared f"_s)) << i;
    EXPECT_EQ(told_, (QStringList{u"Deleted f"_s, u"appeared f"_s})) << i;
    told_.clear();
    append(u"f"_s, "more");
    ASSERT_TRUE(hears(u"WrittenTo f"_s)) << i;
    told_.clear();
  }
}

TEST_F(PathWatching, FollowsALogThroughItsRotation) {
  write(u"log"_s, "old\n");
  follow(u"log"_s);
  rename(u"log"_s, u"log.1"_s);
  ASSERT_TRUE(hears(u"Renamed log"_s));
  append(u"log.1"_s, "late\n");
  write(u"log"_s, "new\n");
  ASSERT_TRUE(hears(u"appeared log"_s));
  told_.clear();
  append(u"log"_s, "newer\n");
  ASSERT_TRUE(hears(u"WrittenTo log"_s));
  EXPECT_EQ(told_.count(u"appeared log"_s), 0);
}

TEST_F(PathWatching, LeavesAFileThatWasRenamedAway) {
  write(u"f"_s, "a");
  write(u"other"_s, "a");
  follow(u"f"_s);
  follow(u"other"_s);
  rename(u"f"_s, u"g"_s);
  ASSERT_TRUE(hears(u"Renamed f"_s));
  append(u"g"_s, "b");
  append(u"other"_s, "b");
  ASSERT_TRUE(hears(u"WrittenTo other"_s));
  EXPECT_EQ(told_, (QStringList{u"Renamed f"_s, u"WrittenTo other"_s}));
}

TEST_F(PathWatching, DoesNotTellTheDeletionOfAFileThatHadLeftAsThatOfItsSuccessor) {
  const auto other = VXKQueue::make();
  write(u"f"_s, "a");
  follow(u"f"_s);
  rename(u"f"_s, u"g"_s);
  ASSERT_TRUE(hears(u"Renamed f"_s));
  write(u"f"_s, "b");
  ASSERT_TRUE(hears(u"appeared f"_s));
  told_.clear();
  watch_->watcherReceivedNotification(*other, VXFileWatcherDeleteNotification, path(u"f"_s));
  EXPECT_EQ(told_.count(u"Deleted f"_s), 0);
  remove(u"f"_s);
  EXPECT_TRUE(hears(u"Deleted f"_s));
}

TEST_F(PathWatching, WaitsForAFileThatWasDeleted) {
  write(u"f"_s, "a");
  follow(u"f"_s);
  for (int i = 0; i < 3; ++i) {
    remove(u"f"_s);
    ASSERT_TRUE(hears(u"Deleted f"_s));
    told_.clear();
    write(u"f"_s, "b");
    ASSERT_TRUE(hears(u"appeared f"_s));
    told_.clear();
  }
}

TEST_F(PathWatching, SaysNothingWhenAFileComesBackAsItWas) {
  write(u"f"_s, "a");
  follow(u"f"_s);
  rename(u"f"_s, u"g"_s);
  ASSERT_TRUE(hears(u"Renamed f"_s));
  told_.clear();
  rename(u"g"_s, u"f"_s);
  append(u"f"_s, "b");
  ASSERT_TRUE(waitFor([&] { return !told_.isEmpty(); }));
  told_.clear();
  rename(u"f"_s, u"g"_s);
  EXPECT_EQ(take(u"Renamed f"_s), u"Renamed f"_s);
  rename(u"g"_s, u"f"_s);
  write(u"fence"_s, "");
  follow(u"fence"_s);
  append(u"fence"_s, "a");
  ASSERT_TRUE(hears(u"WrittenTo fence"_s));
  EXPECT_FALSE(told_.contains(u"appeared f"_s));
  told_.clear();
  append(u"f"_s, "c");
  ASSERT_TRUE(waitFor([&] { return !told_.isEmpty(); }));
}

TEST_F(PathWatching, TellsThatAFileCameBackChanged) {
  write(u"f"_s, "a");
  follow(u"f"_s);
  rename(u"f"_s, u"g"_s);
  ASSERT_TRUE(hears(u"Renamed f"_s));
  append(u"g"_s, "b");
  rename(u"g"_s, u"f"_s);
  EXPECT_TRUE(hears(u"appeared f"_s));
}

TEST_F(PathWatching, WaitsForAPathWithoutAFile) {
  EXPECT_EQ(follow(u"f"_s), ENOENT);
  write(u"f"_s, "a");
  ASSERT_TRUE(hears(u"appeared f"_s));
  told_.clear();
  append(u"f"_s, "b");
  EXPECT_TRUE(hears(u"WrittenTo f"_s));
}

TEST_F(PathWatching, WaitsForFoldersOfThePathToo) {
  EXPECT_EQ(follow(u"a/b/f"_s), ENOENT);
  makeFolder(u"a"_s);
  makeFolder(u"a/b"_s);
  write(u"a/b/f"_s, "1");
  EXPECT_EQ(take(u"appeared a/b/f"_s), u"appeared a/b/f"_s);
  ASSERT_TRUE(QDir(path(u"a"_s)).removeRecursively());
  EXPECT_EQ(take(u"Deleted a/b/f"_s), u"Deleted a/b/f"_s);
  makeFolder(u"a/b"_s);
  write(u"a/b/f"_s, "2");
  EXPECT_EQ(take(u"appeared a/b/f"_s), u"appeared a/b/f"_s);
}

TEST_F(PathWatching, FindsAFileInAFolderThatArrivesWhole) {
  makeFolder(u"new/b"_s);
  write(u"new/b/f"_s, "1");
  follow(u"a/b/f"_s);
  rename(u"new"_s, u"a"_s);
  EXPECT_TRUE(hears(u"appeared a/b/f"_s));
}

TEST_F(PathWatching, FollowsWhenAFolderAboveIsReplaced) {
  makeFolder(u"a/b"_s);
  makeFolder(u"new/b"_s);
  write(u"a/b/f"_s, "1");
  write(u"new/b/f"_s, "2");
  follow(u"a/b/f"_s);
  rename(u"a"_s, u"old"_s);
  rename(u"new"_s, u"a"_s);
  EXPECT_EQ(take(u"appeared a/b/f"_s), u"appeared a/b/f"_s);
  append(u"a/b/f"_s, "3");
  EXPECT_TRUE(hears(u"WrittenTo a/b/f"_s));
}

TEST_F(PathWatching, FollowsALinkThatLeadsElsewhere) {
  write(u"one"_s, "1");
  write(u"two"_s, "2");
  link(u"one"_s, u"f"_s);
  follow(u"f"_s);
  append(u"one"_s, "a");
  EXPECT_EQ(take(u"WrittenTo f"_s), u"WrittenTo f"_s);
  link(u"two"_s, u"new"_s);
  rename(u"new"_s, u"f"_s);
  EXPECT_EQ(take(u"appeared f"_s), u"appeared f"_s);
  append(u"two"_s, "b");
  EXPECT_TRUE(hears(u"WrittenTo f"_s));
}

TEST_F(PathWatching, FollowsAReplacedFileBehindALink) {
  makeFolder(u"there"_s);
  write(u"there/one"_s, "1");
  link(u"there/one"_s, u"f"_s);
  link(path(u"there"_s), u"folder"_s);
  follow(u"f"_s);
  follow(u"folder/one"_s);
  write(u"there/new"_s, "2");
  rename(u"there/new"_s, u"there/one"_s);
  ASSERT_TRUE(hears(u"appeared f"_s));
  ASSERT_TRUE(hears(u"appeared folder/one"_s));
  EXPECT_TRUE(told_.contains(u"Deleted f"_s));
  EXPECT_TRUE(told_.contains(u"Deleted folder/one"_s));
}

TEST_F(PathWatching, TellsADeletionBesideTheLinkThatLeadsThere) {
  for (int i = 0; i < 20; ++i) {
    const QString target = u"target%1"_s.arg(i);
    const QString name = u"link%1"_s.arg(i);
    write(target, "1");
    link(target, name);
    follow(name);
    write(u"new"_s, "2");
    rename(u"new"_s, target);
    ASSERT_TRUE(hears(u"appeared "_s + name));
    EXPECT_EQ(told_.indexOf(u"Deleted "_s + name) + 1, told_.indexOf(u"appeared "_s + name));
    watch_->removePath(path(name));
    told_.clear();
  }
}

TEST_F(PathWatching, WaitsBehindALinkThatLeadsNowhere) {
  makeFolder(u"there"_s);
  link(u"there/f"_s, u"f"_s);
  EXPECT_EQ(follow(u"f"_s), ENOENT);
  write(u"there/f"_s, "1");
  EXPECT_EQ(take(u"appeared f"_s), u"appeared f"_s);
}

TEST_F(PathWatching, EndsAtALinkToItself) {
  link(u"f"_s, u"f"_s);
  EXPECT_EQ(follow(u"f"_s), ELOOP);
  remove(u"f"_s);
  write(u"f"_s, "1");
  EXPECT_TRUE(hears(u"appeared f"_s));
}

TEST_F(PathWatching, WaitsForAnotherFileWhereOneMayNotBeRead) {
  if (::geteuid() == 0)
    GTEST_SKIP() << "everything may be read";
  write(u"f"_s, "1");
  ASSERT_EQ(::chmod(QFile::encodeName(path(u"f"_s)).constData(), 0), 0);
  EXPECT_EQ(follow(u"f"_s), EACCES);
  write(u"new"_s, "2");
  rename(u"new"_s, u"f"_s);
  EXPECT_TRUE(hears(u"appeared f"_s));
}

TEST_F(PathWatching, FollowsAPathOfOtherNames) {
  write(u"f"_s, "1");
  follow(u"f"_s);
  ASSERT_EQ(::link(QFile::encodeName(path(u"f"_s)).constData(),
                   QFile::encodeName(path(u"g"_s)).constData()),
            0);
  remove(u"f"_s);
  EXPECT_EQ(take(u"Deleted f"_s), u"Deleted f"_s);
  ASSERT_EQ(::link(QFile::encodeName(path(u"g"_s)).constData(),
                   QFile::encodeName(path(u"f"_s)).constData()),
            0);
  append(u"g"_s, "2");
  ASSERT_TRUE(waitFor([&] { return !told_.isEmpty(); }));
  told_.clear();
  remove(u"f"_s);
  EXPECT_TRUE(hears(u"Deleted f"_s));
}

TEST_F(PathWatching, TellsOnlyTheEventsOfTheMask) {
  write(u"f"_s, "1");
  follow(u"f"_s, VnodeWrite);
  write(u"new"_s, "2");
  rename(u"new"_s, u"f"_s);
  ASSERT_TRUE(hears(u"appeared f"_s));
  append(u"f"_s, "3");
  ASSERT_TRUE(hears(u"WrittenTo f"_s));
  EXPECT_EQ(told_, (QStringList{u"appeared f"_s, u"WrittenTo f"_s}));
}

TEST_F(PathWatching, FollowsAFolder) {
  makeFolder(u"d"_s);
  EXPECT_EQ(follow(u"d"_s), 0);
  write(u"d/f"_s, "1");
  EXPECT_EQ(take(u"WrittenTo d"_s), u"WrittenTo d"_s);
  ASSERT_TRUE(QDir(path(u"d"_s)).removeRecursively());
  EXPECT_EQ(take(u"Deleted d"_s), u"Deleted d"_s);
  makeFolder(u"d"_s);
  EXPECT_EQ(take(u"appeared d"_s), u"appeared d"_s);
  write(u"d/g"_s, "1");
  EXPECT_TRUE(hears(u"WrittenTo d"_s));
}

TEST_F(PathWatching, WatchesAFolderAndAFileInIt) {
  makeFolder(u"d"_s);
  write(u"d/f"_s, "1");
  follow(u"d"_s);
  follow(u"d/f"_s);
  remove(u"d/f"_s);
  ASSERT_TRUE(hears(u"Deleted d/f"_s));
  ASSERT_TRUE(hears(u"WrittenTo d"_s));
  told_.clear();
  watch_->removePath(path(u"d"_s));
  write(u"d/f"_s, "2");
  EXPECT_TRUE(hears(u"appeared d/f"_s));
  EXPECT_FALSE(told_.contains(u"WrittenTo d"_s));
}

TEST_F(PathWatching, FollowsAPathOnceHoweverOftenItIsAdded) {
  write(u"f"_s, "1");
  write(u"fence"_s, "1");
  follow(u"f"_s);
  follow(u"f"_s);
  follow(u"fence"_s);
  append(u"f"_s, "2");
  ASSERT_TRUE(hears(u"WrittenTo f"_s));
  append(u"fence"_s, "2");
  ASSERT_TRUE(hears(u"WrittenTo fence"_s));
  EXPECT_EQ(told_.count(u"WrittenTo f"_s), 1);
}

TEST_F(PathWatching, TellsNothingOfARemovedPath) {
  write(u"f"_s, "1");
  write(u"fence"_s, "1");
  follow(u"f"_s);
  follow(u"missing"_s);
  follow(u"fence"_s);
  append(u"f"_s, "2");
  watch_->removePath(path(u"f"_s));
  watch_->removePath(path(u"missing"_s));
  watch_->removePath(path(u"never added"_s));
  write(u"missing"_s, "1");
  append(u"fence"_s, "2");
  ASSERT_TRUE(hears(u"WrittenTo fence"_s));
  EXPECT_EQ(told_, QStringList{u"WrittenTo fence"_s});
}

TEST_F(PathWatching, RefusesPathsThatNoFileCanHave) {
  EXPECT_EQ(watch_->addPath(QString()), ENOENT);
  EXPECT_EQ(watch_->addPath(u"/tmp/a\0b"_s), ENOENT);
  EXPECT_EQ(follow(QString(300, u'x')), ENAMETOOLONG);
  EXPECT_EQ(follow(QString(5000, u'x')), ENAMETOOLONG);
}

TEST_F(PathWatching, DoesNotBlockOnAPipe) {
  ASSERT_EQ(::mkfifo(QFile::encodeName(path(u"pipe"_s)).constData(), 0600), 0);
  EXPECT_EQ(follow(u"pipe"_s), 0);
  remove(u"pipe"_s);
  EXPECT_TRUE(hears(u"Deleted pipe"_s));
}

TEST_F(PathWatching, FollowsRelativePaths) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path().toStdString());
  makeFolder(u"d"_s);
  write(u"d/f"_s, "1");
  QStringList told;
  PathWatch watch([&](const QString&, const QString& path) { told.append(path); },
                  [&](const QString& path) { told.append(u"appeared "_s + path); });
  EXPECT_EQ(watch.addPath(u"d/../d/./f"_s), 0);
  EXPECT_EQ(watch.addPath(u"g"_s), ENOENT);
  ASSERT_TRUE(QDir(path(u"d"_s)).removeRecursively());
  EXPECT_TRUE(waitFor([&] { return told.contains(u"d/../d/./f"_s); }));
  makeFolder(u"d"_s);
  write(u"d/f"_s, "2");
  write(u"g"_s, "2");
  EXPECT_TRUE(waitFor([&] { return told.contains(u"appeared d/../d/./f"_s); }));
  EXPECT_TRUE(waitFor([&] { return told.contains(u"appeared g"_s); }));
  std::filesystem::current_path(before);
}

TEST_F(PathWatching, MayBeDestroyedByWhomItTells) {
  write(u"f"_s, "1");
  int calls = 0;
  std::unique_ptr<PathWatch> watch;
  const auto end = [&] {
    ++calls;
    watch.reset();
  };
  const auto start = [&] {
    watch = std::make_unique<PathWatch>([&](const QString&, const QString&) { end(); },
                                        [&](const QString&) { end(); });
    watch->addPath(path(u"f"_s));
  };
  start();
  write(u"new"_s, "2");
  rename(u"new"_s, u"f"_s);
  ASSERT_TRUE(waitFor([&] { return calls == 1; }));
  remove(u"f"_s);
  start();
  write(u"f"_s, "3");
  ASSERT_TRUE(waitFor([&] { return calls == 2; }));
}

TEST_F(PathWatching, MayBeGivenOtherPathsByWhomItTells) {
  write(u"f"_s, "1");
  write(u"g"_s, "1");
  bool told = false;
  PathWatch watch(
      [&](const QString&, const QString& changed) {
        if (changed != path(u"f"_s)) {
          told = true;
          return;
        }
        watch.removePath(changed);
        watch.addPath(path(u"g"_s));
      },
      nullptr);
  watch.addPath(path(u"f"_s));
  write(u"new"_s, "2");
  rename(u"new"_s, u"f"_s);
  EXPECT_TRUE(waitFor([&] {
    append(u"g"_s, "2");
    return told;
  }));
}

TEST_F(PathWatching, TellsOfEachOfManyFiles) {
  constexpr int Count = 500;
  for (int i = 0; i < Count; ++i) {
    write(u"f%1"_s.arg(i), "1");
    ASSERT_EQ(follow(u"f%1"_s.arg(i)), 0);
  }
  for (int i = 0; i < Count; ++i) {
    write(u"new"_s, "2");
    rename(u"new"_s, u"f%1"_s.arg(i));
  }
  for (int i = 0; i < Count; ++i)
    ASSERT_TRUE(hears(u"appeared f%1"_s.arg(i))) << i;
  EXPECT_EQ(told_.size(), 2 * Count);
  told_.clear();
  for (int i = 0; i < Count; ++i)
    append(u"f%1"_s.arg(i), "3");
  for (int i = 0; i < Count; ++i)
    ASSERT_TRUE(hears(u"WrittenTo f%1"_s.arg(i))) << i;
}
