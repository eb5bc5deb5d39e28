// The program on a real X server with a window manager.
#include "tests/app/Program.h"
#include "tests/app/XServer.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
// Room for Qt, fonts, a thousand lines and what sanitizers add to that.
constexpr qint64 MostKilobytes = 400'000;

// The address sanitizer keeps a quarter of a gigabyte that the program has freed, unless it is told
// otherwise.
QProcessEnvironment withoutQuarantine(QProcessEnvironment environment) {
  const QString name = u"ASAN_OPTIONS"_s;
  environment.insert(name, environment.value(name) + u":quarantine_size_mb=8"_s);
  return environment;
}

class Screen : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled())
      GTEST_SKIP() << "Xvfb is not installed";
    server_.emplace(Width, Height);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
  }

  QString picture(const QString& name, int width, int height, QColor color) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    EXPECT_TRUE(image.save(folder_.filePath(name)));
    return folder_.filePath(name);
  }

  // Columns `from` to `to` of row `y` that have the color, as the first one; -1 for none.
  int firstColumn(int y, QRgb color) {
    const QImage screen = server_->screenshot();
    for (int x = 0; x < screen.width(); ++x)
      if ((screen.pixel(x, y) & 0xffffff) == (color & 0xffffff))
        return x;
    return -1;
  }
  int firstRow(int x, QRgb color) {
    const QImage screen = server_->screenshot();
    for (int y = 0; y < screen.height(); ++y)
      if ((screen.pixel(x, y) & 0xffffff) == (color & 0xffffff))
        return y;
    return -1;
  }

  QTemporaryDir folder_;
  std::optional<XServer> server_;
};
} // namespace

TEST_F(Screen, ShowsAMovingStripAtTheLowerEdge) {
  RunningProgram program({u"--image"_s, picture(u"a.png"_s, 30, 24, Qt::red), u"--text"_s,
                          u"Hello"_s, u"--speed"_s, u"200"_s, u"--background"_s, u"#123456"_s},
                         server_->environment());
  int first = -1;
  ASSERT_TRUE(waitUntil([&] { return (first = firstColumn(Height - 12, qRgb(255, 0, 0))) >= 0; }));
  const QImage before = server_->screenshot();
  EXPECT_EQ(before.pixel(0, Height - 24) & 0xffffff, 0x123456u) << "as wide as the screen";
  EXPECT_EQ(before.pixel(0, Height - 1) & 0xffffff, 0x123456u);
  EXPECT_NE(before.pixel(0, Height - 25) & 0xffffff, 0x123456u) << "24 points high";
  EXPECT_TRUE(waitUntil([&] {
    const int now = firstColumn(Height - 12, qRgb(255, 0, 0));
    return now >= 0 && now < first - 20;
  })) << "moves to the left";
  EXPECT_NE(server_->screenshot(), before);
  program.interrupt(SIGINT);
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(), "");
}

TEST_F(Screen, ShowsAStripAtTheUpperEdge) {
  RunningProgram program({u"--text"_s, u"Hello"_s, u"--position"_s, u"top"_s, u"--height"_s,
                          u"40"_s, u"--background"_s, u"#123456"_s},
                         server_->environment());
  EXPECT_TRUE(waitUntil([&] { return firstRow(5, 0x123456) == 0; }));
  const QImage screen = server_->screenshot();
  EXPECT_EQ(screen.pixel(5, 39) & 0xffffff, 0x123456u);
  EXPECT_NE(screen.pixel(5, 40) & 0xffffff, 0x123456u);
  program.interrupt(SIGTERM);
  EXPECT_EQ(program.awaitStatus(), 0);
}

TEST_F(Screen, ShowsAVerticalStripThatScrollsUp) {
  RunningProgram program({u"--image"_s, picture(u"a.png"_s, 100, 20, Qt::red), u"--direction"_s,
                          u"vertical"_s, u"--width"_s, u"100"_s, u"--speed"_s, u"100"_s},
                         server_->environment());
  int first = -1;
  ASSERT_TRUE(waitUntil([&] { return (first = firstRow(Width - 50, qRgb(255, 0, 0))) >= 0; }));
  EXPECT_TRUE(waitUntil([&] {
    const int now = firstRow(Width - 50, qRgb(255, 0, 0));
    return now >= 0 && now < first - 20;
  }));
}

TEST_F(Screen, IsSharpAtEveryScale) {
  // Columns of one pixel, red and blue by turns: nothing but these colors may show.
  for (const double scale : {1.0, 1.5, 2.0}) {
    const int side = static_cast<int>(24 * scale);
    QImage stripes(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y)
      for (int x = 0; x < side; ++x)
        stripes.setPixel(x, y, x % 2 ? qRgb(255, 0, 0) : qRgb(0, 0, 255));
    const QString file = folder_.filePath(u"stripes.png"_s);
    ASSERT_TRUE(stripes.save(file));
    QProcessEnvironment environment = server_->environment();
    environment.insert(u"QT_SCALE_FACTOR"_s, QString::number(scale));
    // One pixel of the picture a device pixel: as high as the strip.
    RunningProgram program({u"--image"_s, file, u"--speed"_s, u"100"_s, u"--height"_s, u"24"_s},
                           environment);
    int first = -1;
    const int y = Height - static_cast<int>(10 * scale);
    QImage screen;
    ASSERT_TRUE(waitUntil([&] {
      screen = server_->screenshot();
      for (first = 0; first < Width / 2; ++first)
        if ((screen.pixel(first, y) & 0xffffff) == 0x0000ff)
          break;
      // The whole picture, with paper on both sides; the strip of the scale before, whose program
      // has just ended, may still stand on the screen.
      return first < Width / 2 && first > 0 &&
             (screen.pixel(first - 1, y) & 0xffffff) == 0xffffff &&
             (screen.pixel(first + side - 1, y) & 0xffffff) != 0xffffff &&
             (screen.pixel(first + side, y) & 0xffffff) == 0xffffff;
    })) << scale;
    for (int x = 0; x < side; ++x)
      ASSERT_EQ(screen.pixel(first + x, y) & 0xffffff, stripes.pixel(x, 0) & 0xffffff)
          << x << " at " << scale;
  }
}

