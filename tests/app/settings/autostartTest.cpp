// The autostart entry, also one that its user has edited.
#include "app/settings/autostart.h"

#include "app/commands/failures.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
class AutostartEntry : public ::testing::Test {
 protected:
  QString path() const { return folder_.filePath(u"autostart/ticker.desktop"_s); }
  void write(const QByteArray& bytes) const {
    setStartsWithSession(path(), true);
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
  QByteArray contents() const {
    QFile file(path());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
  }

  QTemporaryDir folder_;
};
} // namespace

TEST_F(AutostartEntry, IsOffWithoutAFile) {
  EXPECT_FALSE(startsWithSession(path()));
  setStartsWithSession(path(), false);
  EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(AutostartEntry, IsMadeAndRemoved) {
  setStartsWithSession(path(), true);
  EXPECT_TRUE(startsWithSession(path()));
  EXPECT_TRUE(contents().startsWith("[Desktop Entry]\nType=Application\n"));
  EXPECT_TRUE(
      contents().contains(QByteArray("\nExec=" + programForDesktopEntry() + " run --no-window\n")));
  setStartsWithSession(path(), false);
  EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(AutostartEntry, NamesTheProgramThatRuns) {
  // Not one that a shell would find.
  EXPECT_TRUE(programForDesktopEntry().startsWith("\"/")) << programForDesktopEntry().constData();
  EXPECT_TRUE(programForDesktopEntry().endsWith("/zqticker-tests-app\""));
}

TEST_F(AutostartEntry, IsOffWhereADesktopHasSwitchedItOff) {
  write("[Desktop Entry]\nType=Application\nExec=zqticker run\nHidden=true\n");
  EXPECT_FALSE(startsWithSession(path()));
  write("[Desktop Entry]\nExec=zqticker run\nX-GNOME-Autostart-enabled = false\n");
  EXPECT_FALSE(startsWithSession(path()));
  write("[Desktop Entry]\nExec=zqticker run\nHidden=false\nX-GNOME-Autostart-enabled=true\n");
  EXPECT_TRUE(startsWithSession(path()));
  write("[Desktop Entry]\nExec=zqticker run\n[Desktop Action a]\nHidden=true\n");
  EXPECT_TRUE(startsWithSession(path())) << "of another group";
  write("[Desktop Entry]\nType=Application\n");
  EXPECT_FALSE(startsWithSession(path())) << "starts nothing";
  write("");
  EXPECT_FALSE(startsWithSession(path()));
}

TEST_F(AutostartEntry, KeepsWhatItsUserHasWritten) {
  const QByteArray edited =
      "# mine\n[Desktop Entry]\nExec=zqticker run --speed 20\nX-Delay=5\n[Desktop Action a]\n";
  write(edited);
  setStartsWithSession(path(), false);
  EXPECT_EQ(contents(), "# mine\n[Desktop Entry]\nHidden=true\nExec=zqticker run --speed 20\n"
                        "X-Delay=5\n[Desktop Action a]\n");
  setStartsWithSession(path(), true);
  EXPECT_EQ(contents(), edited);
  write("[Desktop Entry]\nExec=a\nX-GNOME-Autostart-enabled=false\n");
  setStartsWithSession(path(), true);
  EXPECT_EQ(contents(), "[Desktop Entry]\nExec=a\n");
}

TEST_F(AutostartEntry, IsMadeAnewWhereItStartsNothing) {
  write("garbage");
  setStartsWithSession(path(), true);
  EXPECT_TRUE(startsWithSession(path()));
}

TEST_F(AutostartEntry, TellsWhereItCannotBeWritten) {
  QFile file(folder_.filePath(u"autostart"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  try {
    setStartsWithSession(path(), true);
    FAIL();
  } catch (const RunTimeError& error) {
    EXPECT_EQ(error.message(), path() + u": cannot write: the folder cannot be made"_s);
  }
}
