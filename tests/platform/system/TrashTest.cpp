#include "zqticker/platform/system/Trash_p.h"

#include "tests/support/OrdinaryUser.h"
#include "tests/support/environment.h"
#include "tests/support/volumes.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
class TrashTest : public ::testing::Test {
 protected:
  TrashTest() : data_("XDG_DATA_HOME", path("share/data")) { makeFolder("home"); }
  ~TrashTest() override {
    // Qt does not remove what has no text for a name.
    std::filesystem::remove_all(path("").constData());
  }

  QByteArray path(const QByteArray& name) const { return QFile::encodeName(root_) + '/' + name; }
  QByteArray makeFolder(const QByteArray& name) const {
    EXPECT_TRUE(QDir(root_).mkpath(QFile::decodeName(name)));
    return path(name);
  }
  QByteArray make(const QByteArray& name, const QByteArray& contents = "contents") const {
    const QByteArray whole = path(name);
    FILE* file = std::fopen(whole.constData(), "w");
    EXPECT_NE(file, nullptr);
    std::fwrite(contents.constData(), 1, contents.size(), file);
    std::fclose(file);
    return whole;
  }
  QByteArray contentsOf(const QByteArray& name) const {
    QByteArray contents = "missing";
    if (FILE* file = std::fopen(path(name).constData(), "r")) {
      contents.resize(10000);
      contents.resize(std::fread(contents.data(), 1, contents.size(), file));
      std::fclose(file);
    }
    return contents;
  }
  bool exists(const QByteArray& name) const {
    struct stat status;
    return ::lstat(path(name).constData(), &status) == 0;
  }
  mode_t modeOf(const QByteArray& name) const {
    struct stat status {};
    ::lstat(path(name).constData(), &status);
    return status.st_mode & 07777;
  }
  // The path in an info file, as it stands there.
  QByteArray statedPath(const QByteArray& info) const {
    const QList<QByteArray> lines = contentsOf(info).split('\n');
    EXPECT_EQ(lines.size(), 4) << info.constData();
    EXPECT_EQ(lines.value(0), "[Trash Info]");
    EXPECT_TRUE(lines.value(1).startsWith("Path="));
    return lines.value(1).mid(5);
  }
  QByteArray uid() const { return QByteArray::number(::geteuid()); }

  QTemporaryDir folder_;
  QString root_ = QFileInfo(folder_.path()).canonicalFilePath();
  ScopedVariable data_;
};

constexpr char Files[] = "share/data/Trash/files/";
constexpr char Info[] = "share/data/Trash/info/";
} // namespace

TEST_F(TrashTest, MovesAFileAndSaysWhereItWasAndWhen) {
  const QByteArray file = make("home/a b%ü.txt");
  const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
  EXPECT_EQ(moveToTrash(file), 0);
  EXPECT_FALSE(exists("home/a b%ü.txt"));
  EXPECT_EQ(contentsOf(QByteArray(Files) + "a b%ü.txt"), "contents");
  const QByteArray info = QByteArray(Info) + "a b%ü.txt.trashinfo";
  EXPECT_EQ(statedPath(info), path("home/").toPercentEncoding("/") + "a%20b%25%C3%BC.txt");
  const QByteArray date = contentsOf(info).split('\n').value(2);
  ASSERT_TRUE(date.startsWith("DeletionDate="));
  const QDateTime gone = QDateTime::fromString(QString::fromLatin1(date.mid(13)), Qt::ISODate);
  EXPECT_GE(gone, before);
  EXPECT_LE(gone, QDateTime::currentDateTime());
}

TEST_F(TrashTest, MakesItsFoldersForTheUserAlone) {
  EXPECT_EQ(moveToTrash(make("home/a")), 0);
  for (const char* name : {"share/data", "share/data/Trash", Files, Info})
    EXPECT_EQ(modeOf(name), 0700u) << name;
  EXPECT_EQ(modeOf(QByteArray(Info) + "a.trashinfo"), 0600u);
}

TEST_F(TrashTest, MovesAFolderWithItsContents) {
  makeFolder("home/folder/inner");
  make("home/folder/inner/\xff\xfe");
  EXPECT_EQ(moveToTrash(path("home/folder/")), 0);
  EXPECT_FALSE(exists("home/folder"));
  EXPECT_EQ(contentsOf(QByteArray(Files) + "folder/inner/\xff\xfe"), "contents");
  EXPECT_EQ(statedPath(QByteArray(Info) + "folder.trashinfo"), path("home/folder"));
}

TEST_F(TrashTest, MovesLinksThemselves) {
  make("home/a");
  ASSERT_EQ(::symlink("a", path("home/link").constData()), 0);
  ASSERT_EQ(::symlink("nowhere", path("home/broken").constData()), 0);
  EXPECT_EQ(moveToTrash(path("home/link")), 0);
  EXPECT_EQ(moveToTrash(path("home/broken")), 0);
  EXPECT_TRUE(exists("home/a"));
  EXPECT_TRUE(exists(QByteArray(Files) + "link"));
  EXPECT_TRUE(exists(QByteArray(Files) + "broken"));
}

