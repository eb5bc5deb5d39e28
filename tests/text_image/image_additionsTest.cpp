#include "zqticker/text_image/image_additions.h"

#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq;
using namespace zq::platform;
using zq::testing::Canvas;
using zq::testing::maximumDifference;

namespace {

const double NaN = std::nan("");
const double infinity = std::numeric_limits<double>::infinity();

QImage bitmap(int width, int height, const QColor& color = Qt::green) {
  QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
  image.fill(color);
  return image;
}

// A picture of `width` by 4 pixels: the left half opaque green, then one column half opaque, the
// rest transparent.
QImage silhouette(int width = 8) {
  QImage image = bitmap(width, 4, Qt::transparent);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < width / 2; ++x)
      image.setPixelColor(x, y, Qt::green);
    image.setPixelColor(width / 2, y, QColor(0, 255, 0, 128));
  }
  return image;
}

// The same as a drawing.
Ref<Image> drawnSilhouette() {
  auto image = Image::make(QSizeF(8, 4));
  const ImageFocus focus(*image);
  GraphicsContext& context = *GraphicsContext::currentContext();
  context.setFillColor(Color::deviceRGB(0, 1, 0));
  context.fillRect({0, 0, 4, 4});
  context.setFillColor(Color::deviceRGB(0, 1, 0, 128 / 255.0));
  context.fillRect({4, 0, 1, 4});
  return image;
}

QImage shown(const Ref<Image>& image, double scale = 1) {
  return image->rasterised(scale);
}

const Ref<Color> red = Color::deviceRGB(1, 0, 0);

using Recolouring = Ref<Image> (*)(const Ref<Image>&, const Ref<Color>&);

class RecolouredImage : public ::testing::TestWithParam<Recolouring> {};

} // namespace

TEST(normalizeSize, GivesEveryPixelAPoint) {
  QImage picture = bitmap(6, 4);
  picture.setDevicePixelRatio(2);
  const auto image = Image::fromQImage(picture);
  ASSERT_EQ(image->size(), QSizeF(3, 2));
  EXPECT_EQ(normalizeSize(image), image);
  EXPECT_EQ(image->size(), QSizeF(6, 4));
  ASSERT_EQ(image->representations().size(), 1U);
  EXPECT_EQ(image->representations()[0]->size(), QSizeF(6, 4));
  EXPECT_EQ(image->representations()[0]->pixelSize(), QSize(6, 4));
  EXPECT_EQ(shown(image), picture);
}

TEST(normalizeSize, SizesTheFirstRepresentationThatIsABitmapOnly) {
  const auto drawn = drawnSilhouette();
  const Image::Representations before{drawn->representations()[0],
                                      ImageRepresentation::make(bitmap(16, 12), {8, 4}),
                                      ImageRepresentation::make(bitmap(32, 8), {8, 4})};
  const auto image = Image::make(QSizeF(8, 4), before);
  EXPECT_EQ(normalizeSize(image), image);
  EXPECT_EQ(image->size(), QSizeF(16, 12));
  ASSERT_EQ(image->representations().size(), 3U);
  EXPECT_EQ(image->representations()[0], before[0]);
  EXPECT_EQ(image->representations()[1]->size(), QSizeF(16, 12));
  EXPECT_EQ(image->representations()[2], before[2]);
  // Another image with the same representations is not touched.
  EXPECT_EQ(before[1]->size(), QSizeF(8, 4));
}

TEST(normalizeSize, LeavesImagesWithoutABitmapAsTheyAre) {
  const auto drawn = drawnSilhouette();
  const Image::Representations representations = drawn->representations();
  EXPECT_EQ(normalizeSize(drawn), drawn);
  EXPECT_EQ(drawn->size(), QSizeF(8, 4));
  EXPECT_EQ(drawn->representations(), representations);
  const auto empty = Image::make(QSizeF(3, 2));
  EXPECT_EQ(normalizeSize(empty), empty);
  EXPECT_EQ(empty->size(), QSizeF(3, 2));
  EXPECT_EQ(normalizeSize(nullptr), nullptr);
}

TEST(normalizeSize, SizesImagesOfAnySizeBefore) {
  for (const QSizeF size : {QSizeF(0, 0), QSizeF(NaN, -4), QSizeF(1e300, 1)}) {
    const auto image = Image::fromQImage(bitmap(6, 4));
    image->setSize(size);
    EXPECT_EQ(normalizeSize(image)->size(), QSizeF(6, 4));
  }
}

TEST(normalizeSize, KeepsDataThatIsNotDecodedYet) {
  const std::optional<QByteArray> tiff = Image::fromQImage(bitmap(6, 4))->TIFFRepresentation();
  const auto image = Image::initWithData(*tiff);
  image->setSize({1, 1});
  normalizeSize(image);
  EXPECT_EQ(image->size(), QSizeF(6, 4));
  EXPECT_EQ(shown(image), bitmap(6, 4));
}

