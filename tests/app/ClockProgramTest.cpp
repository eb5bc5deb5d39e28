// The program with a clock: as pictures, and on a real X server.
#include "tests/app/Program.h"
#include "tests/app/XServer.h"

#include <QtCore/QDate>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <set>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
constexpr int StripHeight = 24;
constexpr QRgb White = 0xffffff;

Outcome render(const QStringList& arguments, const QString& output) {
  return runZqticker(QStringList{u"render"_s, u"--output"_s, output} + arguments);
}

// What is not white, and where it begins and ends.
struct Ink {
  QImage picture;
  int first = Width;
  int last = -1;
};

Ink inkOf(const QImage& strip) {
  Ink ink;
  for (int x = 0; x < strip.width(); ++x)
    for (int y = 0; y < strip.height(); ++y)
      if ((strip.pixel(x, y) & White) != White) {
        ink.first = std::min(ink.first, x);
        ink.last = std::max(ink.last, x);
      }
  if (ink.last >= 0)
    ink.picture = strip.copy(ink.first, 0, ink.last - ink.first + 1, strip.height());
  return ink;
}
} // namespace

TEST(ClockProgram, RendersTheTimeAsAText) {
  const QTemporaryDir folder;
  const QString clock = folder.filePath(u"clock.png"_s);
  const QString text = folder.filePath(u"text.png"_s);
  // The year may end in between: then the pictures are made again.
  QString year;
  do {
    year = QDate::currentDate().toString(u"yyyy"_s);
    ASSERT_EQ(render({u"--clock"_s, u"in %Y"_s}, clock).status, 0);
    ASSERT_EQ(render({u"--text"_s, QString(u"in "_s + year)}, text).status, 0);
  } while (year != QDate::currentDate().toString(u"yyyy"_s));
  EXPECT_EQ(QImage(clock), QImage(text));
  EXPECT_FALSE(inkOf(QImage(clock)).picture.isNull());
}

TEST(ClockProgram, ShowsTheTimeWithoutAPattern) {
  const QTemporaryDir folder;
  const QString output = folder.filePath(u"clock.png"_s);
  ASSERT_EQ(render({u"--clock"_s, u"--size"_s, u"300x24"_s}, output).status, 0);
  EXPECT_FALSE(inkOf(QImage(output)).picture.isNull());
}

TEST(ClockProgram, RefusesPatternsThatShowNoTime) {
  for (const QString& pattern : {u""_s, u"%q"_s, u"o'clock"_s}) {
    const Outcome outcome = runZqticker({u"run"_s, u"--clock="_s + pattern});
    EXPECT_EQ(outcome.status, 2) << pattern.toStdString();
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errors.startsWith("zqticker: --clock "));
    EXPECT_EQ(outcome.errors.count('\n'), 1);
  }
}

TEST(ClockScreen, ShowsTheTimeAsItGoesOnWithoutAJump) {
  if (!XServer::isInstalled())
    GTEST_SKIP() << "Xvfb is not installed";
  const XServer screen(Width, Height);
  ASSERT_FALSE(screen.display().isEmpty()) << "Xvfb does not start";
  RunningProgram program({u"--speed"_s, u"100"_s, u"--clock"_s, u"%S"_s}, screen.environment());
  // Looks while the whole text is in sight, on its first way over the strip: it shows at least
  // three times of day, and moves on to the left.
  std::set<QByteArray> seen;
  int place = Width;
  EXPECT_TRUE(waitUntil([&] {
    const Ink ink = inkOf(screen.screenshot().copy(0, Height - StripHeight, Width, StripHeight));
    // The edges of digits differ by some pixels.
    constexpr int DigitPixels = 8;
    if (ink.last >= 0 && ink.first > 0 && ink.last < Width - 1 &&
        ink.first <= place + DigitPixels) {
      place = ink.first;
      seen.insert(QByteArray(reinterpret_cast<const char*>(ink.picture.constBits()),
                             ink.picture.sizeInBytes()));
    }
    return seen.size() >= 3;
  }));
  program.interrupt(SIGINT);
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(), "");
}
