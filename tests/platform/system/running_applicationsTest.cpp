// Processes as /proc shows them, in folders of a test.
#include "zqticker/platform/system/running_applications_p.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
class RunningApplicationsTest : public ::testing::Test {
 protected:
  struct Process {
    QByteArray groups = "0::/user.slice/session-1.scope";
    QByteArray environment = {};
    QString program = {};
    QByteArray commandLine = {};
    char state = 'S';
  };

  void write(const QString& name, const QByteArray& contents) const {
    ASSERT_TRUE(QDir(root_).mkpath(QFileInfo(name).path()));
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
  }
  void add(int number, const Process& process) const {
    const QString folder = u"proc/%1/"_s.arg(number);
    write(folder + u"cgroup"_s, process.groups + '\n');
    write(folder + u"environ"_s, process.environment);
    write(folder + u"cmdline"_s, process.commandLine);
    write(folder + u"stat"_s, QByteArray::number(number) + " (a) b) " + process.state + " 1 2 3");
    if (!process.program.isEmpty())
      QFile::link(process.program, path(folder + u"exe"_s));
  }
  QString path(const QString& name) const { return root_ + u'/' + name; }
  // What runs, as "identifier number".
  QStringList running(uid_t user = ::geteuid()) const {
    QStringList found;
    for (const RunningApplication& each :
         runningApplications(path(u"proc"_s), {path(u"own"_s), path(u"shared"_s)}, user))
      found.append(u"%1 %2"_s.arg(each.identifier).arg(each.processIdentifier));
    return found;
  }
  QByteArray entry(const QByteArray& command) const {
    return "[Other]\nExec=/bin/false\n[Desktop Entry]\nName=x\nExec=" + command + "\n";
  }

  QTemporaryDir folder_;
  QString root_ = QFileInfo(folder_.path()).canonicalFilePath();
};
} // namespace

TEST(ApplicationOfUnit, IsInTheNameOfAScope) {
  EXPECT_EQ(applicationOfUnit(u"app-gnome-org.gnome.Evince-4711.scope"_s), u"org.gnome.Evince"_s);
  EXPECT_EQ(applicationOfUnit(u"app-firefox-4711.scope"_s), u"firefox"_s);
  EXPECT_EQ(applicationOfUnit(u"app-a-b-org.x.Y-1.scope"_s), u"org.x.Y"_s);
}

TEST(ApplicationOfUnit, IsInTheNameOfAServiceOrASlice) {
  EXPECT_EQ(applicationOfUnit(u"app-org.kde.konsole@abc-1.service"_s), u"org.kde.konsole"_s);
  EXPECT_EQ(applicationOfUnit(u"app-org.kde.konsole@0a1b.service"_s), u"org.kde.konsole"_s);
  EXPECT_EQ(applicationOfUnit(u"app-kde-org.kde.konsole.service"_s), u"org.kde.konsole"_s);
  EXPECT_EQ(applicationOfUnit(u"app-org.gnome.Terminal.slice"_s), u"org.gnome.Terminal"_s);
}

TEST(ApplicationOfUnit, IsUnescaped) {
  EXPECT_EQ(applicationOfUnit(u"app-gnome-code\\x2doss-1.scope"_s), u"code-oss"_s);
  EXPECT_EQ(applicationOfUnit(u"app-\\xc3\\xbcber-1.scope"_s), u"über"_s);
  EXPECT_EQ(applicationOfUnit(u"app-odd\\xzz-1.scope"_s), u"odd\\xzz"_s);
}

TEST(ApplicationOfUnit, IsMissingInOtherUnits) {
  for (const auto& unit : {u"session-1.scope"_s, u"app.slice"_s, u"app-.slice"_s, u"app-1.scope"_s,
                           u"app-x-1.mount"_s, u""_s, u"user@1000.service"_s})
    EXPECT_EQ(applicationOfUnit(unit), std::nullopt) << unit.toStdString();
}

TEST(IdentifierOfDesktopFile, IsItsNameBelowApplications) {
  EXPECT_EQ(identifierOfDesktopFile(u"/usr/share/applications/org.x.Y.desktop"_s), u"org.x.Y"_s);
  EXPECT_EQ(identifierOfDesktopFile(u"/usr/share/applications/kde/z.desktop"_s), u"kde-z"_s);
  EXPECT_EQ(identifierOfDesktopFile(u"/home/me/z.desktop"_s), u"z"_s);
  EXPECT_EQ(identifierOfDesktopFile(u"/home/me/z.txt"_s), std::nullopt);
  EXPECT_EQ(identifierOfDesktopFile(u""_s), std::nullopt);
}