INSTANTIATE_TEST_SUITE_P(Of, RecolouredImage,
                         ::testing::Values(tintedImageWithColor, maskedImageWithColor),
                         [](const auto& kind) { return kind.index == 0 ? "Tinting" : "Masking"; });

TEST_P(RecolouredImage, IsTheColourWhereTheImageIsOpaque) {
  for (const Ref<Image>& source : {Image::fromQImage(silhouette()), drawnSilhouette()}) {
    const auto image = GetParam()(source, red);
    EXPECT_NE(image, source);
    EXPECT_EQ(image->size(), QSizeF(8, 4));
    const QImage pixels = shown(image);
    ASSERT_EQ(pixels.size(), QSize(8, 4));
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 8; ++x) {
        const QColor color = pixels.pixelColor(x, y);
        EXPECT_NEAR(color.alpha(), x < 4 ? 255 : x == 4 ? 128 : 0, 1);
        if (x <= 4) {
          EXPECT_EQ(color.rgb(), qRgb(255, 0, 0));
        }
      }
    // The source stays as it is.
    EXPECT_EQ(shown(source).pixelColor(0, 0), QColor(Qt::green));
  }
}

TEST_P(RecolouredImage, MultipliesTheOpacities) {
  const auto image =
      GetParam()(Image::fromQImage(silhouette()), Color::deviceRGB(0, 0, 1, 128 / 255.0));
  EXPECT_NEAR(shown(image).pixelColor(0, 0).alpha(), 128, 1);
  EXPECT_NEAR(shown(image).pixelColor(4, 0).alpha(), 64, 1);
  EXPECT_EQ(shown(image).pixelColor(7, 0).alpha(), 0);
  EXPECT_GE(shown(image).pixelColor(0, 0).blue(), 253);
}

TEST_P(RecolouredImage, HasNoRimAtScalesThatAreNoWholeNumbers) {
  // 17 points at 1.25 are 21.25 pixels: the picture is drawn on 21 of them.
  for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0})
    for (const int width : {13, 15, 17, 20}) {
      const auto source = Image::fromQImage(bitmap(width, width));
      const QSize covered = source->pixelSize(scale);
      const QImage pixels = shown(GetParam()(source, red), scale);
      for (int y = 0; y < pixels.height(); ++y)
        for (int x = 0; x < pixels.width(); ++x) {
          const bool inside = x < covered.width() && pixels.height() - 1 - y < covered.height();
          EXPECT_EQ(pixels.pixelColor(x, y), inside ? QColor(Qt::red) : QColor(0, 0, 0, 0))
              << scale << ' ' << width << ' ' << x << ' ' << y;
        }
    }
}

TEST_P(RecolouredImage, IsAsSharpAsADrawing) {
  // An edge at 4.5 points is one of pixels at two pixels a point.
  const auto source = Image::make(QSizeF(8, 4));
  {
    const ImageFocus focus(*source);
    GraphicsContext::currentContext()->fillRect({0, 0, 4.5, 4});
  }
  const QImage pixels = shown(GetParam()(source, red), 2);
  EXPECT_EQ(pixels.pixelColor(8, 3), QColor(Qt::red));
  EXPECT_EQ(pixels.pixelColor(9, 3).alpha(), 0);
}

TEST_P(RecolouredImage, ShowsTheSourceAsItWas) {
  const auto source = Image::fromQImage(silhouette());
  const auto image = GetParam()(source, red);
  const QImage before = shown(image);
  {
    const ImageFocus focus(*source);
    GraphicsContext::currentContext()->fillRect({0, 0, 8, 4});
  }
  source->setSize({100, 100});
  EXPECT_EQ(shown(image, 1), before);
}

TEST_P(RecolouredImage, LeavesTheContextAsItWas) {
  Canvas canvas({10, 10});
  canvas.context->setFillColor(Color::deviceRGB(0, 0, 1));
  const auto image = GetParam()(Image::fromQImage(silhouette()), red);
  EXPECT_EQ(GraphicsContext::currentContext(), canvas.context.get());
  EXPECT_EQ(canvas.context->compositingOperation(), CompositingOperation::SourceOver);
  canvas.context->fillRect({0, 5, 2, 2});
  image->drawInRect({0, 0, 8, 4});
  canvas.finished();
  EXPECT_EQ(canvas.pixel(0, 5), QColor(Qt::blue));
  EXPECT_EQ(canvas.pixel(0, 0), QColor(Qt::red));
  EXPECT_EQ(canvas.pixel(7, 0), QColor(Qt::white));
}

