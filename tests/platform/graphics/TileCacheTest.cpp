#include "zqticker/platform/graphics/TileCache_p.h"

#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/pixels_p.h"

#include <gtest/gtest.h>

using namespace zq::platform;
using zq::testing::Canvas;

namespace {

// A representation that counts how often it is rendered.
class Counting : public ImageRepresentation {
 public:
  explicit Counting(QSizeF size) : ImageRepresentation(size) {}
  QSize pixelSize() const override { return {0, 0}; }
  QImage bitmap() const override { return {}; }
  RasterGrid grid(QSizeF size, double scaleX, double scaleY) const override {
    return {QSize(int(size.width() * scaleX), int(size.height() * scaleY)), scaleX, scaleY};
  }
  QImage render(const RasterGrid&, const QRect& part) const override {
    rendered.push_back(part);
    QImage image(part.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::red);
    return image;
  }
  mutable std::vector<QRect> rendered;
};

} // namespace

TEST(TileCache, RendersEachTileOnce) {
  const auto counting = std::make_shared<Counting>(QSizeF(3000, 20));
  const Ref<Image> image = Image::make(QSizeF(3000, 20), {counting});
  Canvas canvas({100, 20});
  for (int frame = 0; frame < 10; ++frame)
    image->dissolveToPoint(QPointF(-1000 + frame, 0), 1);
  // The view lies in two of the three tiles.
  ASSERT_EQ(counting->rendered.size(), 2U);
  EXPECT_EQ(counting->rendered[0], QRect(0, 0, TileCache::TileWidth, 20));
  EXPECT_EQ(counting->rendered[1], QRect(TileCache::TileWidth, 0, TileCache::TileWidth, 20));
}

TEST(TileCache, KeepsTilesOfEveryScaleApart) {
  const auto counting = std::make_shared<Counting>(QSizeF(50, 20));
  const Ref<Image> image = Image::make(QSizeF(50, 20), {counting});
  for (const double scale : {1.0, 2.0, 1.0, 2.0}) {
    const Canvas canvas({50, 20}, scale);
    image->dissolveToPoint(QPointF(), 1);
  }
  EXPECT_EQ(counting->rendered.size(), 2U);
}

TEST(TileCache, StaysWithinItsBounds) {
  TileCache& cache = TileCache::shared();
  const auto counting = std::make_shared<Counting>(QSizeF(200000, 256));
  const RasterGrid grid{QSize(200000, 256), 1, 1};
  for (int x = 0; x < 150; ++x)
    EXPECT_EQ(cache.tile(*counting, grid, x, 0).size(), QSize(1024, 256));
  EXPECT_LE(cache.bytes(), TileCache::MaximumBytes);
  EXPECT_GT(cache.bytes(), TileCache::MaximumBytes / 2);
}

TEST(TileCache, ForgetsARepresentationThatHasGone) {
  TileCache& cache = TileCache::shared();
  auto counting = std::make_shared<Counting>(QSizeF(100, 100));
  cache.tile(*counting, {QSize(100, 100), 1, 1}, 0, 0);
  const qsizetype before = cache.bytes();
  counting.reset();
  EXPECT_EQ(cache.bytes(), before - 100 * 100 * 4);
}

TEST(pixels, PartsOfAScaledPictureFitTogether) {
  QImage source(37, 23, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < source.height(); ++y)
    for (int x = 0; x < source.width(); ++x)
      source.setPixel(x, y, qPremultiply(qRgba(x * 7, y * 11, x * y % 256, (x * 31 + y) % 256)));
  for (const QSize size :
       {QSize(74, 46), QSize(11, 9), QSize(100, 5), QSize(37, 23), QSize(1, 1)}) {
    const QImage whole = resampled(source, size, QRect(QPoint(), size));
    QImage joined(size, QImage::Format_ARGB32_Premultiplied);
    joined.fill(Qt::transparent);
    QPainter painter(&joined);
    for (int y = 0; y < size.height(); y += 4)
      for (int x = 0; x < size.width(); x += 7) {
        const QRect part = QRect(x, y, 7, 4) & QRect(QPoint(), size);
        painter.drawImage(part.topLeft(), resampled(source, size, part));
      }
    painter.end();
    EXPECT_EQ(joined, whole);
  }
}

TEST(pixels, ScalingKeepsAnEvenColourAndItsAlpha) {
  for (const QColor& color : {QColor(200, 100, 50), QColor(200, 100, 50, 128)}) {
    QImage source(10, 10, QImage::Format_ARGB32_Premultiplied);
    source.fill(color);
    const QRgb expected = source.pixel(0, 0);
    for (const QSize size : {QSize(3, 3), QSize(25, 17)}) {
      const QImage scaled = resampled(source, size, QRect(QPoint(), size));
      for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
          EXPECT_EQ(scaled.pixel(x, y), expected);
    }
  }
}

TEST(pixels, AreOpaqueInTheirFormatWhereTheyAreOpaque) {
  QImage image(3, 3, QImage::Format_ARGB32);
  image.fill(Qt::red);
  EXPECT_EQ(inWorkingFormat(image).format(), QImage::Format_RGB32);
  image.setPixelColor(1, 1, QColor(255, 0, 0, 254));
  EXPECT_EQ(inWorkingFormat(image).format(), QImage::Format_ARGB32_Premultiplied);
}

TEST(pixels, LengthsAreWholeAndBounded) {
  EXPECT_EQ(wholePixels(7.9), 7);
  EXPECT_EQ(wholePixels(-3), 0);
  EXPECT_EQ(wholePixels(std::nan("")), 0);
  EXPECT_EQ(wholePixels(1e300), 1 << 30);
}