TEST_F(TrashTest, StatesTheFolderWithoutLinks) {
  make("home/a");
  ASSERT_EQ(::symlink("home", path("way").constData()), 0);
  EXPECT_EQ(moveToTrash(path("way/../way/a")), 0);
  EXPECT_EQ(statedPath(QByteArray(Info) + "a.trashinfo"), path("home/a"));
}

TEST_F(TrashTest, NumbersNamesThatAreTaken) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(moveToTrash(make("home/report.txt", QByteArray::number(i))), 0);
    EXPECT_EQ(moveToTrash(make("home/.profile", QByteArray::number(i))), 0);
  }
  EXPECT_EQ(contentsOf(QByteArray(Files) + "report.txt"), "0");
  EXPECT_EQ(contentsOf(QByteArray(Files) + "report.2.txt"), "1");
  EXPECT_EQ(contentsOf(QByteArray(Files) + "report.3.txt"), "2");
  EXPECT_EQ(contentsOf(QByteArray(Files) + ".profile.2"), "1");
  EXPECT_EQ(statedPath(QByteArray(Info) + "report.3.txt.trashinfo"), path("home/report.txt"));
}

TEST_F(TrashTest, LeavesWhatHasNoInfoAlone) {
  makeFolder(Files);
  make(QByteArray(Files) + "a", "orphan");
  EXPECT_EQ(moveToTrash(make("home/a")), 0);
  EXPECT_EQ(contentsOf(QByteArray(Files) + "a"), "orphan");
  EXPECT_FALSE(exists(QByteArray(Info) + "a.trashinfo"));
  EXPECT_EQ(contentsOf(QByteArray(Files) + "a.2"), "contents");
}

TEST_F(TrashTest, ShortensNamesThatLeaveNoRoomForTheSuffix) {
  const QByteArray name = QByteArray("ü").repeated(127) + "x";
  EXPECT_EQ(moveToTrash(make("home/" + name)), 0);
  const QByteArray kept = QByteArray("ü").repeated(116);
  EXPECT_EQ(contentsOf(Files + kept), "contents");
  EXPECT_TRUE(statedPath(Info + kept + ".trashinfo").endsWith("%BCx"));
  EXPECT_EQ(moveToTrash(make("home/" + name)), 0);
  EXPECT_TRUE(exists(Files + kept + ".2"));
}

TEST_F(TrashTest, RefusesWhatIsNotThereAndWhatHasNoName) {
  EXPECT_EQ(moveToTrash(path("home/none")), ENOENT);
  EXPECT_EQ(moveToTrash(""), ENOENT);
  EXPECT_EQ(moveToTrash("/"), EINVAL);
  EXPECT_EQ(moveToTrash(path("home/.")), EINVAL);
  EXPECT_EQ(moveToTrash(path("home/..")), EINVAL);
  EXPECT_FALSE(exists("share"));
}

TEST_F(TrashTest, RefusesTheFolderThatItLiesIn) {
  EXPECT_EQ(moveToTrash(makeFolder("share/data")), EINVAL);
  EXPECT_TRUE(QDir(QFile::decodeName(path(Info))).isEmpty());
  EXPECT_TRUE(exists("share/data"));
}

TEST_F(TrashTest, LeavesTheFilesOfAReadOnlyFolder) {
  const QByteArray file = make("home/a");
  ASSERT_TRUE(OrdinaryUser::own(path("").constData()));
  ASSERT_TRUE(OrdinaryUser::own(path("home").constData()));
  ASSERT_EQ(::chmod(path("home").constData(), 0500), 0);
  {
    const OrdinaryUser user;
    ASSERT_TRUE(user.isReady());
    EXPECT_EQ(moveToTrash(file), EACCES);
  }
  EXPECT_TRUE(exists("home/a"));
  EXPECT_TRUE(QDir(QFile::decodeName(path(Info))).isEmpty());
  ::chmod(path("home").constData(), 0700);
}

TEST_F(TrashTest, LeavesFilesWhereNoTrashCanBeMade) {
  const QByteArray file = make("home/a");
  ASSERT_TRUE(OrdinaryUser::own(path("home").constData()));
  ASSERT_EQ(::chmod(path("").constData(), 0555), 0);
  {
    const OrdinaryUser user;
    ASSERT_TRUE(user.isReady());
    EXPECT_EQ(moveToTrash(file), EACCES);
  }
  ::chmod(path("").constData(), 0700);
  make("share", "a file where the folder should be");
  EXPECT_EQ(moveToTrash(file), ENOTDIR);
  EXPECT_TRUE(exists("home/a"));
}