TEST_P(RecolouredImage, IsClearWithoutAColour) {
  const QImage pixels = shown(GetParam()(Image::fromQImage(silhouette()), nullptr));
  for (int x = 0; x < 8; ++x)
    EXPECT_EQ(pixels.pixelColor(x, 1).alpha(), 0);
}

TEST_P(RecolouredImage, TakesAPattern) {
  const QImage pixels = shown(GetParam()(
      Image::fromQImage(silhouette()), Color::pattern(Image::fromQImage(bitmap(2, 2, Qt::blue)))));
  EXPECT_EQ(pixels.pixelColor(0, 0), QColor(Qt::blue));
  EXPECT_EQ(pixels.pixelColor(7, 0).alpha(), 0);
}

TEST_P(RecolouredImage, BearsNothingAndNoContent) {
  EXPECT_EQ(GetParam()(nullptr, red), nullptr);
  // What shows nothing is opaque nowhere.
  const auto blank = GetParam()(Image::make(QSizeF(4, 4)), red);
  ASSERT_NE(blank, nullptr);
  EXPECT_EQ(blank->size(), QSizeF(4, 4));
  Canvas canvas({4, 4});
  blank->drawInRect({0, 0, 4, 4});
  EXPECT_TRUE(zq::testing::inkBounds(canvas.finished()).isNull());
  for (const QSizeF size : {QSizeF(0, 0), QSizeF(-1, -1), QSizeF(NaN, 3)}) {
    const auto source = Image::fromQImage(bitmap(2, 2));
    source->setSize(size);
    const auto image = GetParam()(source, red);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->size(), source->size());
  }
}

TEST(invertedMask, IsBlackWhereTheImageIsTransparent) {
  for (const Ref<Image>& source : {Image::fromQImage(silhouette()), drawnSilhouette()}) {
    const auto image = invertedMask(source);
    EXPECT_NE(image, source);
    EXPECT_EQ(image->size(), QSizeF(8, 4));
    const QImage pixels = shown(image);
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 8; ++x) {
        EXPECT_NEAR(pixels.pixelColor(x, y).alpha(), x < 4 ? 0 : x == 4 ? 127 : 255, 1);
        EXPECT_EQ(pixels.pixelColor(x, y).rgb(), qRgb(0, 0, 0));
      }
  }
}

TEST(invertedMask, HasNoRimAtScalesThatAreNoWholeNumbers) {
  for (const double scale : {1.25, 1.5, 1.75})
    for (const int width : {13, 15, 17}) {
      const QImage pixels = shown(invertedMask(Image::fromQImage(bitmap(width, width))), scale);
      EXPECT_TRUE(zq::testing::inkBounds(pixels, QColor(0, 0, 0, 0)).isNull())
          << scale << ' ' << width;
    }
}

TEST(invertedMask, IsBlackAllOverForAnImageWithoutContent) {
  const QImage pixels = shown(invertedMask(Image::make(QSizeF(3, 2))));
  ASSERT_EQ(pixels.size(), QSize(3, 2));
  EXPECT_EQ(pixels.pixelColor(0, 0), QColor(Qt::black));
  EXPECT_EQ(pixels.pixelColor(2, 1), QColor(Qt::black));
  EXPECT_EQ(invertedMask(nullptr), nullptr);
  EXPECT_EQ(invertedMask(Image::make(QSizeF(-1, NaN)))->size(), QSizeF(0, 0));
}

TEST(imageByScalingToSize, KeepsTheProportionsInsideTheTarget) {
  const auto source = Image::fromQImage(bitmap(200, 100));
  EXPECT_EQ(imageByScalingToSize(source, {100, 100}, true)->size(), QSizeF(100, 50));
  EXPECT_EQ(imageByScalingToSize(source, {400, 50}, true)->size(), QSizeF(100, 50));
  EXPECT_EQ(imageByScalingToSize(source, {400, 400}, true)->size(), QSizeF(400, 200));
  // Of the same proportions the target is taken as it is.
  EXPECT_EQ(imageByScalingToSize(source, {50, 25}, true)->size(), QSizeF(50, 25));
  const auto upright = Image::fromQImage(bitmap(100, 200));
  EXPECT_EQ(imageByScalingToSize(upright, {100, 100}, true)->size(), QSizeF(50, 100));
}

TEST(imageByScalingToSize, DividesBeforeItMultiplies) {
  // 10 / 9 × 7 and 10 × 7 / 9 differ in the last bit.
  const double divided = 10.0 / 9.0 * 7.0;
  ASSERT_NE(divided, 10.0 * 7.0 / 9.0);
  const auto wide = imageByScalingToSize(Image::fromQImage(bitmap(9, 7)), {10, 10}, true);
  EXPECT_EQ(wide->size().width(), 10.0);
  EXPECT_EQ(wide->size().height(), divided);
  const auto high = imageByScalingToSize(Image::fromQImage(bitmap(7, 9)), {10, 10}, true);
  EXPECT_EQ(high->size().width(), divided);
  EXPECT_EQ(high->size().height(), 10.0);
}

