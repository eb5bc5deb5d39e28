#include "zqticker/foundation_additions/file_workspace.h"

#include "tests/support/environment.h"
#include "zqticker/platform/system/FileManager.h"
#include "zqticker/platform/system/FourCharacterCode.h"
#include "zqticker/platform/system/Workspace.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <cstdio>

#include <fcntl.h>
#include <sys/utsname.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq;
using zq::platform::FileManager;
using zq::platform::Workspace;
using zq::testing::ScopedVariable;

namespace {
class FileWorkspace : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return root_ + u'/' + name; }
  QString make(const QString& name, const QByteArray& contents = {}) const {
    QDir(root_).mkpath(QFileInfo(name).path());
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    file.write(contents);
    return path(name);
  }
  QString makeFolder(const QString& name) const {
    EXPECT_TRUE(QDir(root_).mkpath(name));
    return path(name);
  }
  bool exists(const QString& name) const { return QFileInfo::exists(path(name)); }
  QString unique(const QString& name) const { return uniqueFileNameAtPath(files_, path(name)); }

  const FileManager& files_ = FileManager::defaultManager();
  Workspace& workspace_ = Workspace::sharedWorkspace();
  QTemporaryDir folder_;
  QString root_ = QFileInfo(folder_.path()).canonicalFilePath();
};
} // namespace

TEST_F(FileWorkspace, LeavesPathsAtWhichNothingExists) {
  EXPECT_EQ(unique(u"nothing.txt"_s), path(u"nothing.txt"_s));
  EXPECT_EQ(unique(u"none/../none//x/"_s), path(u"none/../none//x/"_s));
  EXPECT_EQ(uniqueFileNameAtPath(files_, u""_s), u"");
  const QString bad = make(u"a"_s) + QChar(0xd800);
  EXPECT_EQ(uniqueFileNameAtPath(files_, bad), bad);
}

TEST_F(FileWorkspace, NumbersNamesThatAreTaken) {
  make(u"report.txt"_s);
  EXPECT_EQ(unique(u"report.txt"_s), path(u"report-1.txt"_s));
  make(u"report-1.txt"_s);
  make(u"report-3.txt"_s);
  EXPECT_EQ(unique(u"report.txt"_s), path(u"report-2.txt"_s));
  make(u"report-2.txt"_s);
  EXPECT_EQ(unique(u"report.txt"_s), path(u"report-4.txt"_s));
  EXPECT_FALSE(exists(u"report-4.txt"_s));
}

TEST_F(FileWorkspace, NumbersFoldersAndNamesWithoutAnExtension) {
  makeFolder(u"photos"_s);
  EXPECT_EQ(unique(u"photos"_s), path(u"photos-1"_s));
  EXPECT_EQ(unique(u"photos/"_s), path(u"photos-1"_s));
  makeFolder(u"photos-1"_s);
  EXPECT_EQ(unique(u"photos"_s), path(u"photos-2"_s));
  EXPECT_EQ(uniqueFileNameAtPath(files_, u"/"_s), u"/-1");
}

TEST_F(FileWorkspace, NumbersBeforeTheLastExtension) {
  make(u"archive.tar.gz"_s);
  make(u".profile"_s);
  make(u".a.txt"_s);
  EXPECT_EQ(unique(u"archive.tar.gz"_s), path(u"archive.tar-1.gz"_s));
  EXPECT_EQ(unique(u".profile"_s), path(u".profile-1"_s));
  EXPECT_EQ(unique(u".a.txt"_s), path(u".a-1.txt"_s));
}

TEST_F(FileWorkspace, NumbersBehindAnyDelimiter) {
  make(u"%@ %1.txt"_s);
  const QString taken = path(u"%@ %1.txt"_s);
  EXPECT_EQ(uniqueFileNameAtPath(files_, taken, u" copy "_s), path(u"%@ %1 copy 1.txt"_s));
  EXPECT_EQ(uniqueFileNameAtPath(files_, taken, u""_s), path(u"%@ %11.txt"_s));
  EXPECT_EQ(uniqueFileNameAtPath(files_, taken, u"."_s), path(u"%@ %1.1.txt"_s));
}

