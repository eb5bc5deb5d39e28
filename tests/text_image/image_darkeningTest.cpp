#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/text_image/bitmap_darkening_p.h"
#include "zqticker/text_image/image_additions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq;
using namespace zq::platform;

namespace {

using Bytes = std::vector<uchar>;

QImage bitmap(int width, int height, const QColor& color) {
  QImage image(width, height, QImage::Format_ARGB32);
  image.fill(color);
  return image;
}

QImage shownBy(const Ref<Image>& image) {
  return image && !image->representations().empty() ? image->representations().front()->bitmap()
                                                    : QImage();
}

} // namespace

TEST(subtrahend, IsTheWholePartOf256Less255TimesTheComponent) {
  EXPECT_EQ(subtrahendFor(1.0), 1);
  EXPECT_EQ(subtrahendFor(0.5), 128);
  EXPECT_EQ(subtrahendFor(0.0), 256);
  // 256 − 63.75 = 192.25
  EXPECT_EQ(subtrahendFor(0.25), 192);
  // 256 − 254.745 = 1.255
  EXPECT_EQ(subtrahendFor(0.999), 1);
  EXPECT_EQ(subtrahendFor(0.001), 255);
}

TEST(darken, TakesFromEachChannelDownToZeroAndCopiesAlpha) {
  const Bytes source{200, 100, 50, 77};
  Bytes destination(4);
  darken(source, destination, {4, 32, true}, {1, 1}, {1, 128, 256});
  EXPECT_EQ(destination, (Bytes{199, 0, 0, 77}));
}

TEST(darken, LeavesTheFourthByteOfPixelsWithoutAlpha) {
  const Bytes source{200, 100, 50, 77};
  Bytes destination(4, 9);
  darken(source, destination, {4, 32, false}, {1, 1}, {1, 1, 1});
  EXPECT_EQ(destination, (Bytes{199, 99, 49, 9}));
}

TEST(darken, FindsPixelsOfBothByTheStridesOfTheSource) {
  // Two pixels by two; a row of the source has four bytes of padding that the result does not have.
  Bytes source(24);
  for (std::size_t i = 0; i < source.size(); ++i)
    source[i] = uchar(100 + i);
  Bytes destination(16);
  darken(source, destination, {12, 32, true}, {2, 2}, {1, 1, 1});
  // The first row stands; of the second the first pixel comes four bytes late and the last is lost.
  EXPECT_EQ(destination,
            (Bytes{99, 100, 101, 103, 103, 104, 105, 107, 0, 0, 0, 0, 111, 112, 113, 115}));
}

TEST(darken, GoesColumnByColumn) {
  // Rows of four bytes under pixels of three: the second pixel of the first row and the first of
  // the second share three bytes; the later column wins.
  const Bytes source{10, 10, 10, 20, 30, 40, 50, 60};
  Bytes destination(8);
  darken(source, destination, {4, 24, false}, {2, 2}, {0, 1, 2});
  // Column 0: bytes 0-2 and 4-6; column 1: bytes 3-5, and 7-9, which are outside.
  EXPECT_EQ(destination, (Bytes{10, 9, 8, 20, 29, 38, 48, 0}));
}

TEST(darken, NeverLeavesEitherBuffer) {
  for (const std::size_t sourceSize : {0, 1, 3, 4, 7, 64})
    for (const std::size_t destinationSize : {0, 1, 3, 4, 7, 64})
      for (const bool hasAlpha : {false, true})
        for (const int bytesPerRow : {0, 3, 4, 17, 1 << 30}) {
          // Exactly as large as said, so that the address sanitizer sees a step outside.
          const auto source = std::make_unique<uchar[]>(sourceSize);
          const auto destination = std::make_unique<uchar[]>(destinationSize);
          std::fill_n(source.get(), sourceSize, uchar(200));
          darken({source.get(), sourceSize}, {destination.get(), destinationSize},
                 {bytesPerRow, hasAlpha ? 32 : 24, hasAlpha}, {40, 40}, {1, 1, 1});
          const std::size_t samples = hasAlpha ? 4 : 3;
          const std::size_t common = std::min(sourceSize, destinationSize);
          if (common >= samples) {
            EXPECT_EQ(destination[0], 199);
          }
          for (std::size_t i = common; i < destinationSize; ++i)
            EXPECT_EQ(destination[i], 0);
        }
}