TEST(imageByScalingToSize, TakesTheTargetWhereProportionsDoNotMatter) {
  const auto source = Image::fromQImage(bitmap(200, 100));
  EXPECT_EQ(imageByScalingToSize(source, {100, 100}, false)->size(), QSizeF(100, 100));
}

TEST(imageByScalingToSize, GivesTheVeryImageThatHasTheSize) {
  const auto source = Image::fromQImage(bitmap(200, 100));
  EXPECT_EQ(imageByScalingToSize(source, {200, 100}, true), source);
  EXPECT_EQ(imageByScalingToSize(source, {200, 100}, false), source);
  // Only exactly that size.
  EXPECT_NE(imageByScalingToSize(source, {std::nextafter(200, 201), 100}, false), source);
}

TEST(imageByScalingToSize, ShowsTheWholePicture) {
  QImage quarters(4, 4, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x)
      quarters.setPixelColor(
          x, y, y < 2 ? (x < 2 ? Qt::red : Qt::green) : (x < 2 ? Qt::blue : Qt::black));
  const QImage pixels = shown(imageByScalingToSize(Image::fromQImage(quarters), {16, 8}, false));
  ASSERT_EQ(pixels.size(), QSize(16, 8));
  EXPECT_EQ(pixels.pixelColor(0, 0), QColor(Qt::red));
  EXPECT_EQ(pixels.pixelColor(15, 0), QColor(Qt::green));
  EXPECT_EQ(pixels.pixelColor(0, 7), QColor(Qt::blue));
  EXPECT_EQ(pixels.pixelColor(15, 7), QColor(Qt::black));
}

TEST(imageByScalingToSize, AveragesPixelsWhenReducing) {
  // Columns of black and white in turn become grey, without a pattern.
  QImage stripes(256, 16, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 256; ++x)
      stripes.setPixelColor(x, y, x % 2 ? Qt::white : Qt::black);
  const QImage pixels = shown(imageByScalingToSize(Image::fromQImage(stripes), {32, 2}, false));
  for (int x = 2; x < 30; ++x)
    EXPECT_NEAR(pixels.pixelColor(x, 0).red(), 127, 3) << x;
}

TEST(imageByScalingToSize, KeepsTransparencyAsItIs) {
  const QImage pixels = shown(
      imageByScalingToSize(Image::fromQImage(bitmap(8, 8, QColor(255, 0, 0, 100))), {4, 4}, true));
  EXPECT_EQ(pixels.pixelColor(2, 2).alpha(), 100);
}

TEST(imageByScalingToSize, BearsNothingAndSizesThatAreNone) {
  EXPECT_EQ(imageByScalingToSize(nullptr, {1, 1}, true), nullptr);
  const auto source = Image::fromQImage(bitmap(200, 100));
  const auto blank = Image::make(QSizeF(0, 0));
  for (const Ref<Image>& image : {source, blank, Image::make(QSizeF(5, 0))})
    for (const QSizeF size :
         {QSizeF(0, 0), QSizeF(-5, -5), QSizeF(NaN, NaN), QSizeF(10, NaN), QSizeF(infinity, 3),
          QSizeF(3, infinity), QSizeF(1e300, 1e300), QSizeF(-7, 4), QSizeF(6, 6)})
      for (const bool preserve : {false, true}) {
        const auto scaled = imageByScalingToSize(image, size, preserve);
        ASSERT_NE(scaled, nullptr);
        EXPECT_TRUE(std::isfinite(scaled->size().width()) && scaled->size().width() >= 0);
        EXPECT_TRUE(std::isfinite(scaled->size().height()) && scaled->size().height() >= 0);
        Canvas canvas({4, 4});
        scaled->dissolveToPoint({0, 0}, 1);
      }
  EXPECT_EQ(imageByScalingToSize(blank, {0, 0}, true), blank);
  EXPECT_EQ(imageByScalingToSize(source, {-5, 50}, false)->size(), QSizeF(0, 50));
}

TEST(imageByScalingToSize, ScalesLargePictures) {
  const auto scaled = imageByScalingToSize(Image::fromQImage(bitmap(4000, 3000)), {400, 400}, true);
  EXPECT_EQ(scaled->size(), QSizeF(400, 300));
  const QImage pixels = shown(scaled);
  EXPECT_EQ(pixels.pixelColor(399, 299), QColor(Qt::green));
}
