// The program's directions on a real X server.
#include "tests/app/Program.h"
#include "tests/app/XServer.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
constexpr QRgb Red = 0xff0000;
constexpr QRgb Blue = 0x0000ff;

class DirectionScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled())
      GTEST_SKIP() << "Xvfb is not installed";
    server_.emplace(Width, Height);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
  }

  QString picture(const QString& name, int width, int height, QRgb color) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    EXPECT_TRUE(image.save(folder_.filePath(name)));
    return folder_.filePath(name);
  }
  QProcessEnvironment environment() const {
    QProcessEnvironment environment = server_->environment();
    environment.insert(u"XDG_CONFIG_HOME"_s, folder_.path());
    return environment;
  }
  void set(const QString& name, const QString& value) const {
    EXPECT_EQ(runZqticker({u"settings"_s, u"set"_s, name, value}, {}, environment()).status, 0);
  }

  // The first pixel of a color in a row or column of the screen; -1 for none.
  int firstInRow(int y, QRgb color) const {
    const QImage screen = server_->screenshot();
    for (int x = 0; x < screen.width(); ++x)
      if ((screen.pixel(x, y) & 0xffffff) == color)
        return x;
    return -1;
  }
  int firstInColumn(int x, QRgb color) const {
    const QImage screen = server_->screenshot();
    for (int y = 0; y < screen.height(); ++y)
      if ((screen.pixel(x, y) & 0xffffff) == color)
        return y;
    return -1;
  }

  QTemporaryDir folder_;
  std::optional<XServer> server_;
};

// The columns of a row in which the color begins.
std::vector<int> starts(const QImage& screen, int y, QRgb color) {
  std::vector<int> columns;
  for (int x = 1; x < screen.width(); ++x)
    if ((screen.pixel(x, y) & 0xffffff) == color && (screen.pixel(x - 1, y) & 0xffffff) != color)
      columns.push_back(x);
  return columns;
}
} // namespace

TEST_F(DirectionScreen, ShowsAStripThatScrollsToTheRight) {
  RunningProgram program({u"--image"_s, picture(u"a.png"_s, 30, 24, Red), u"--direction"_s,
                          u"right"_s, u"--speed"_s, u"150"_s},
                         environment());
  const int y = Height - 12;
  int first = -1;
  ASSERT_TRUE(waitUntil([&] {
    first = firstInRow(y, Red);
    return first >= 0 && first < Width / 2;
  }));
  EXPECT_TRUE(waitUntil([&] { return firstInRow(y, Red) > first + 20; }));
}

TEST_F(DirectionScreen, ShowsAStripThatScrollsDown) {
  RunningProgram program({u"--image"_s, picture(u"a.png"_s, 100, 20, Red), u"--direction"_s,
                          u"down"_s, u"--width"_s, u"100"_s, u"--speed"_s, u"100"_s},
                         environment());
  const int x = Width - 50;
  int first = -1;
  ASSERT_TRUE(waitUntil([&] {
    first = firstInColumn(x, Red);
    return first >= 0 && first < Height / 2;
  }));
  EXPECT_TRUE(waitUntil([&] { return firstInColumn(x, Red) > first + 20; }));
}

TEST_F(DirectionScreen, TurnsARunningStripWithoutAJump) {
  set(u"speed"_s, u"400"_s);
  RunningProgram program({u"--image"_s, picture(u"a.png"_s, 30, 24, Red), u"--image"_s,
                          picture(u"b.png"_s, 50, 24, Blue), u"--image"_s,
                          picture(u"c.png"_s, 70, 24, Red), u"--continuous"_s},
                         environment());
  const int y = Height - 12;
  ASSERT_TRUE(waitUntil([&] {
    const int first = firstInRow(y, Red);
    return first >= 0 && first < Width / 4;
  }));
  // So slow that it may move by a pixel or two while the settings change. The background is chosen
  // last, and tells when all has been taken.
  const auto shownOn = [&](QRgb background) {
    QImage screen;
    EXPECT_TRUE(waitUntil([&] {
      screen = server_->screenshot();
      return !starts(screen, y, background).empty();
    }));
    return screen;
  };
  set(u"speed"_s, u"0.1"_s);
  set(u"background"_s, u"#654321"_s);
  const QImage before = shownOn(0x654321);
  ASSERT_FALSE(starts(before, y, Red).empty());
  set(u"direction"_s, u"right"_s);
  set(u"background"_s, u"#123456"_s);
  const QImage after = shownOn(0x123456);
  for (const QRgb color : {Red, Blue}) {
    const std::vector<int> there = starts(before, y, color);
    const std::vector<int> now = starts(after, y, color);
    ASSERT_EQ(now.size(), there.size());
    for (std::size_t i = 0; i < now.size(); ++i)
      EXPECT_NEAR(now[i], there[i], 2);
  }
  const int last = starts(after, y, Blue).front();
  set(u"speed"_s, u"40"_s);
  EXPECT_TRUE(waitUntil([&] {
    const std::vector<int> now = starts(server_->screenshot(), y, Blue);
    return !now.empty() && now.front() > last + 5 && now.front() < last + 100;
  }));
}
