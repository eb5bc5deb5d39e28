// The control bar of the program, used with a real pointer.
#include "tests/app/Program.h"
#include "tests/app/XServer.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
constexpr int Top = Height - 24; // of the strip
constexpr int Middle = Height - 12;
// The middles of the buttons, that of the menu's arrow, and places beside the bar.
constexpr int Back = 521;
constexpr int Pause = 551;
constexpr int Forward = 581;
constexpr int Menu = 610;
constexpr int Arrow = 628;
constexpr int Beside = 100;
constexpr int BarLeft = 502;
constexpr QRgb Ground = 0x123456;

class ControlBarScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled())
      GTEST_SKIP() << "Xvfb is not installed";
    if (!XServer::hasProgram(u"xdotool"_s))
      GTEST_SKIP() << "xdotool is not installed";
    server_.emplace(Width, Height);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
  }

  // Runs the program over a strip of running text, and awaits the text.
  void run(const QStringList& more = {}) {
    program_.emplace(QStringList{u"--text"_s, u"The quick brown fox jumps over the lazy dog"_s,
                                 u"--continuous"_s, u"--speed"_s, u"150"_s, u"--background"_s,
                                 u"#123456"_s, u"--pause-on-hover"_s, u"off"_s} +
                         more,
                     server_->environment());
    ASSERT_TRUE(waitUntil([&] { return colorAt(0, Top) == Ground; }));
    ASSERT_TRUE(waitUntil([&] { return text() != text(); })) << "it moves";
  }
  void tell(const QStringList& what) {
    QProcess tool;
    tool.setProcessEnvironment(server_->environment());
    tool.start(u"xdotool"_s, what);
    ASSERT_TRUE(tool.waitForFinished());
    ASSERT_EQ(tool.exitCode(), 0);
  }
  void moveTo(int x, int y = Middle) {
    tell({u"mousemove"_s, QString::number(x), QString::number(y)});
  }
  void pressAt(int x) {
    tell({u"mousemove"_s, QString::number(x), QString::number(Middle), u"mousedown"_s, u"1"_s});
  }
  void release() { tell({u"mouseup"_s, u"1"_s}); }
  // Clicks, and leaves the buttons.
  void click(int x) {
    tell({u"mousemove"_s, QString::number(x), QString::number(Middle), u"click"_s, u"1"_s});
    moveTo(Beside);
  }

  QRgb colorAt(int x, int y) { return server_->screenshot().pixel(x, y) & 0xffffff; }
  // What runs beside the bar, without the pointer.
  QImage text() { return server_->screenshot().copy(200, Top, BarLeft - 200, 24); }
  // Where no text comes.
  bool showsBar() { return colorAt(Back, Top) != Ground; }
  // The colour of a button's body, beside its glyph.
  QRgb body(int x) { return colorAt(x - 9, Middle); }
  // Above the bar, where its menu stands and no tool tip comes.
  QImage aboveBar() { return server_->screenshot().copy(BarLeft, Top - 85, Width - BarLeft, 40); }

  void showBar() {
    moveTo(Beside);
    ASSERT_TRUE(waitUntil([&] { return showsBar(); }));
  }
  bool becomesOther(int x, QRgb color) {
    return waitUntil([&] { return body(x) != color; });
  }
  bool becomes(int x, QRgb color) {
    return waitUntil([&] { return body(x) == color; });
  }
  // Whether the text stands still for longer than the last pixel of a step takes.
  bool stands() {
    const QImage before = text();
    QElapsedTimer watched;
    watched.start();
    for (int i = 0; watched.elapsed() < 200; ++i) {
      moveTo(Beside + i % 5);
      if (text() != before)
        return false;
    }
    return true;
  }

  std::optional<XServer> server_;
  std::optional<RunningProgram> program_;
};
} // namespace

TEST_F(ControlBarScreen, ComesAndGoesWithThePointer) {
  run();
  EXPECT_FALSE(showsBar());
  showBar();
  moveTo(Beside, 20);
  EXPECT_TRUE(waitUntil([&] { return !showsBar(); }));
  program_->interrupt(SIGTERM);
  EXPECT_EQ(program_->awaitStatus(), 0);
  EXPECT_EQ(program_->process().readAllStandardError(), "");
}

TEST_F(ControlBarScreen, LightsTheButtonUnderThePointer) {
  run();
  showBar();
  const QRgb plain = body(Back);
  ASSERT_EQ(body(Pause), plain);
  moveTo(Back);
  EXPECT_TRUE(becomesOther(Back, plain));
  const QRgb lit = body(Back);
  EXPECT_EQ(body(Pause), plain);
  moveTo(Pause);
  EXPECT_TRUE(becomes(Pause, lit));
  EXPECT_TRUE(becomes(Back, plain));
  pressAt(Pause);
  EXPECT_TRUE(waitUntil([&] { return body(Pause) != plain && body(Pause) != lit; }));
}

TEST_F(ControlBarScreen, PausesAndResumesWithAClick) {
  run();
  showBar();
  const QRgb plain = body(Pause);
  click(Pause);
  EXPECT_TRUE(waitUntil([&] { return body(Pause) != plain && stands(); }));
  EXPECT_NE(body(Pause), plain) << "it shows that it is on";
  click(Pause);
  EXPECT_TRUE(waitUntil([&] { return body(Pause) == plain && !stands(); }));
}

