// Where the program's resources are found.
#include "zqticker/platform/system/Bundle.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

// A program with a name and a user of its own, whose folders are emptied afterwards.
class BundleTest : public ::testing::Test {
 protected:
  BundleTest()
      : name(u"bundle-test-%1"_s.arg(::getpid())), formerName(QCoreApplication::applicationName()),
        formerHome(qgetenv("XDG_DATA_HOME")) {
    QCoreApplication::setApplicationName(name);
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.path()));
    beside = QCoreApplication::applicationDirPath();
    share = QDir::cleanPath(beside + u"/../share/"_s + name);
    user = home.path() + u'/' + name;
  }
  ~BundleTest() override {
    QFile::remove(beside + u'/' + name + u".button"_s);
    QDir(share).removeRecursively();
    if (formerHome.isNull())
      qunsetenv("XDG_DATA_HOME");
    else
      qputenv("XDG_DATA_HOME", formerHome);
    QCoreApplication::setApplicationName(formerName);
  }

  // The file, which the test has made in `folder`.
  QUrl make(const QString& folder) {
    EXPECT_TRUE(QDir().mkpath(folder));
    QFile file(folder + u'/' + name + u".button"_s);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    return QUrl::fromLocalFile(file.fileName());
  }
  QUrl found() const { return Bundle::mainBundle().URLForResource(name, u"button"_s); }

  QTemporaryDir home;
  QString name;
  QString formerName;
  QByteArray formerHome;
  QString beside;
  QString share;
  QString user;
};

} // namespace

TEST_F(BundleTest, LooksBesideTheProgramInItsShareFolderAndInTheUsersData) {
  EXPECT_EQ(Bundle::mainBundle().resourceFolders(), (QStringList{beside, share, user}));
}

TEST_F(BundleTest, HasTheFileOfTheFirstFolderThatHasOne) {
  EXPECT_EQ(found(), QUrl());
  const QUrl inUsersData = make(user);
  EXPECT_EQ(found(), inUsersData);
  const QUrl inShare = make(share);
  EXPECT_EQ(found(), inShare);
  const QUrl besideProgram = make(beside);
  EXPECT_EQ(found(), besideProgram);
}

TEST_F(BundleTest, AsksForTheNameOfTheProgramEachTime) {
  make(user);
  QCoreApplication::setApplicationName(name + u"-renamed"_s);
  EXPECT_EQ(found(), QUrl());
}

TEST_F(BundleTest, TakesNoFolderForAFile) {
  EXPECT_TRUE(QDir().mkpath(share + u'/' + name + u".button"_s));
  const QUrl inUsersData = make(user);
  EXPECT_EQ(found(), inUsersData);
}

TEST_F(BundleTest, HasNoFilesOfOtherFolders) {
  const QUrl file = make(home.path());
  QDir().mkpath(user);
  EXPECT_TRUE(QFile::exists(user + u"/../"_s + name + u".button"_s));
  EXPECT_EQ(Bundle::mainBundle().URLForResource(u"../"_s + name, u"button"_s), QUrl());
  EXPECT_EQ(Bundle::mainBundle().URLForResource(file.toLocalFile(), QString()), QUrl());
  EXPECT_EQ(Bundle::mainBundle().URLForResource(QString(), u"button"_s), QUrl());
}

TEST_F(BundleTest, FindsAFileWithoutAnExtension) {
  QDir().mkpath(user);
  QFile file(user + u"/license"_s);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  EXPECT_EQ(Bundle::mainBundle().URLForResource(u"license"_s, QString()),
            QUrl::fromLocalFile(file.fileName()));
}

TEST_F(BundleTest, HasNothingOfAFolderThatMayNotBeSearched) {
  static constexpr uid_t Nobody = 65534;
  const bool isRoot = ::geteuid() == 0;
  const QUrl inUsersData = make(user);
  QFile::setPermissions(home.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner |
                                         QFileDevice::ReadOther | QFileDevice::ExeOther);
  QFile::setPermissions(user, QFileDevice::Permissions());
  ASSERT_TRUE(!isRoot || ::seteuid(Nobody) == 0);
  const QUrl closed = found();
  ASSERT_TRUE(!isRoot || ::seteuid(0) == 0);
  QFile::setPermissions(user, QFileDevice::ReadOwner | QFileDevice::ExeOwner |
                                  QFileDevice::WriteOwner | QFileDevice::ReadOther |
                                  QFileDevice::ExeOther);
  EXPECT_EQ(closed, QUrl());
  EXPECT_EQ(found(), inUsersData);
}
