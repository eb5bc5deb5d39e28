#include "zqticker/platform/system/FileManager.h"

#include "tests/support/environment.h"
#include "zqticker/platform/system/FourCharacterCode.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::ScopedVariable;

namespace {
class FileManagerTest : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return folder_.filePath(name); }
  QString make(const QString& name, const QByteArray& contents = {}) const {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
    return path(name);
  }
  QString makeFolder(const QString& name) const {
    EXPECT_TRUE(QDir(folder_.path()).mkpath(name));
    return path(name);
  }

  const FileManager& manager_ = FileManager::defaultManager();
  QTemporaryDir folder_;
};
} // namespace

TEST_F(FileManagerTest, SeesFilesAndFolders) {
  EXPECT_TRUE(manager_.fileExistsAtPath(make(u"a ü \U0001F600"_s)));
  EXPECT_TRUE(manager_.fileExistsAtPath(folder_.path()));
  EXPECT_FALSE(manager_.fileExistsAtPath(path(u"none"_s)));
  EXPECT_FALSE(manager_.fileExistsAtPath(path(u"none/none"_s)));
}

TEST_F(FileManagerTest, FollowsLinks) {
  ASSERT_TRUE(QFile::link(make(u"a"_s), path(u"link"_s)));
  EXPECT_TRUE(manager_.fileExistsAtPath(path(u"link"_s)));
  ASSERT_TRUE(QFile::remove(path(u"a"_s)));
  EXPECT_FALSE(manager_.fileExistsAtPath(path(u"link"_s)));
}

TEST_F(FileManagerTest, SeesNothingAtPathsThatNameNoFile) {
  make(u"a"_s);
  make(u"a?"_s);
  EXPECT_FALSE(manager_.fileExistsAtPath(u""_s));
  EXPECT_FALSE(manager_.fileExistsAtPath(QString(path(u"a"_s) + QChar(0) + u"b"_s)));
  EXPECT_FALSE(manager_.fileExistsAtPath(QString(path(u"a"_s) + QChar(0xd83d))));
}

TEST_F(FileManagerTest, HasNoPathForNamesThatAreNoText) {
  const QByteArray name = QFile::encodeName(path(u"a"_s)) + "\xff";
  ASSERT_EQ(::symlink("/", name.constData()), 0);
  EXPECT_FALSE(manager_.fileExistsAtPath(QFile::decodeName(name)));
  EXPECT_EQ(manager_.isInvisibleAtPath(QFile::decodeName(name)), std::nullopt);
  ::unlink(name.constData());
}

TEST_F(FileManagerTest, HidesNamesThatBeginWithAPoint) {
  EXPECT_EQ(manager_.isInvisibleAtPath(make(u".hid"_s)), true);
  EXPECT_EQ(manager_.isInvisibleAtPath(makeFolder(u".folder"_s)), true);
  EXPECT_EQ(manager_.isInvisibleAtPath(path(u".folder/"_s)), true);
  EXPECT_EQ(manager_.isInvisibleAtPath(make(u"seen"_s)), false);
  EXPECT_EQ(manager_.isInvisibleAtPath(make(u".folder/seen"_s)), false);
  EXPECT_EQ(manager_.isInvisibleAtPath(path(u".folder/../seen"_s)), false);
  EXPECT_EQ(manager_.isInvisibleAtPath(u"/"_s), false);
}

TEST_F(FileManagerTest, TakesPointsForTheFoldersThatTheyStandFor) {
  makeFolder(u".folder"_s);
  EXPECT_EQ(manager_.isInvisibleAtPath(path(u".folder/."_s)), true);
  EXPECT_EQ(manager_.isInvisibleAtPath(path(u".folder/.."_s)), false);
}

TEST_F(FileManagerTest, HidesNamesInTheListOfTheirFolder) {
  make(u".hidden"_s, "first\nsecond ü\n\nlast");
  EXPECT_EQ(manager_.isInvisibleAtPath(make(u"first"_s)), true);
  EXPECT_EQ(manager_.isInvisibleAtPath(make(u"second ü"_s)), true);
  EXPECT_EQ(manager_.isInvisibleAtPath(makeFolder(u"last"_s)), true);
  EXPECT_EQ(manager_.isInvisibleAtPath(make(u"firs"_s)), false);
  EXPECT_EQ(manager_.isInvisibleAtPath(make(u"First"_s)), false);
  EXPECT_EQ(manager_.isInvisibleAtPath(make(u"last/first"_s)), false);
}

TEST_F(FileManagerTest, IgnoresListsThatAreNoFiles) {
  makeFolder(u".hidden"_s);
  EXPECT_EQ(manager_.isInvisibleAtPath(make(u"first"_s)), false);
}