TEST(darkenedImageWithColor, DarkensEveryPixel) {
  const auto source = Image::fromQImage(bitmap(3, 5, QColor(200, 100, 50)));
  const auto image = darkenedImageWithColor(source, Color::calibratedRGB(1, 0.5, 0));
  ASSERT_NE(image, nullptr);
  EXPECT_NE(image, source);
  EXPECT_EQ(image->size(), QSizeF(3, 5));
  ASSERT_EQ(image->representations().size(), 1U);
  const QImage shown = shownBy(image);
  ASSERT_EQ(shown.size(), QSize(3, 5));
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 3; ++x)
      EXPECT_EQ(shown.pixelColor(x, y), QColor(199, 0, 0)) << x << ' ' << y;
  // The source stays as it is.
  EXPECT_EQ(shownBy(source).pixelColor(2, 4), QColor(200, 100, 50));
}

TEST(darkenedImageWithColor, KeepsEveryPixelAtItsPlaceInPicturesWithAndWithoutAlpha) {
  for (const bool opaque : {true, false})
    for (const int width : {1, 2, 3, 4, 5, 7}) {
      QImage picture(width, 6, QImage::Format_ARGB32_Premultiplied);
      for (int y = 0; y < 6; ++y)
        for (int x = 0; x < width; ++x)
          picture.setPixel(x, y, qRgba(100 + x, 110 + y, 120 + x * y, opaque ? 255 : 200));
      const QImage shown = shownBy(
          darkenedImageWithColor(Image::fromQImage(picture), Color::calibratedRGB(1, 1, 1)));
      ASSERT_EQ(shown.size(), picture.size());
      for (int y = 0; y < 6; ++y)
        for (int x = 0; x < width; ++x)
          EXPECT_EQ(reinterpret_cast<const QRgb*>(shown.constScanLine(y))[x],
                    qRgba(99 + x, 109 + y, 119 + x * y, opaque ? 255 : 200))
              << x << ' ' << y;
    }
}

TEST(darkenedImageWithColor, WorksOnPremultipliedBytes) {
  // Half opaque white is (128, 128, 128, 128) in bytes.
  const auto image = darkenedImageWithColor(
      Image::fromQImage(bitmap(1, 1, QColor(255, 255, 255, 128))), Color::calibratedRGB(1, 1, 0));
  const QImage shown = shownBy(image);
  EXPECT_EQ(*reinterpret_cast<const QRgb*>(shown.constBits()), qRgba(127, 127, 0, 128));
}

TEST(darkenedImageWithColor, TakesColoursOfEverySpaceAsRgb) {
  const auto source = Image::fromQImage(bitmap(1, 1, QColor(200, 201, 202)));
  const auto result = [&](const Ref<Color>& color) {
    return shownBy(darkenedImageWithColor(source, color)).pixelColor(0, 0);
  };
  EXPECT_EQ(result(Color::deviceWhite(1)), QColor(199, 200, 201));
  EXPECT_EQ(result(Color::deviceCMYK(0, 0, 1, 0)), QColor(199, 200, 0));
  EXPECT_EQ(result(Color::catalog(u"System"_s, u"c"_s, Color::deviceRGB(0, 1, 0))),
            QColor(0, 200, 0));
}

TEST(darkenedImageWithColor, TakesColoursThatCannotBeConvertedAsBlack) {
  const auto source = Image::fromQImage(bitmap(1, 1, QColor(200, 201, 202)));
  for (const Ref<Color>& color : {Ref<Color>(), Color::pattern(source), Color::pattern(nullptr),
                                  Color::catalog(u"System"_s, u"c"_s, nullptr)})
    EXPECT_EQ(shownBy(darkenedImageWithColor(source, color)).pixelColor(0, 0), QColor(Qt::black));
  EXPECT_EQ(shownBy(darkenedImageWithColor(source, Color::calibratedRGB(std::nan(""), 2, -1)))
                .pixelColor(0, 0),
            QColor(0, 200, 0));
}

TEST(darkenedImageWithColor, LogsAndGivesNothingWhereTheFirstRepresentationIsNoBitmap) {
  const auto drawn = Image::make(QSizeF(4, 4));
  { const ImageFocus focus(*drawn); }
  ASSERT_EQ(drawn->representations().size(), 1U);
  Image::Representations both = drawn->representations();
  both.push_back(ImageRepresentation::make(bitmap(4, 4, Qt::red), {4, 4}));
  for (const Ref<Image>& image : {drawn, Image::make(QSizeF(4, 4), both), Image::make({4, 4})}) {
    zq::testing::expectLog(u"zqticker.text_image: not a bitmap image rep"_s);
    EXPECT_EQ(darkenedImageWithColor(image, Color::deviceWhite(1)), nullptr);
  }
}

