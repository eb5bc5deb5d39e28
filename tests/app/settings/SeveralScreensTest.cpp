// The strip among several screens that come, go and change, on a real X server.
#include "tests/app/Program.h"
#include "tests/app/XServer.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 1000;
constexpr int Height = 400;
constexpr int Split = 600; // where the right screen begins
constexpr QRgb Ground = 0x123456;

// Two screens beside each other, made of one X screen.
class SeveralScreens : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled() || !XServer::hasProgram(u"xrandr"_s))
      GTEST_SKIP() << "Xvfb or xrandr is not installed";
    server_.emplace(Width, Height);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    environment_ = server_->environment();
    environment_.insert(u"XDG_CONFIG_HOME"_s, folder_.path());
    setMonitor(u"LEFT"_s, Split, Height, 0, u"screen"_s);
    setMonitor(u"RIGHT"_s, Width - Split, Height, Split);
  }

  void setMonitor(const QString& name, int width, int height, int x,
                  const QString& output = u"none"_s) {
    xrandr(
        {u"--setmonitor"_s, name, u"%1/100x%2/100+%3+0"_s.arg(width).arg(height).arg(x), output});
  }
  void xrandr(const QStringList& arguments) {
    QProcess tool;
    tool.setProcessEnvironment(environment_);
    tool.start(u"xrandr"_s, arguments);
    ASSERT_TRUE(tool.waitForFinished());
    ASSERT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().constData();
  }
  void set(const QString& name, const QString& value) {
    const Outcome outcome = runZqticker({u"settings"_s, u"set"_s, name, value}, {}, environment_);
    ASSERT_EQ(outcome.status, 0) << outcome.errors.constData();
  }
  QStringList strip(const QStringList& more = {}) const {
    return QStringList{u"--text"_s, u" . "_s, u"--background"_s, u"#123456"_s} + more;
  }
  // Whether the strip covers the columns from `left` to `right` of its last but one row, and no
  // others.
  bool stands(int left, int right, int bottom = Height) const {
    const QImage screen = server_->screenshot();
    for (int x = 0; x < Width; ++x)
      if (((screen.pixel(x, bottom - 2) & 0xffffff) == Ground) != (x >= left && x < right))
        return false;
    return true;
  }

  QTemporaryDir folder_;
  std::optional<XServer> server_;
  QProcessEnvironment environment_;
};
} // namespace

TEST_F(SeveralScreens, StandsOnThePrimaryOneUnlessToldOtherwise) {
  RunningProgram program(strip(), environment_);
  EXPECT_TRUE(waitUntil([&] { return stands(0, Split); }));
}

TEST_F(SeveralScreens, StandsOnTheOneThatIsNamed) {
  RunningProgram program(strip({u"--screen"_s, u"RIGHT"_s}), environment_);
  EXPECT_TRUE(waitUntil([&] { return stands(Split, Width); }));
}

TEST_F(SeveralScreens, RefusesOneThatIsNotThere) {
  const Outcome outcome = runZqticker(strip({u"--screen"_s, u"MIDDLE"_s}), {}, environment_);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: --screen MIDDLE: no such screen (there is LEFT, RIGHT)\n");
}

TEST_F(SeveralScreens, MovesWithTheSetting) {
  RunningProgram program(strip(), environment_);
  ASSERT_TRUE(waitUntil([&] { return stands(0, Split); }));
  set(u"screen"_s, u"RIGHT"_s);
  EXPECT_TRUE(waitUntil([&] { return stands(Split, Width); }));
  set(u"screen"_s, u"primary"_s);
  EXPECT_TRUE(waitUntil([&] { return stands(0, Split); }));
}

TEST_F(SeveralScreens, StandsOnThePrimaryOneUntilTheMissingOneIsBack) {
  set(u"screen"_s, u"RIGHT"_s);
  RunningProgram program(strip(), environment_);
  ASSERT_TRUE(waitUntil([&] { return stands(Split, Width); }));
  xrandr({u"--delmonitor"_s, u"RIGHT"_s});
  EXPECT_TRUE(waitUntil([&] { return stands(0, Split); }));
  setMonitor(u"RIGHT"_s, Width - Split, Height, Split);
  EXPECT_TRUE(waitUntil([&] { return stands(Split, Width); }));
  program.interrupt(SIGINT);
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(), "");
}

TEST_F(SeveralScreens, FollowsTheSizeOfItsScreen) {
  RunningProgram program(strip({u"--screen"_s, u"RIGHT"_s}), environment_);
  ASSERT_TRUE(waitUntil([&] { return stands(Split, Width); }));
  xrandr({u"--delmonitor"_s, u"RIGHT"_s});
  setMonitor(u"RIGHT"_s, 200, 300, Split);
  EXPECT_TRUE(waitUntil([&] { return stands(Split, Split + 200, 300); }));
}