TEST_F(TrashTest, UsesTheTrashOfAnotherVolume) {
  const TestVolume volume(makeFolder("volume"));
  if (!volume.isMounted())
    GTEST_SKIP() << "no volume may be mounted here";
  makeFolder("volume/in ner");
  EXPECT_EQ(moveToTrash(make("volume/in ner/a")), 0);
  EXPECT_EQ(moveToTrash(path("volume/in ner")), 0);
  const QByteArray trash = "volume/.Trash-" + uid();
  EXPECT_EQ(modeOf(trash), 0700u);
  EXPECT_EQ(contentsOf(trash + "/files/a"), "contents");
  EXPECT_TRUE(exists(trash + "/files/in ner"));
  // From the top folder of the volume.
  EXPECT_EQ(statedPath(trash + "/info/a.trashinfo"), "in%20ner/a");
  EXPECT_EQ(statedPath(trash + "/info/in ner.trashinfo"), "in%20ner");
}

TEST_F(TrashTest, UsesTheTrashForAllOfAnotherVolume) {
  const TestVolume volume(makeFolder("volume"));
  if (!volume.isMounted())
    GTEST_SKIP() << "no volume may be mounted here";
  makeFolder("volume/.Trash");
  // Without the sticky bit anybody could take it away.
  EXPECT_EQ(moveToTrash(make("volume/first")), 0);
  EXPECT_TRUE(exists("volume/.Trash-" + uid() + "/files/first"));
  ASSERT_EQ(::chmod(path("volume/.Trash").constData(), 01777), 0);
  EXPECT_EQ(moveToTrash(make("volume/second")), 0);
  EXPECT_TRUE(exists("volume/.Trash/" + uid() + "/files/second"));
  EXPECT_EQ(statedPath("volume/.Trash/" + uid() + "/info/second.trashinfo"), "second");
}

TEST_F(TrashTest, DoesNotFollowLinksOnAnotherVolume) {
  const TestVolume volume(makeFolder("volume"));
  if (!volume.isMounted())
    GTEST_SKIP() << "no volume may be mounted here";
  const QByteArray elsewhere = makeFolder("elsewhere");
  ASSERT_EQ(::chmod(elsewhere.constData(), 01777), 0);
  ASSERT_EQ(::symlink(elsewhere.constData(), path("volume/.Trash").constData()), 0);
  EXPECT_EQ(moveToTrash(make("volume/first")), 0);
  EXPECT_TRUE(exists("volume/.Trash-" + uid() + "/files/first"));
  ASSERT_TRUE(QDir(QFile::decodeName(path("volume/.Trash-" + uid()))).removeRecursively());
  ASSERT_EQ(::symlink(elsewhere.constData(), path("volume/.Trash-" + uid()).constData()), 0);
  EXPECT_EQ(moveToTrash(make("volume/second")), EACCES);
  EXPECT_TRUE(exists("volume/second"));
  EXPECT_TRUE(QDir(QFile::decodeName(elsewhere)).isEmpty());
}

TEST_F(TrashTest, LeavesTheFilesOfAReadOnlyVolume) {
  TestVolume volume(makeFolder("volume"));
  if (!volume.isMounted())
    GTEST_SKIP() << "no volume may be mounted here";
  const QByteArray file = make("volume/a");
  ASSERT_TRUE(volume.makeReadOnly());
  EXPECT_EQ(moveToTrash(file), EROFS);
  EXPECT_TRUE(exists("volume/a"));
}

TEST_F(TrashTest, LeavesWhatAVolumeIsMountedOn) {
  const TestVolume volume(makeFolder("volume"));
  if (!volume.isMounted())
    GTEST_SKIP() << "no volume may be mounted here";
  EXPECT_NE(moveToTrash(path("volume")), 0);
  EXPECT_TRUE(QDir(QFile::decodeName(path(Info))).isEmpty());
}

TEST_F(TrashTest, LeavesTheFilesOfAFullVolume) {
  const TestVolume volume(makeFolder("volume"));
  if (!volume.isMounted())
    GTEST_SKIP() << "no volume may be mounted here";
  makeFolder("volume/.Trash-" + uid());
  makeFolder("volume/.Trash-" + uid() + "/files");
  makeFolder("volume/.Trash-" + uid() + "/info");
  ASSERT_EQ(::chmod(path("volume/.Trash-" + uid()).constData(), 0700), 0);
  const QByteArray file = make("volume/a");
  make("volume/filling", QByteArray(2 << 20, 'x'));
  EXPECT_EQ(moveToTrash(file), ENOSPC);
  EXPECT_EQ(contentsOf("volume/a"), "contents");
  EXPECT_TRUE(QDir(QFile::decodeName(path("volume/.Trash-" + uid() + "/info"))).isEmpty());
}