TEST_F(RunningApplicationsTest, AreTakenFromUnits) {
  add(30, {.groups = "0::/user.slice/user@1000.service/app.slice/app-gnome-org.x.Y-30.scope/sub"});
  add(4, {.groups = "12:pids:/\n1:name=systemd:/app.slice/app-org.x.Z-4.scope"});
  EXPECT_EQ(running(), (QStringList{u"org.x.Z 4"_s, u"org.x.Y 30"_s}));
}

TEST_F(RunningApplicationsTest, ComeOnceEach) {
  for (const int number : {30, 4, 100})
    add(number, {.groups = "0::/app.slice/app-org.x.Y-1.scope"});
  EXPECT_EQ(running(), QStringList{u"org.x.Y 4"_s});
}

TEST_F(RunningApplicationsTest, AreTakenFromTheEnvironmentOfTheProcessThatWasLaunched) {
  const QByteArray file = "GIO_LAUNCHED_DESKTOP_FILE=/usr/share/applications/org.x.Y.desktop";
  const QByteArray environment =
      "A=b" + QByteArray(1, '\0') + file + '\0' + "GIO_LAUNCHED_DESKTOP_FILE_PID=30" + '\0';
  add(30, {.environment = environment});
  add(31, {.environment = environment});
  EXPECT_EQ(running(), QStringList{u"org.x.Y 30"_s});
}

TEST_F(RunningApplicationsTest, AreTakenFromTheProgramsOfDesktopFiles) {
  write(u"bin/viewer"_s, "");
  write(u"shared/org.x.Viewer.desktop"_s, entry(QFile::encodeName(path(u"bin/viewer"_s)) + " %U"));
  write(u"own/kde/quoted.desktop"_s,
        entry('"' + QFile::encodeName(path(u"bin/../bin/viewer"_s)) + "\" --new"));
  add(7, {.program = path(u"bin/viewer"_s)});
  QStringList found = running();
  found.sort();
  EXPECT_EQ(found, (QStringList{u"kde-quoted 7"_s, u"org.x.Viewer 7"_s}));
}

TEST_F(RunningApplicationsTest, TakeAUsersDesktopFileInPlaceOfASharedOne) {
  write(u"bin/viewer"_s, "");
  write(u"bin/other"_s, "");
  write(u"shared/v.desktop"_s, entry(QFile::encodeName(path(u"bin/viewer"_s))));
  write(u"own/v.desktop"_s, entry(QFile::encodeName(path(u"bin/other"_s))));
  add(7, {.program = path(u"bin/viewer"_s)});
  EXPECT_EQ(running(), QStringList());
  add(8, {.program = path(u"bin/other"_s)});
  EXPECT_EQ(running(), QStringList{u"v 8"_s});
}

TEST_F(RunningApplicationsTest, KnowScriptsByWhatTheirInterpreterRuns) {
  write(u"bin/python3"_s, "");
  write(u"bin/script"_s, "");
  write(u"shared/script.desktop"_s, entry(QFile::encodeName(path(u"bin/script"_s))));
  write(u"shared/any.desktop"_s, entry(QFile::encodeName(path(u"bin/python3"_s)) + " x.py"));
  add(7, {.program = path(u"bin/python3"_s),
          .commandLine =
              "python3" + QByteArray(1, '\0') + QFile::encodeName(path(u"bin/script"_s)) + '\0'});
  add(8, {.program = path(u"bin/python3"_s), .commandLine = QByteArray("python3\0x.py\0", 13)});
  EXPECT_EQ(running(), QStringList{u"script 7"_s});
}

TEST_F(RunningApplicationsTest, LeaveOutOtherUsersAndProcessesThatAreOver) {
  add(7, {.groups = "0::/app.slice/app-org.x.Y-1.scope", .state = 'Z'});
  EXPECT_EQ(running(), QStringList());
  add(8, {.groups = "0::/app.slice/app-org.x.Y-1.scope"});
  EXPECT_EQ(running(), QStringList{u"org.x.Y 8"_s});
  EXPECT_EQ(running(::geteuid() + 1), QStringList());
}

TEST_F(RunningApplicationsTest, SurviveWhatIsNoProcess) {
  write(u"proc/uptime"_s, "1");
  write(u"proc/12x/stat"_s, "1");
  ASSERT_TRUE(QDir(root_).mkpath(u"proc/13"_s));
  EXPECT_EQ(running(), QStringList());
  EXPECT_TRUE(runningApplications(path(u"none"_s), {}, ::geteuid()).empty());
}
