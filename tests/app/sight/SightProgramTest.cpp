// The program beside a screen saver and a login manager.
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/app/comes_to_rest.h"
#include "tests/app/sight/FakeServices.h"

#include <QtCore/QTemporaryDir>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;

class SightOfProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled() || !PrivateBus::isInstalled())
      GTEST_SKIP() << "Xvfb or dbus-daemon is not installed";
    server_.emplace(Width, Height);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    sessionBus_.emplace();
    systemBus_.emplace();
    QProcessEnvironment environment = sessionBus_->environment(server_->environment());
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, systemBus_->address());
    environment.remove(u"XDG_SESSION_ID"_s);
    QImage image(30, 24, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString picture = folder_.filePath(u"red.png"_s);
    ASSERT_TRUE(image.save(picture));
    saver_.emplace(sessionBus_->address(), u"gnome"_s, false);
    manager_.emplace(systemBus_->address(), FakeLoginManager::State{});
    program_.emplace(QStringList{u"--image"_s, picture, u"--continuous"_s, u"--speed"_s, u"200"_s},
                     environment);
    ASSERT_TRUE(waitUntil([&] { return redColumn() > 0; }));
    ASSERT_TRUE(waitUntil([&] { return saver_->questions() > 0 && manager_->questions() > 0; }));
  }

  // The first column of the picture on the screen; -1 for none.
  int redColumn() const {
    const QImage screen = server_->screenshot();
    for (int x = 0; x < screen.width(); ++x)
      if ((screen.pixel(x, Height - 12) & 0xffffff) == 0xff0000)
        return x;
    return -1;
  }
  bool rests() {
    return comesToRest([this] { return server_->screenshot(); }).has_value();
  }
  bool moves() {
    const QImage before = server_->screenshot();
    return waitUntil([&] { return server_->screenshot() != before; });
  }

  QTemporaryDir folder_;
  std::optional<XServer> server_;
  std::optional<PrivateBus> sessionBus_;
  std::optional<PrivateBus> systemBus_;
  std::optional<FakeScreenSaver> saver_;
  std::optional<FakeLoginManager> manager_;
  std::optional<RunningProgram> program_;
};
} // namespace

TEST_F(SightOfProgram, EndsForAScreenSaver) {
  saver_->setActive(true);
  ASSERT_TRUE(rests());
  saver_->setActive(false);
  EXPECT_TRUE(moves());
}

TEST_F(SightOfProgram, EndsForALockAndForSleep) {
  manager_->setLocked(true);
  ASSERT_TRUE(rests());
  manager_->setAsleep(true);
  manager_->setLocked(false);
  ASSERT_TRUE(rests());
  manager_->setAsleep(false);
  EXPECT_TRUE(moves());
}

TEST_F(SightOfProgram, EndsForTheSaverOfTheServer) {
  if (!XServer::hasProgram(u"xset"_s))
    GTEST_SKIP() << "xset is not installed";
  const auto xset = [&](const QString& what) {
    QProcess tool;
    tool.setProcessEnvironment(server_->environment());
    tool.start(u"xset"_s, {u"s"_s, what});
    EXPECT_TRUE(tool.waitForFinished());
  };
  xset(u"activate"_s);
  ASSERT_TRUE(rests());
  // What it showed last comes into the screen's buffer again, and then moves.
  xset(u"reset"_s);
  ASSERT_TRUE(waitUntil([&] { return redColumn() >= 0; }));
  EXPECT_TRUE(moves());
}

TEST_F(SightOfProgram, ComesBackWhenBothBusesBreak) {
  saver_->setActive(true);
  manager_->setLocked(true);
  ASSERT_TRUE(rests());
  systemBus_->stop();
  sessionBus_->stop();
  EXPECT_TRUE(moves());
  program_->interrupt(SIGTERM);
  EXPECT_EQ(program_->awaitStatus(), 0);
  EXPECT_EQ(program_->process().readAllStandardError(), "") << "without a word";
}