TEST_F(Screen, EndsWhenEverythingHasBeenShown) {
  RunningProgram program({u"--text"_s, u"Hello"_s, u"--loop"_s, u"2"_s, u"--speed"_s, u"20000"_s},
                         server_->environment());
  EXPECT_EQ(program.awaitStatus(), 0);
}

TEST_F(Screen, EndsAfterTheLastLineOfStandardInput) {
  RunningProgram program({u"--stdin"_s, u"--speed"_s, u"20000"_s}, server_->environment());
  program.process().write("one\ntwo\n");
  EXPECT_TRUE(waitUntil([&] { return program.process().bytesToWrite() == 0; }));
  EXPECT_TRUE(program.isRunning()) << "more may come";
  program.process().write("three");
  program.process().closeWriteChannel();
  EXPECT_EQ(program.awaitStatus(), 0);
}

TEST_F(Screen, ShowsALineWhenItArrives) {
  RunningProgram program({u"--stdin"_s, u"--speed"_s, u"200"_s, u"--color"_s, u"#ff0000"_s},
                         server_->environment());
  ASSERT_TRUE(waitUntil([&] { return firstColumn(Height - 12, qRgb(255, 255, 255)) == 0; }));
  EXPECT_EQ(firstColumn(Height - 12, qRgb(255, 0, 0)), -1);
  program.process().write("\xe2\x96\x88\xe2\x96\x88\n");
  EXPECT_TRUE(waitUntil([&] { return firstColumn(Height - 12, qRgb(255, 0, 0)) >= 0; }));
}

TEST_F(Screen, KeepsMovingInBoundedMemoryUnderAFloodOfLines) {
  RunningProgram program({u"--stdin"_s, u"--speed"_s, u"300"_s, u"--image"_s,
                          picture(u"a.png"_s, 30, 24, Qt::red), u"--continuous"_s},
                         withoutQuarantine(server_->environment()));
  QByteArray lines;
  for (int i = 1; i <= 100'000; ++i)
    lines += QByteArray::number(i) + '\n';
  program.process().write(lines);
  program.process().closeWriteChannel();
  ASSERT_TRUE(waitUntil([&] { return program.process().bytesToWrite() == 0; }));
  const QImage before = server_->screenshot();
  ASSERT_TRUE(waitUntil([&] { return server_->screenshot() != before; }));
  const QImage after = server_->screenshot();
  ASSERT_TRUE(waitUntil([&] { return server_->screenshot() != after; })) << "keeps moving";
  EXPECT_TRUE(program.isRunning());
  EXPECT_GT(program.kilobytes("VmHWM"), 0);
  EXPECT_LT(program.kilobytes("VmHWM"), MostKilobytes);
}

TEST_F(Screen, BoundsTheMemoryOfALineWithoutAnEnd) {
  RunningProgram program({u"--stdin"_s}, withoutQuarantine(server_->environment()));
  const QByteArray part(1'000'000, 'x');
  for (int i = 0; i < 30; ++i) {
    program.process().write(part);
    ASSERT_TRUE(waitUntil([&] { return program.process().bytesToWrite() == 0; }));
  }
  EXPECT_TRUE(program.isRunning());
  EXPECT_LT(program.kilobytes("VmHWM"), MostKilobytes);
}

TEST_F(Screen, ShowsNothingWhereAnInputIsWrong) {
  const Outcome outcome = runZqticker({u"--text"_s, u"Hello"_s, u"--image"_s, u"/nosuch.png"_s}, {},
                                      server_->environment());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "zqticker: --image /nosuch.png: cannot read: No such file or directory\n");
}

TEST_F(Screen, QuitsFromItsMenu) {
  if (!XServer::hasProgram(u"xdotool"_s))
    GTEST_SKIP() << "xdotool is not installed";
  RunningProgram program({u"--text"_s, u"Hello"_s, u"--background"_s, u"#123456"_s},
                         server_->environment());
  ASSERT_TRUE(waitUntil([&] { return firstColumn(Height - 12, 0x123456) == 0; }));
  const auto click = [&](int x, int y, const QString& button) {
    QProcess tool;
    tool.setProcessEnvironment(server_->environment());
    tool.start(u"xdotool"_s,
               {u"mousemove"_s, QString::number(x), QString::number(y), u"click"_s, button});
    EXPECT_TRUE(tool.waitForFinished());
  };
  // The menu stands over the strip, which keeps its room to itself; its last item is to quit.
  const QRect Beside(130, Height - 150, 60, 150 - 24);
  const QImage before = server_->screenshot().copy(Beside);
  click(100, Height - 12, u"3"_s);
  ASSERT_TRUE(waitUntil([&] { return server_->screenshot().copy(Beside) != before; }));
  click(Beside.left(), Height - 24 - 11, u"1"_s);
  EXPECT_EQ(program.awaitStatus(), 0);
}
