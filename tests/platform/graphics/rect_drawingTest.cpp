#include "zqticker/platform/graphics/rect_drawing.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"

#include <gtest/gtest.h>

#include <QtGui/QImage>
#include <QtGui/QPainter>

using namespace zq::platform;

namespace {

// The border of `rect` on 20 × 20 points, the upper left corner as the origin.
QImage framed(const QRectF& rect, double width, double alpha = 1) {
  QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  const GraphicsContext context(&painter, {20, 20}, true);
  Color::deviceRGB(1, 0, 0, alpha)->set();
  frameRectWithWidth(rect, width);
  return image;
}

// Whether exactly the points of `outer` that are not in `inner` have the colour.
void expectBorder(const QImage& image, const QRect& outer, const QRect& inner, int alpha = 255) {
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      ASSERT_EQ(qAlpha(image.pixel(x, y)),
                outer.contains(x, y) && !inner.contains(x, y) ? alpha : 0)
          << x << ", " << y;
}

} // namespace

TEST(FrameRect, DrawsInsideTheRectangle) {
  expectBorder(framed({2, 3, 14, 12}, 3), {2, 3, 14, 12}, {5, 6, 8, 6});
}

TEST(FrameRect, DrawsNoPointTwice) {
  expectBorder(framed({2, 3, 14, 12}, 3, 0.2), {2, 3, 14, 12}, {5, 6, 8, 6}, 51);
}

TEST(FrameRect, FillsWhatIsNarrowerThanBothSides) {
  expectBorder(framed({2, 3, 14, 6}, 3), {2, 3, 14, 6}, {});
  expectBorder(framed({2, 3, 5, 12}, 3), {2, 3, 5, 12}, {});
}

TEST(FrameRect, DrawsNothingForNothing) {
  for (const QRectF& rect : {QRectF(), QRectF(5, 5, 0, 10), QRectF(5, 5, 10, -2)})
    expectBorder(framed(rect, 3), {}, {});
  expectBorder(framed({2, 3, 14, 12}, 0), {}, {});
  expectBorder(framed({2, 3, 14, 12}, -1), {}, {});
  // Nowhere to draw.
  frameRectWithWidth({2, 3, 14, 12}, 3);
}
