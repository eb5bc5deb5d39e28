// What signs look like: pixels against geometry, at several screen scales and in both directions.
#include "tests/signs/SignTestSupport.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQImageTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtGui/QPainter>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

constexpr double Scales[] = {1, 1.5, 2};
// How far the edge of a scaled picture may lie from its place, in device pixels.
constexpr double HalfPixel = 0.501;

// `sign` drawn at `point` on a clear canvas of `size` points.
QImage drawn(ZQTickerSign& sign, QPointF point, QSizeF size, double scale) {
  QImage canvas((size * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
  canvas.setDevicePixelRatio(scale);
  canvas.fill(Qt::transparent);
  QPainter painter(&canvas);
  GraphicsContext context(&painter, size);
  sign.drawAtPoint(point);
  return canvas;
}

// The smallest rectangle that holds every pixel of more than half opacity for which `matches`
// holds, in points, y up.
template <class Matches>
QRectF inkBounds(const QImage& canvas, Matches matches) {
  QRect pixels;
  for (int y = 0; y < canvas.height(); ++y)
    for (int x = 0; x < canvas.width(); ++x)
      if (const QRgb pixel = canvas.pixel(x, y); qAlpha(pixel) > 128 && matches(pixel))
        pixels |= QRect(x, y, 1, 1);
  const double scale = canvas.devicePixelRatio();
  return QRectF(pixels.x() / scale, (canvas.height() - pixels.y() - pixels.height()) / scale,
                pixels.width() / scale, pixels.height() / scale);
}

QRectF inkBounds(const QImage& canvas) {
  return inkBounds(canvas, [](QRgb) { return true; });
}

bool isRed(QRgb pixel) {
  return qRed(pixel) > 200 && qGreen(pixel) < 60 && qBlue(pixel) < 60;
}
bool isDark(QRgb pixel) {
  return qRed(pixel) < 100;
}

void expectNear(const QRectF& found, const QRectF& expected, double tolerance, double scale) {
  EXPECT_NEAR(found.left(), expected.left(), tolerance) << "scale " << scale;
  EXPECT_NEAR(found.top(), expected.top(), tolerance) << "scale " << scale;
  EXPECT_NEAR(found.right(), expected.right(), tolerance) << "scale " << scale;
  EXPECT_NEAR(found.bottom(), expected.bottom(), tolerance) << "scale " << scale;
}

Ref<AttributedString> capitals(double size) {
  return AttributedString::make(
      u"HHHH"_s, {{FontAttributeName, any(Font::fontWithName("DejaVu Sans", size))}});
}

} // namespace

TEST(SignPixels, AnImageSignStandsWithItsLowerLeftCornerAtThePoint) {
  const auto sign = ZQImageTickerSign::make(solidImage(30, 10));
  for (const double scale : Scales) {
    const QImage canvas = drawn(*sign, QPointF(10, 4), QSizeF(60, 20), scale);
    EXPECT_EQ(inkBounds(canvas, isRed), QRectF(10, 4, 30, 10)) << scale;
    EXPECT_EQ(inkBounds(canvas), QRectF(10, 4, 30, 10)) << scale;
  }
}

TEST(SignPixels, AnImageSignIsFullyOpaque) {
  const auto sign = ZQImageTickerSign::make(solidImage(30, 10));
  EXPECT_EQ(drawn(*sign, QPointF(0, 0), QSizeF(30, 10), 1).pixel(15, 5), 0xffff0000U);
}

TEST(SignPixels, AnImageSignKeepsItsTransparency) {
  const auto sign = ZQImageTickerSign::make(solidImage(30, 10, 0x40000000));
  EXPECT_EQ(drawn(*sign, QPointF(0, 0), QSizeF(30, 10), 1).pixel(15, 5), 0x40000000U);
}

TEST(SignPixels, AnEmptyImageSignDrawsNothing) {
  const auto sign = ZQImageTickerSign::make();
  EXPECT_TRUE(inkBounds(drawn(*sign, QPointF(0, 0), QSizeF(30, 10), 1)).isEmpty());
}

TEST(SignPixels, ATextSignsCapitalsStandOnTheBaselineOfItsLine) {
  const auto text = capitals(40);
  const auto sign = ZQTextTickerSign::make(text);
  const auto font = Font::fontWithName("DejaVu Sans", 40);
  const double baseline = font->leading() - font->descender();
  for (const double scale : Scales) {
    const QImage canvas = drawn(*sign, QPointF(7, 3), QSizeF(200, 60), scale);
    const QRectF ink = inkBounds(canvas);
    EXPECT_NEAR(ink.top(), 3 + baseline, 1 / scale) << scale;
    EXPECT_NEAR(ink.height(), font->capHeight(), 1.5 / scale) << scale;
    EXPECT_GT(ink.left(), 7) << scale;
    EXPECT_LT(ink.right(), 7 + text->size().width()) << scale;
  }
}

TEST(SignPixels, ATextSignIsSharpAtEveryScale) {
  const auto sign = ZQTextTickerSign::make(capitals(20));
  // Upright stems: few pixels are neither ink nor paper, at every scale.
  for (const double scale : Scales) {
    const QImage canvas = drawn(*sign, QPointF(0, 0), QSizeF(80, 24), scale);
    int ink = 0;
    int between = 0;
    for (int y = 0; y < canvas.height(); ++y)
      for (int x = 0; x < canvas.width(); ++x) {
        const int alpha = qAlpha(canvas.pixel(x, y));
        ink += alpha > 200;
        between += alpha > 20 && alpha <= 200;
      }
    EXPECT_GT(ink, 0);
    EXPECT_LT(between, 1.3 * ink / scale) << scale;
  }
}

TEST(SignPixels, AHorizontalComboSignShowsItsPictureFittedAndItsTextBehind) {
  TestDisplay display;
  display.theFont = Font::fontWithName("DejaVu Sans", 14);
  const auto sign = ZQComboTickerSign::make(u"HHHH"_s, solidImage(40, 40));
  sign->setDisplay(&display);
  for (const double scale : Scales) {
    const QImage canvas = drawn(*sign, QPointF(10, 0), QSizeF(160, 20), scale);
    expectNear(inkBounds(canvas, isRed), QRectF(10, 0, 20, 20), HalfPixel / scale, scale);
    const QRectF text = inkBounds(canvas, isDark);
    EXPECT_GT(text.left(), 10 + 25) << scale;
    EXPECT_LT(text.left(), 10 + 25 + 3) << scale;
    EXPECT_LT(text.right(), 10 + sign->size().width() - 10) << scale;
  }
}

TEST(SignPixels, AComboSignsTextMovesWithTheDisplaysTextOffset) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"HHHH"_s, nullptr);
  sign->setDisplay(&display);
  const QRectF before = inkBounds(drawn(*sign, QPointF(0, 0), QSizeF(100, 30), 2));
  display.theTextOffset = 5;
  sign->setNeedsLayout(true);
  const QRectF after = inkBounds(drawn(*sign, QPointF(0, 0), QSizeF(100, 30), 2));
  expectNear(after, before.translated(0, 5), 0.01, 2);
}