TEST_F(ControlBarScreen, DoesNothingForAReleaseOutside) {
  run();
  showBar();
  const QRgb plain = body(Pause);
  moveTo(Pause);
  ASSERT_TRUE(becomesOther(Pause, plain));
  const QRgb lit = body(Pause);
  pressAt(Pause);
  ASSERT_TRUE(waitUntil([&] { return body(Pause) != plain && body(Pause) != lit; }));
  moveTo(Beside, 20);
  EXPECT_TRUE(becomes(Pause, plain)) << "shown as long as it is pressed";
  EXPECT_TRUE(showsBar());
  release();
  EXPECT_TRUE(waitUntil([&] { return !showsBar(); }));
  showBar();
  EXPECT_TRUE(becomes(Pause, plain));
  EXPECT_TRUE(waitUntil([&] { return !stands(); }));
}

TEST_F(ControlBarScreen, StepsForwardAndBackWhileItIsPaused) {
  run({u"--text"_s, u"Pack my box with five dozen liquor jugs"_s});
  showBar();
  const QRgb plain = body(Pause);
  click(Pause);
  ASSERT_TRUE(waitUntil([&] { return body(Pause) != plain && stands(); }));
  const QImage before = text();
  click(Forward);
  ASSERT_TRUE(waitUntil([&] { return text() != before && stands(); }));
  const QImage first = text();
  click(Forward);
  ASSERT_TRUE(waitUntil([&] { return text() != first && stands(); }));
  const QImage second = text();
  click(Back);
  ASSERT_TRUE(waitUntil([&] { return text() != second && stands(); }));
  EXPECT_EQ(text(), first);
}

TEST_F(ControlBarScreen, PopsItsMenuUpForAHeldPress) {
  run();
  showBar();
  const QImage above = aboveBar();
  pressAt(Menu);
  ASSERT_TRUE(waitUntil([&] { return aboveBar() != above; }));
  release();
  // The release fires nothing; the menu stays, and the bar below it.
  moveTo(Menu, Top - 11);
  EXPECT_TRUE(showsBar());
  EXPECT_NE(aboveBar(), above);
  EXPECT_TRUE(program_->isRunning());
  tell({u"click"_s, u"1"_s});
  EXPECT_EQ(program_->awaitStatus(), 0) << "the last item is to quit";
}

TEST_F(ControlBarScreen, PopsItsMenuUpAtOnceForAPressOnItsArrow) {
  run();
  showBar();
  const QImage above = aboveBar();
  pressAt(Arrow);
  EXPECT_TRUE(waitUntil([&] { return aboveBar() != above; }));
  release();
  tell({u"key"_s, u"Escape"_s});
  EXPECT_TRUE(waitUntil([&] { return aboveBar() == above; }));
  EXPECT_TRUE(showsBar()) << "the pointer is on it";
  moveTo(Beside, 20);
  EXPECT_TRUE(waitUntil([&] { return !showsBar(); }));
}

TEST_F(ControlBarScreen, ShowsWithAClickOnTheStrip) {
  run();
  const QImage above = server_->screenshot().copy(Beside + 10, Top - 60, 20, 60);
  moveTo(Beside);
  tell({u"click"_s, u"1"_s});
  tell({u"click"_s, u"3"_s});
  ASSERT_TRUE(waitUntil(
      [&] { return server_->screenshot().copy(Beside + 10, Top - 60, 20, 60) != above; }));
  EXPECT_TRUE(showsBar());
}

TEST_F(ControlBarScreen, StaysAwayWhereItIsNotWanted) {
  run({u"--no-control-bar"_s});
  const QImage above = server_->screenshot().copy(Beside + 10, Top - 60, 20, 60);
  moveTo(Beside);
  tell({u"click"_s, u"1"_s});
  tell({u"click"_s, u"3"_s});
  // The click has been heard when the menu is there.
  ASSERT_TRUE(waitUntil(
      [&] { return server_->screenshot().copy(Beside + 10, Top - 60, 20, 60) != above; }));
  EXPECT_FALSE(showsBar());
}

namespace {
// The first line that a copy of the program writes to standard error that stands alone, with
// `look` beside it.
QByteArray complaintOf(const XServer& server, const std::optional<QByteArray>& look) {
  const QTemporaryDir folder;
  const QString copy = folder.filePath(u"zqticker"_s);
  EXPECT_TRUE(QFile::copy(QStringLiteral(ZQTICKER_PROGRAM), copy));
  if (look) {
    QFile file(folder.filePath(u"ControlBarButton.button"_s));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(*look);
  }
  QProcess process;
  process.setProcessEnvironment(server.environment());
  process.setReadChannel(QProcess::StandardError);
  process.start(copy, {u"--text"_s, u"Hello"_s, u"--loop"_s, u"1"_s, u"--speed"_s, u"20000"_s});
  EXPECT_TRUE(waitUntil([&] { return process.state() == QProcess::NotRunning; }));
  EXPECT_EQ(process.exitCode(), 0) << "the strip can be used all the same";
  return process.readAllStandardError();
}
} // namespace

TEST_F(ControlBarScreen, SaysWhyItIsNotThere) {
  EXPECT_EQ(complaintOf(*server_, std::nullopt),
            "zqticker: no control bar: its look, ControlBarButton.button, is missing\n");
  const QByteArray complaint = complaintOf(*server_, "no archive");
  EXPECT_TRUE(complaint.startsWith(
      "zqticker: no control bar: its look, ControlBarButton.button, cannot be read: "))
      << complaint.constData();
  EXPECT_EQ(complaint.count('\n'), 1);
}
