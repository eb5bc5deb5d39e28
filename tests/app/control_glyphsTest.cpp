#include "app/controls/control_glyphs.h"

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <gtest/gtest.h>

#include <cstdlib>

using namespace zq::app;

namespace {
constexpr int Side = 48;

// Black on white.
QImage drawn(ControlGlyph glyph, QPointF middle, double height) {
  QImage image(Side, Side, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(controlGlyph(glyph, middle, height), Qt::black);
  return image;
}

bool hasGray(const QImage& image) {
  for (int y = 0; y < Side; ++y)
    for (int x = 0; x < Side; ++x)
      if (image.pixel(x, y) != qRgb(0, 0, 0) && image.pixel(x, y) != qRgb(255, 255, 255))
        return true;
  return false;
}

// Rows are drawn with other roundings from above than from below.
bool isNearly(const QImage& a, const QImage& b) {
  for (int y = 0; y < Side; ++y)
    for (int x = 0; x < Side; ++x)
      if (std::abs(qRed(a.pixel(x, y)) - qRed(b.pixel(x, y))) > 24)
        return false;
  return true;
}

const auto Glyphs = {ControlGlyph::Back, ControlGlyph::Pause, ControlGlyph::Play,
                     ControlGlyph::Forward, ControlGlyph::Menu};
} // namespace

TEST(ControlGlyph, HasEdgesBetweenPixelsAtEverySizeAndPlace) {
  for (const ControlGlyph glyph : {ControlGlyph::Pause, ControlGlyph::Menu})
    for (double height = 4; height < 32; height += 0.7)
      for (const QPointF middle : {QPointF(24, 24), QPointF(23.5, 24.25), QPointF(24.8, 23.1)})
        EXPECT_FALSE(hasGray(drawn(glyph, middle, height))) << height;
}

TEST(ControlGlyph, StandsAroundItsMiddleInItsHeight) {
  for (const ControlGlyph glyph : Glyphs)
    for (const double height : {4.0, 9.6, 14.4, 19.2, 30.0}) {
      const QRectF bounds = controlGlyph(glyph, {24, 24}, height).boundingRect();
      EXPECT_NEAR(bounds.center().y(), 24, 0.51);
      // The weight of a triangle alone lies at its base.
      EXPECT_NEAR(bounds.center().x(), 24, glyph == ControlGlyph::Play ? 0.1 * height + 0.5 : 0.51);
      EXPECT_NEAR(bounds.height(), height, glyph == ControlGlyph::Menu ? 2 : 1) << height;
    }
}

TEST(ControlGlyph, IsNeverEmpty) {
  for (const ControlGlyph glyph : Glyphs)
    for (const double height : {0.0, -3.0, 1.0}) {
      const QRectF bounds = controlGlyph(glyph, {24, 24}, height).boundingRect();
      EXPECT_GE(bounds.height(), 4);
      EXPECT_GE(bounds.width(), 3);
    }
}

TEST(ControlGlyph, LeadsBackAndForwardInMirrorImage) {
  const QImage back = drawn(ControlGlyph::Back, {24, 24}, 10);
  EXPECT_TRUE(isNearly(back, drawn(ControlGlyph::Forward, {24, 24}, 10).mirrored(true, false)));
  EXPECT_FALSE(isNearly(back, drawn(ControlGlyph::Forward, {24, 24}, 10)));
  EXPECT_TRUE(isNearly(back, back.mirrored(false, true))) << "level";
  // The bar is where it leads.
  const QRectF bounds = controlGlyph(ControlGlyph::Back, {24, 24}, 10).boundingRect();
  EXPECT_EQ(back.pixel(int(bounds.left()), int(bounds.top())), qRgb(0, 0, 0));
  EXPECT_EQ(back.pixel(int(bounds.right()) - 8, int(bounds.top())), qRgb(255, 255, 255));
}

TEST(ControlGlyph, ShowsTwoBarsForAPauseAndThreeLinesForAMenu) {
  const QImage pause = drawn(ControlGlyph::Pause, {24, 24}, 10);
  int bars = 0;
  for (int x = 1; x < Side; ++x)
    bars += pause.pixel(x, 24) == qRgb(0, 0, 0) && pause.pixel(x - 1, 24) != qRgb(0, 0, 0);
  EXPECT_EQ(bars, 2);
  const QImage menu = drawn(ControlGlyph::Menu, {24, 24}, 10);
  int lines = 0;
  for (int y = 1; y < Side; ++y)
    lines += menu.pixel(24, y) == qRgb(0, 0, 0) && menu.pixel(24, y - 1) != qRgb(0, 0, 0);
  EXPECT_EQ(lines, 3);
}