TEST(SignPixels, AVerticalComboSignShowsItsTextAboveThePicture) {
  TestDisplay display;
  display.theSize = QSizeF(100, 300);
  display.theDirection = 0;
  const auto sign = ZQComboTickerSign::make(u"HHHH"_s, solidImage(60, 30));
  sign->setDisplay(&display);
  for (const double scale : Scales) {
    const QImage canvas = drawn(*sign, QPointF(0, 5), QSizeF(100, 80), scale);
    expectNear(inkBounds(canvas, isRed), QRectF(20, 5, 60, 30), HalfPixel / scale, scale);
    EXPECT_GT(inkBounds(canvas, isDark).top(), 5 + 30 + 3) << scale;
  }
}

TEST(SignPixels, AComboSignsPlainTextHasTheSignsColour) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"HHHH"_s, nullptr);
  sign->setDisplay(&display);
  sign->setFont(Font::fontWithName("DejaVu Sans", 20));
  sign->setTextColor(Color::deviceRGB(1, 0, 0));
  const QImage canvas = drawn(*sign, QPointF(0, 0), QSizeF(100, 30), 1);
  EXPECT_FALSE(inkBounds(canvas, isRed).isEmpty());
  EXPECT_TRUE(inkBounds(canvas, isDark).isEmpty());
}

TEST(SignPixels, AComboSignsAttributedTextHasItsOwnColour) {
  TestDisplay display;
  const auto text = AttributedString::make(
      u"HHHH"_s, {{FontAttributeName, any(Font::fontWithName("DejaVu Sans", 20))},
                  {ForegroundColorAttributeName, any(Color::deviceRGB(1, 0, 0))}});
  const auto sign = ZQComboTickerSign::make(any(text), nullptr);
  sign->setDisplay(&display);
  sign->setTextColor(Color::deviceRGB(0, 0, 0));
  const QImage canvas = drawn(*sign, QPointF(0, 0), QSizeF(100, 30), 1);
  EXPECT_FALSE(inkBounds(canvas, isRed).isEmpty());
  EXPECT_TRUE(inkBounds(canvas, isDark).isEmpty());
}

TEST(SignPixels, AComboSignIsUprightInAFlippedView) {
  TestDisplay display;
  QImage halves(20, 20, QImage::Format_ARGB32_Premultiplied);
  halves.fill(0xffff0000);
  for (int y = 10; y < 20; ++y)
    for (int x = 0; x < 20; ++x)
      halves.setPixel(x, y, 0xff00ff00);
  const auto sign = ZQComboTickerSign::make(u"H"_s, Image::fromQImage(halves));
  sign->setDisplay(&display);
  QImage canvas(60, 20, QImage::Format_ARGB32_Premultiplied);
  canvas.fill(Qt::white);
  QPainter painter(&canvas);
  GraphicsContext context(&painter, QSizeF(60, 20), true);
  sign->drawAtPoint(QPointF(0, 0));
  EXPECT_EQ(canvas.pixel(5, 2), 0xffff0000U);
  EXPECT_EQ(canvas.pixel(5, 17), 0xff00ff00U);
}
