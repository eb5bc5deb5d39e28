// The strip of the program paused, hidden and focused by commands and real keys.
#include "app/bus/TickerClient.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/app/comes_to_rest.h"

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
constexpr int StripHeight = 24;
constexpr QRgb Ground = 0x123456;

class StripControlScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled() || !PrivateBus::isInstalled())
      GTEST_SKIP() << "Xvfb or dbus-daemon is not installed";
    if (!XServer::hasProgram(u"xdotool"_s) || !XServer::hasProgram(u"xmessage"_s) ||
        !XServer::hasProgram(u"openbox"_s))
      GTEST_SKIP() << "xdotool, xmessage or openbox is not installed";
    server_.emplace(Width, Height);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    bus_.emplace();
    ASSERT_TRUE(bus_->isRunning());
    program_.emplace(QStringList{u"run"_s, u"--text"_s, u"The quick brown fox jumps over it"_s,
                                 u"--continuous"_s, u"--background"_s, u"#123456"_s, u"--speed"_s,
                                 u"150"_s, u"--no-control-bar"_s},
                     environment());
    ASSERT_TRUE(waitUntil([&] { return isStripSeen(); }));
    ASSERT_TRUE(movesFrom(strip()));
  }

  QProcessEnvironment environment() const { return bus_->environment(server_->environment()); }

  void ask(const QString& command) {
    RunningProgram program({command}, environment());
    EXPECT_EQ(program.awaitStatus(), 0);
    EXPECT_EQ(program.process().readAllStandardError(), "") << command.toStdString();
  }
  // What xdotool says, on one line.
  QByteArray tell(const QStringList& what) {
    QProcess tool;
    tool.setProcessEnvironment(server_->environment());
    tool.start(u"xdotool"_s, what);
    tool.waitForFinished();
    return tool.readAllStandardOutput().trimmed();
  }
  QByteArray activeWindow() { return tell({u"getactivewindow"_s, u"getwindowname"_s}); }
  bool isActive(const QByteArray& name) {
    return waitUntil([&] { return activeWindow() == name; });
  }

  QImage strip() { return server_->screenshot().copy(0, Height - StripHeight, Width, StripHeight); }
  bool movesFrom(const QImage& before) {
    return waitUntil([&] { return strip() != before; });
  }
  // Where it stands still; nothing where it does not.
  std::optional<QImage> restingStrip() {
    return comesToRest([this] { return strip(); });
  }
  // Within the ring of the focus.
  bool isStripSeen() {
    return (server_->screenshot().pixel(4, Height - StripHeight + 3) & 0xffffff) == Ground;
  }

  std::optional<XServer> server_;
  std::optional<PrivateBus> bus_;
  std::optional<RunningProgram> program_;
};

// Another program's window, which has the keyboard.
class OtherWindow {
 public:
  explicit OtherWindow(const QProcessEnvironment& environment) {
    process_.setProcessEnvironment(environment);
    process_.start(u"xmessage"_s, {u"-geometry"_s, u"200x100+50+50"_s, u"other"_s});
  }
  ~OtherWindow() {
    process_.kill();
    process_.waitForFinished();
  }

 private:
  QProcess process_;
};
} // namespace

TEST_F(StripControlScreen, StandsStillWhileItIsPaused) {
  ask(u"pause"_s);
  const std::optional<QImage> paused = restingStrip();
  ASSERT_TRUE(paused);
  ask(u"pause"_s);
  EXPECT_EQ(restingStrip(), paused);
  ask(u"resume"_s);
  EXPECT_TRUE(movesFrom(*paused));
}

TEST_F(StripControlScreen, ComesBackWhereItStood) {
  ask(u"pause"_s);
  const std::optional<QImage> before = restingStrip();
  ASSERT_TRUE(before);
  ask(u"hide"_s);
  EXPECT_TRUE(waitUntil([&] { return !isStripSeen(); }));
  TickerClient client(bus_->address());
  EXPECT_TRUE(client.displayMessage({{u"text"_s, u"Hello"_s}}).ok);
  EXPECT_FALSE(isStripSeen()) << "what comes does not bring it back";
  ask(u"show"_s);
  EXPECT_TRUE(waitUntil([&] { return strip() == *before; }));
}

TEST_F(StripControlScreen, TakesTheKeyboardAndGivesItBack) {
  const OtherWindow other(server_->environment());
  ASSERT_TRUE(isActive("xmessage"));
  ask(u"focus"_s);
  ASSERT_TRUE(isActive("zqticker"));
  EXPECT_TRUE(waitUntil([&] {
    const QImage ringed = strip();
    return (ringed.pixel(0, 5) & 0xffffff) == 0 && (ringed.pixel(1, 5) & 0xffffff) == 0xffffff;
  })) << "a ring shows it";
  tell({u"key"_s, u"Escape"_s});
  EXPECT_TRUE(isActive("xmessage"));
  EXPECT_TRUE(waitUntil([&] { return (strip().pixel(0, 5) & 0xffffff) == Ground; }));
}

TEST_F(StripControlScreen, TakesTheKeyboardFromHiding) {
  const OtherWindow other(server_->environment());
  ASSERT_TRUE(isActive("xmessage"));
  ask(u"hide"_s);
  EXPECT_TRUE(waitUntil([&] { return !isStripSeen(); }));
  ask(u"focus"_s);
  EXPECT_TRUE(isActive("zqticker"));
  EXPECT_TRUE(waitUntil([&] { return isStripSeen(); }));
  tell({u"key"_s, u"Escape"_s});
  EXPECT_TRUE(isActive("xmessage"));
  EXPECT_TRUE(isStripSeen()) << "it stays";
}

TEST_F(StripControlScreen, GivesTheKeyboardAwayWhereTheOtherWindowHasGone) {
  std::optional<OtherWindow> other(server_->environment());
  ASSERT_TRUE(isActive("xmessage"));
  ask(u"focus"_s);
  ASSERT_TRUE(isActive("zqticker"));
  other.reset();
  tell({u"key"_s, u"Escape"_s});
  EXPECT_TRUE(waitUntil([&] { return activeWindow() != "zqticker"; }));
  ask(u"focus"_s);
  EXPECT_TRUE(isActive("zqticker")) << "and takes it again";
}

TEST_F(StripControlScreen, TakesNoKeyboardUnlessAsked) {
  const OtherWindow other(server_->environment());
  ASSERT_TRUE(isActive("xmessage"));
  ask(u"hide"_s);
  EXPECT_TRUE(waitUntil([&] { return !isStripSeen(); }));
  ask(u"show"_s);
  EXPECT_TRUE(waitUntil([&] { return isStripSeen(); }));
  tell({u"mousemove"_s, u"300"_s, QString::number(Height - 12), u"click"_s, u"1"_s});
  ask(u"pause"_s);
  EXPECT_EQ(activeWindow(), "xmessage");
}
