// Signs that fade in and out.
#include "tests/app/DisplayFrames.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zq::app;
using namespace zq::app::testing;

namespace {
SignOrigin fading() {
  SignOrigin origin;
  origin.fades = true;
  return origin;
}

// How dark the strip is at a point, from 0 for white to 1 for black.
double inkAt(const QImage& image, int x, int y) {
  return 1 - qRed(image.pixel(x, y)) / 255.0;
}

// The opacity of a sign of this length on a strip of this extent after so many points.
double opacityAfter(double points, int length, int extent, double scale = 1) {
  TickerDisplay display;
  setUp(display, QSizeF(extent, 24), true, scale);
  display.addSign(picture(length, 24, Qt::black), 0, fading());
  display.advanceTo(points / Speed);
  EXPECT_FALSE(display.frame().pieces.empty()) << points;
  for (const StripFrame::Piece& piece : display.frame().pieces)
    EXPECT_EQ(piece.opacity, display.frame().pieces.front().opacity) << "the whole sign is as one";
  return display.frame().pieces.empty() ? -1 : display.frame().pieces.front().opacity;
}
} // namespace

TEST(TickerDisplayFade, FadesInOverAFifthOfTheStrip) {
  EXPECT_DOUBLE_EQ(opacityAfter(20, 20, 400), 0.25);
  EXPECT_DOUBLE_EQ(opacityAfter(40, 20, 400), 0.5);
  EXPECT_DOUBLE_EQ(opacityAfter(80, 20, 400), 1);
  EXPECT_DOUBLE_EQ(opacityAfter(200, 20, 400), 1);
}

TEST(TickerDisplayFade, FadesOutBeforeItsTrailingEdgeLeaves) {
  EXPECT_DOUBLE_EQ(opacityAfter(340, 20, 400), 1);
  EXPECT_DOUBLE_EQ(opacityAfter(380, 20, 400), 0.5);
  EXPECT_DOUBLE_EQ(opacityAfter(400, 20, 400), 0.25) << "half of the rest has left";
}

TEST(TickerDisplayFade, FadesOverTwoHundredPointsAtMost) {
  EXPECT_DOUBLE_EQ(opacityAfter(50, 20, 3000), 0.25);
  EXPECT_DOUBLE_EQ(opacityAfter(200, 20, 3000), 1);
}

TEST(TickerDisplayFade, TakesPointsAtEveryScale) {
  EXPECT_DOUBLE_EQ(opacityAfter(40, 20, 400, 2), 0.5);
  EXPECT_DOUBLE_EQ(opacityAfter(40, 20, 400, 1.25), 0.5);
}

TEST(TickerDisplayFade, FadesALongSignAsOne) {
  EXPECT_DOUBLE_EQ(opacityAfter(40, 2000, 400), 0.5);
  EXPECT_DOUBLE_EQ(opacityAfter(1200, 2000, 400), 1);
  EXPECT_DOUBLE_EQ(opacityAfter(2360, 2000, 400), 0.5);
}

TEST(TickerDisplayFade, FadesInAVerticalStrip) {
  TickerDisplay display;
  setUp(display, QSizeF(24, 400), false);
  display.addSign(picture(24, 20, Qt::black), 0, fading());
  display.advanceTo(40 / Speed);
  ASSERT_EQ(display.frame().pieces.size(), 1u);
  EXPECT_DOUBLE_EQ(display.frame().pieces.front().opacity, 0.5);
}

TEST(TickerDisplayFade, DrawsEachSignWithItsOwnOpacity) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  display.addSign(picture(20, 24, Qt::black), 0, fading());
  display.addSign(picture(20, 24, Qt::black), 0);
  const QImage image = shown(display, 60 / Speed);
  EXPECT_NEAR(inkAt(image, 350, 12), 0.75, 0.01);
  EXPECT_EQ(inkAt(image, 380, 12), 1);
}

TEST(TickerDisplayFade, StandsStillWithTheStrip) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  display.addSign(picture(20, 24, Qt::black), 0, fading());
  const QImage before = shown(display, 40 / Speed);
  display.setPaused(true, 40 / Speed);
  EXPECT_EQ(shown(display, 1000), before);
}

TEST(TickerDisplayFade, DrawsNoPixelAnew) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  display.addSign(picture(20, 24, Qt::black), 0, fading());
  display.advanceTo(10 / Speed);
  const std::uint64_t drawn = display.tiles().drawn();
  for (int points = 11; points < 420; ++points)
    display.advanceTo(points / Speed);
  EXPECT_EQ(display.tiles().drawn(), drawn);
}

TEST(TickerDisplayFade, ShowsSignsOnAStripWithoutExtent) {
  TickerDisplay display;
  setUp(display, QSizeF(0, 24));
  display.addSign(picture(20, 24, Qt::black), 0, fading());
  display.advanceTo(10 / Speed);
  for (const StripFrame::Piece& piece : display.frame().pieces)
    EXPECT_FALSE(std::isnan(piece.opacity));
}
