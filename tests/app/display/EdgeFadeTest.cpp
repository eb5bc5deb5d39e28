// The ends of a strip that fade.
#include "tests/app/DisplayFrames.h"

#include <gtest/gtest.h>

using namespace zq::app;
using namespace zq::app::testing;

namespace {
constexpr int Fade = 40;

// A strip of 400 points that is all black, with ends that fade over `fade` points.
QImage blackStrip(double fade, bool horizontal, QColor background, double scale = 1) {
  TickerDisplay display;
  setUp(display, horizontal ? QSizeF(400, 24) : QSizeF(24, 400), horizontal, scale);
  display.setEdgeFade(fade);
  display.addSign(horizontal ? picture(2000, 24, Qt::black) : picture(24, 2000, Qt::black), 0);
  display.advanceTo(10);
  QImage image(display.frame().size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  paintFrame(painter, display.frame(), background);
  painter.end();
  return image;
}

QRgb along(const QImage& image, int i, bool horizontal) {
  return image.pixel(horizontal ? i : 12, horizontal ? 12 : i);
}
} // namespace

TEST(EdgeFade, FadesBothEndsTowardsTheBackground) {
  for (const bool horizontal : {true, false}) {
    const QImage image = blackStrip(Fade, horizontal, Qt::white);
    const auto light = [&](int i) { return qRed(along(image, i, horizontal)); };
    EXPECT_GT(light(0), 250);
    EXPECT_NEAR(light(Fade / 2), 127, 8);
    for (int i = 1; i < Fade; ++i)
      EXPECT_LE(light(i), light(i - 1)) << i;
    for (int i = 0; i < Fade; ++i)
      EXPECT_EQ(light(i), light(399 - i)) << "both are alike";
    for (int i = Fade; i < 400 - Fade; ++i)
      ASSERT_EQ(light(i), 0) << i;
  }
}

TEST(EdgeFade, LetsThroughWhatIsBelowATranslucentBackground) {
  const QColor background(0, 0, 255, 128);
  for (const bool horizontal : {true, false}) {
    const QImage image = blackStrip(Fade, horizontal, background);
    EXPECT_NEAR(qAlpha(along(image, 0, horizontal)), 128, 2);
    EXPECT_NEAR(qBlue(along(image, 0, horizontal)), 128, 2) << "premultiplied";
    EXPECT_EQ(along(image, 200, horizontal), qRgb(0, 0, 0));
    for (int i = 1; i < Fade; ++i)
      EXPECT_GE(qAlpha(along(image, i, horizontal)), qAlpha(along(image, i - 1, horizontal)));
  }
}

TEST(EdgeFade, IsMeasuredInPoints) {
  const QImage image = blackStrip(Fade, true, Qt::white, 2);
  EXPECT_GT(qRed(image.pixel(2 * Fade - 12, 24)), 0);
  EXPECT_EQ(qRed(image.pixel(2 * Fade, 24)), 0);
}

TEST(EdgeFade, EndsInTheMiddle) {
  const QImage image = blackStrip(5000, true, Qt::white);
  EXPECT_GT(qRed(image.pixel(0, 12)), 250);
  EXPECT_LT(qRed(image.pixel(199, 12)), 5);
  EXPECT_LT(qRed(image.pixel(200, 12)), 5);
  EXPECT_GT(qRed(image.pixel(399, 12)), 250);
}

TEST(EdgeFade, IsNothingUnlessItIsAskedFor) {
  for (const double points : {0.0, -5.0, std::numeric_limits<double>::quiet_NaN()}) {
    const QImage image = blackStrip(points, true, Qt::white);
    EXPECT_EQ(image.pixel(0, 12), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(399, 12), qRgb(0, 0, 0));
  }
}

TEST(EdgeFade, LeavesPagesAsTheyAre) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24), true, 1);
  display.setEdgeFade(Fade);
  display.addSign(picture(2000, 24, Qt::black), 0);
  display.advanceTo(10);
  ASSERT_EQ(display.frame().fade, Fade);
  display.setPaged(true, 10);
  EXPECT_TRUE(display.advanceTo(10));
  EXPECT_EQ(display.frame().fade, 0);
  display.setEdgeFade(2 * Fade);
  display.setSize(QSizeF(300, 24), 10);
  display.advanceTo(10);
  EXPECT_EQ(display.frame().fade, 0) << "whatever changes";
  display.setPaged(false, 10);
  EXPECT_TRUE(display.advanceTo(10));
  EXPECT_EQ(display.frame().fade, 2 * Fade);
}