TEST(darkenedImageWithColor, GivesNothingForNothing) {
  EXPECT_EQ(darkenedImageWithColor(nullptr, Color::deviceWhite(1)), nullptr);
}

TEST(darkenedImageWithColor, WalksPointsAndNotPixels) {
  // Two pixels a point, not normalised: each column one higher in red, each row in green.
  QImage picture(4, 4, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x)
      picture.setPixel(x, y, qRgba(101 + x, 101 + y, 1, 200));
  picture.setDevicePixelRatio(2);
  const auto source = Image::fromQImage(picture);
  ASSERT_EQ(source->size(), QSizeF(2, 2));
  const auto image = darkenedImageWithColor(source, Color::deviceWhite(1));
  const QImage shown = shownBy(image);
  ASSERT_EQ(shown.size(), QSize(2, 2));
  const auto pixel = [&](int x, int y) {
    return reinterpret_cast<const QRgb*>(shown.constScanLine(y))[x];
  };
  // A row of the source is 16 bytes, all that the result has: its first row fills half of them, and
  // its second would lie behind the end.
  EXPECT_EQ(pixel(0, 0), qRgba(100, 100, 0, 200));
  EXPECT_EQ(pixel(1, 0), qRgba(101, 100, 0, 200));
  EXPECT_EQ(pixel(0, 1), qRgba(0, 0, 0, 0));
  EXPECT_EQ(pixel(1, 1), qRgba(0, 0, 0, 0));
  // Normalised, every pixel stands at its place.
  const QImage right =
      shownBy(darkenedImageWithColor(normalizeSize(source), Color::deviceWhite(1)));
  ASSERT_EQ(right.size(), QSize(4, 4));
  EXPECT_EQ(reinterpret_cast<const QRgb*>(right.constScanLine(3))[3], qRgba(103, 103, 0, 200));
}

TEST(darkenedImageWithColor, LeavesPixelsBehindTheSourceOut) {
  const auto source = Image::fromQImage(bitmap(2, 2, QColor(255, 0, 0, 254)));
  source->setSize({4, 3});
  const QImage shown = shownBy(darkenedImageWithColor(source, Color::deviceWhite(1)));
  ASSERT_EQ(shown.size(), QSize(4, 3));
  // The 16 bytes of the source are the first row of the result.
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 4; ++x)
      EXPECT_EQ(shown.pixelColor(x, y).alpha(), y == 0 ? 254 : 0) << x << ' ' << y;
}

TEST(darkenedImageWithColor, CutsFractionsOfAPointOff) {
  const auto source = Image::fromQImage(bitmap(3, 3, QColor(200, 100, 50)));
  source->setSize({2.9, 1.5});
  const auto image = darkenedImageWithColor(source, Color::deviceWhite(1));
  EXPECT_EQ(image->size(), QSizeF(2.9, 1.5));
  EXPECT_EQ(shownBy(image).size(), QSize(2, 1));
}

TEST(darkenedImageWithColor, BearsSizesOfNoAreaAndBeyondAllMeasure) {
  const auto source = Image::fromQImage(bitmap(2, 2, Qt::red));
  for (const QSizeF size : {QSizeF(0, 0), QSizeF(-1, 3), QSizeF(std::nan(""), 2), QSizeF(0.5, 9),
                            QSizeF(1e30, 1e-29)}) {
    source->setSize(size);
    const auto image = darkenedImageWithColor(source, Color::deviceWhite(1));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->size(), source->size());
    EXPECT_TRUE(image->representations().empty());
  }
  for (const QSizeF size : {QSizeF(1e5, 1e5), QSizeF(1e300, 1e300)}) {
    source->setSize(size);
    EXPECT_EQ(darkenedImageWithColor(source, Color::deviceWhite(1)), nullptr);
  }
}

TEST(darkenedImageWithColor, DarkensLargePictures) {
  const auto source = Image::fromQImage(bitmap(4000, 3000, QColor(10, 20, 30)));
  const QImage shown = shownBy(darkenedImageWithColor(source, Color::deviceWhite(1)));
  ASSERT_EQ(shown.size(), QSize(4000, 3000));
  EXPECT_EQ(shown.pixelColor(3999, 2999), QColor(9, 19, 29));
}