TEST_F(FileWorkspace, NumbersRelativePaths) {
  const QString before = QDir::currentPath();
  make(u"a.txt"_s);
  make(u"d/a.txt"_s);
  ASSERT_TRUE(QDir::setCurrent(root_));
  EXPECT_EQ(uniqueFileNameAtPath(files_, u"a.txt"_s), u"a-1.txt");
  EXPECT_EQ(uniqueFileNameAtPath(files_, u"d/a.txt"_s), u"d/a-1.txt");
  QDir::setCurrent(before);
}

TEST_F(FileWorkspace, ShowsFilesThatAreNotHidden) {
  EXPECT_TRUE(isVisibleFileAtPath(files_, make(u"seen"_s)));
  EXPECT_FALSE(isVisibleFileAtPath(files_, make(u".unseen"_s)));
  make(u".hidden"_s, "listed\n");
  EXPECT_FALSE(isVisibleFileAtPath(files_, make(u"listed"_s)));
}

TEST_F(FileWorkspace, TakesWhatDoesNotExistForVisible) {
  EXPECT_TRUE(isVisibleFileAtPath(files_, path(u".none"_s)));
  EXPECT_TRUE(isVisibleFileAtPath(files_, u""_s));
  EXPECT_TRUE(isVisibleFileAtPath(files_, QString(make(u".a"_s) + QChar(0))));
}

TEST_F(FileWorkspace, FindsFoldersByCodesAndNumbers) {
  const ScopedVariable data("XDG_DATA_HOME", QFile::encodeName(root_));
  constexpr qint16 UserDomain = -32763;
  EXPECT_EQ(findSystemFolderType(files_, 0x61737570, UserDomain), root_);
  EXPECT_EQ(findSystemFolderType(files_, platform::fourCharacterCode("trsh"), UserDomain),
            std::nullopt);
  EXPECT_EQ(findSystemFolderType(files_, 0x61737570, 0), std::nullopt);
  EXPECT_EQ(findSystemFolderType(files_, 0, UserDomain), std::nullopt);
}

TEST_F(FileWorkspace, RedirectsStandardError) {
  const int before = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 100);
  EXPECT_FALSE(redirectStandardErrorToPath(files_, path(u"none/log"_s)));
  EXPECT_FALSE(redirectStandardErrorToPath(files_, QString(path(u"log"_s) + QChar(0xdc00))));
  EXPECT_TRUE(redirectStandardErrorToPath(files_, path(u"log ü"_s)));
  std::fputs("line\n", stderr);
  ::dup2(before, STDERR_FILENO);
  ::close(before);
  QFile log(path(u"log ü"_s));
  ASSERT_TRUE(log.open(QIODevice::ReadOnly));
  EXPECT_EQ(log.readAll(), "line\n");
}

TEST_F(FileWorkspace, KnowsRunningApplicationsByTheirDesktopFile) {
  const ScopedVariable data("XDG_DATA_HOME", QFile::encodeName(root_));
  const QString program = path(u"zq test sleeper"_s);
  ASSERT_TRUE(QFile::copy(u"/bin/sleep"_s, program));
  make(u"applications/org.example.Sleeper.desktop"_s,
       "[Desktop Entry]\nExec=\"" + QFile::encodeName(program) + "\" %u\n");
  EXPECT_FALSE(appRunningWithBundleIdentifier(workspace_, u"org.example.Sleeper"_s));
  QProcess process;
  process.start(program, {u"600"_s});
  ASSERT_TRUE(process.waitForStarted());
  EXPECT_TRUE(appRunningWithBundleIdentifier(workspace_, u"org.example.Sleeper"_s));
  EXPECT_FALSE(appRunningWithBundleIdentifier(workspace_, u"org.example.sleeper"_s));
  EXPECT_FALSE(appRunningWithBundleIdentifier(workspace_, u"org.example.Sleeper.desktop"_s));
  process.kill();
  ASSERT_TRUE(process.waitForFinished());
  EXPECT_FALSE(appRunningWithBundleIdentifier(workspace_, u"org.example.Sleeper"_s));
}