TEST_F(FileManagerTest, DoesNotKnowWhetherNothingIsHidden) {
  EXPECT_EQ(manager_.isInvisibleAtPath(path(u".none"_s)), std::nullopt);
  EXPECT_EQ(manager_.isInvisibleAtPath(u""_s), std::nullopt);
  ASSERT_EQ(::symlink("nowhere", QFile::encodeName(path(u".link"_s)).constData()), 0);
  EXPECT_EQ(manager_.isInvisibleAtPath(path(u".link"_s)), true);
}

TEST_F(FileManagerTest, FindsTheUsersFolders) {
  const ScopedVariable home("HOME", QFile::encodeName(folder_.path()));
  const ScopedVariable config("XDG_CONFIG_HOME", "");
  const ScopedVariable data("XDG_DATA_HOME", "relative");
  const ScopedVariable cache("XDG_CACHE_HOME", QFile::encodeName(makeFolder(u"cache"_s)));
  const ScopedVariable state("XDG_STATE_HOME", QFile::encodeName(makeFolder(u"state"_s)));
  makeFolder(u".local/share/Trash"_s);
  makeFolder(u".local/share/fonts"_s);
  makeFolder(u".local/share/applications"_s);
  makeFolder(u".config"_s);
  makeFolder(u"Lieder"_s);
  makeFolder(u"Desktop"_s);
  make(u".config/user-dirs.dirs"_s, "XDG_MUSIC_DIR=\"$HOME/Lieder\"\n");
  const auto found = [&](quint32 type) {
    return manager_.findFolder(FolderDomain::User, type).value_or(u"nothing"_s);
  };
  EXPECT_EQ(found(fourCharacterCode("\xB5"
                                    "doc")),
            path(u"Lieder"_s));
  EXPECT_EQ(found(fourCharacterCode("desk")), path(u"Desktop"_s));
  EXPECT_EQ(found(fourCharacterCode("cusr")), folder_.path());
  EXPECT_EQ(found(fourCharacterCode("usrs")), QFileInfo(folder_.path()).path());
  EXPECT_EQ(found(fourCharacterCode("asup")), path(u".local/share"_s));
  EXPECT_EQ(found(fourCharacterCode("trsh")), path(u".local/share/Trash"_s));
  EXPECT_EQ(found(fourCharacterCode("font")), path(u".local/share/fonts"_s));
  EXPECT_EQ(found(fourCharacterCode("apps")), path(u".local/share/applications"_s));
  EXPECT_EQ(found(fourCharacterCode("pref")), path(u".config"_s));
  EXPECT_EQ(found(fourCharacterCode("cach")), path(u"cache"_s));
  EXPECT_EQ(found(fourCharacterCode("logs")), path(u"state"_s));
  EXPECT_EQ(manager_.findFolder(FolderDomain::OnAppropriateDisk, fourCharacterCode("desk")),
            path(u"Desktop"_s));
  EXPECT_EQ(manager_.findFolder(FolderDomain::OnSystemDisk, fourCharacterCode("desk")),
            path(u"Desktop"_s));
  // Its folder does not exist, and is not made.
  EXPECT_EQ(manager_.findFolder(FolderDomain::User, fourCharacterCode("down")), std::nullopt);
  EXPECT_FALSE(QFileInfo::exists(path(u"Downloads"_s)));
}

TEST_F(FileManagerTest, FindsTheFoldersOfAll) {
  const QString first = makeFolder(u"first"_s);
  const QString last = makeFolder(u"last"_s);
  const QByteArray both = QFile::encodeName(first) + ":ignored:" + QFile::encodeName(last);
  const ScopedVariable data("XDG_DATA_DIRS", both);
  const ScopedVariable config("XDG_CONFIG_DIRS", both);
  for (const quint32 type : {fourCharacterCode("asup"), fourCharacterCode("pref")}) {
    EXPECT_EQ(manager_.findFolder(FolderDomain::Local, type), first);
    EXPECT_EQ(manager_.findFolder(FolderDomain::System, type), last);
  }
  EXPECT_EQ(manager_.findFolder(FolderDomain::System, fourCharacterCode("temp")), QDir::tempPath());
  EXPECT_EQ(manager_.findFolder(FolderDomain::Local, fourCharacterCode("logs")), u"/var/log"_s);
}

TEST_F(FileManagerTest, FindsNoFolderOfOtherTypesAndDomains) {
  EXPECT_EQ(manager_.findFolder(FolderDomain::User, fourCharacterCode("xxxx")), std::nullopt);
  EXPECT_EQ(manager_.findFolder(FolderDomain::User, 0), std::nullopt);
  EXPECT_EQ(manager_.findFolder(FolderDomain::System, fourCharacterCode("cusr")), std::nullopt);
  EXPECT_EQ(manager_.findFolder(FolderDomain::Network, fourCharacterCode("temp")), std::nullopt);
  EXPECT_EQ(manager_.findFolder(static_cast<FolderDomain>(7), fourCharacterCode("temp")),
            std::nullopt);
}