TEST_F(FileWorkspace, KnowsNoApplicationsByEmptyOrUnknownIdentifiers) {
  EXPECT_FALSE(appRunningWithBundleIdentifier(workspace_, u""_s));
  EXPECT_FALSE(appRunningWithBundleIdentifier(workspace_, u"org.example.Nowhere"_s));
}

TEST_F(FileWorkspace, TrashesFilesByNameListAndPath) {
  const ScopedVariable data("XDG_DATA_HOME", QFile::encodeName(path(u"data"_s)));
  for (const auto& name : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
    make(u"home/"_s + name);
  make(u"home/folder/inner"_s);
  const QString home = path(u"home"_s);
  EXPECT_TRUE(trashFile(workspace_, u"a"_s, home));
  EXPECT_TRUE(trashFiles(workspace_, {u"b"_s, u"c"_s}, home + u'/'));
  EXPECT_TRUE(trashFileAtPath(workspace_, path(u"home/d"_s)));
  EXPECT_TRUE(trashFileAtPath(workspace_, path(u"home/folder/"_s)));
  EXPECT_TRUE(trashFiles(workspace_, {}, home));
  EXPECT_TRUE(QDir(home).isEmpty());
  EXPECT_EQ(QDir(path(u"data/Trash/files"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
            (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"folder"_s}));
}

TEST_F(FileWorkspace, TrashesTheOthersWhereOneCannotGo) {
  const ScopedVariable data("XDG_DATA_HOME", QFile::encodeName(path(u"data"_s)));
  make(u"home/a"_s);
  make(u"home/b"_s);
  EXPECT_FALSE(trashFiles(workspace_, {u"a"_s, u"none"_s, u"b"_s}, path(u"home"_s)));
  EXPECT_FALSE(exists(u"home/a"_s));
  EXPECT_FALSE(exists(u"home/b"_s));
}

TEST_F(FileWorkspace, TrashesNothingByWhatIsNoName) {
  const ScopedVariable data("XDG_DATA_HOME", QFile::encodeName(path(u"data"_s)));
  make(u"home/folder/a"_s);
  make(u"home/a?"_s);
  for (const QString& name : {u""_s, u"."_s, u".."_s, u"folder/a"_s, u"../home/folder"_s, u"/"_s,
                              QString(u"a"_s + QChar(0xd83d)), QString(u"folder"_s + QChar(0))})
    EXPECT_FALSE(trashFile(workspace_, name, path(u"home"_s))) << name.toStdString();
  EXPECT_FALSE(trashFileAtPath(workspace_, u""_s));
  EXPECT_FALSE(trashFileAtPath(workspace_, u"/"_s));
  EXPECT_TRUE(exists(u"home/folder/a"_s));
  EXPECT_TRUE(exists(u"home/a?"_s));
}

TEST_F(FileWorkspace, TellsTheVersionOfTheKernel) {
  int majorNumber = -1, minorNumber = -1, bugFixNumber = -1;
  operatingSystemVersion(workspace_, majorNumber, minorNumber, bugFixNumber);
  utsname names;
  ASSERT_EQ(::uname(&names), 0);
  const QString expected = u"%1.%2"_s.arg(majorNumber).arg(minorNumber);
  EXPECT_TRUE(QString::fromLatin1(names.release).startsWith(expected)) << names.release;
  EXPECT_GT(majorNumber, 0);
  EXPECT_GE(bugFixNumber, 0);
}
