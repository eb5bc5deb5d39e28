#include "zqticker/platform/graphics/Image.h"

#include "tests/platform/graphics/Canvas.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QTemporaryDir>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::Canvas;
using zq::testing::inkBounds;
using zq::testing::maximumDifference;

namespace {

const Ref<Color> red = Color::deviceRGB(1, 0, 0);
const Ref<Color> blue = Color::deviceRGB(0, 0, 1);

// A bitmap without symmetry: red, the upper left pixel green, the lower right one blue.
QImage marked(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::red);
  image.setPixelColor(0, 0, Qt::green);
  image.setPixelColor(width - 1, height - 1, Qt::blue);
  return image;
}

// A drawing of the size with a blue lower left quarter.
Ref<Image> drawing(QSizeF size) {
  const Ref<Image> image = Image::make(size);
  const ImageFocus focus(*image);
  GraphicsContext* context = GraphicsContext::currentContext();
  context->setFillColor(red);
  context->fillRect(QRectF(QPointF(), size));
  context->setFillColor(blue);
  context->fillRect(QRectF(QPointF(), size / 2));
  return image;
}

} // namespace

TEST(Image, IsEmptyUntilItIsDrawnInto) {
  const Ref<Image> image = Image::make(QSizeF(20, 10));
  EXPECT_EQ(image->size(), QSizeF(20, 10));
  EXPECT_TRUE(image->representations().empty());
  EXPECT_FALSE(image->TIFFRepresentation());
  EXPECT_TRUE(image->rasterised(1).isNull());
  Canvas canvas({20, 10});
  image->dissolveToPoint(QPointF(), 1);
  EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
}

TEST(Image, TakesSidesThatAreNoLengthsAsZero) {
  const double infinite = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Image::make(QSizeF(-3, 5))->size(), QSizeF(0, 5));
  EXPECT_EQ(Image::make(QSizeF(infinite, std::nan("")))->size(), QSizeF(0, 0));
}

TEST(Image, IsLostWhatIsDrawnIntoAnImageWithoutArea) {
  const Ref<Image> image = Image::make(QSizeF(0, 10));
  {
    const ImageFocus focus(*image);
    GraphicsContext::currentContext()->fillRect(QRectF(0, 0, 5, 5));
  }
  EXPECT_TRUE(image->representations().empty());
  EXPECT_FALSE(image->TIFFRepresentation());
}

TEST(Image, DrawsItsLowerLeftCornerAtThePoint) {
  for (const double scale : {1.0, 1.5, 2.0})
    for (const bool flipped : {false, true}) {
      Canvas canvas({20, 20}, scale, flipped);
      drawing(QSizeF(8, 4))->dissolveToPoint(flipped ? QPointF(2, 14) : QPointF(2, 6), 1);
      EXPECT_EQ(inkBounds(canvas.finished()),
                QRect(int(2 * scale), int(6 * scale), int(8 * scale), int(4 * scale)))
          << scale;
      // Upright in both: the blue quarter is at the lower left.
      EXPECT_EQ(canvas.pixel(int(2 * scale), int(6 * scale)), QColor(Qt::blue));
      EXPECT_EQ(canvas.pixel(int(2 * scale), int(10 * scale) - 1), QColor(Qt::red));
      EXPECT_EQ(canvas.pixel(int(10 * scale) - 1, int(6 * scale)), QColor(Qt::red));
    }
}

TEST(Image, CopiesItsOwnPixelsUnchanged) {
  const QImage bitmap = marked(7, 5);
  for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
    QImage source = bitmap;
    source.setDevicePixelRatio(scale);
    Canvas canvas(QSizeF(20 / scale, 20 / scale), scale);
    // A corner that is not on a whole pixel goes to the nearest one.
    Image::fromQImage(source)->dissolveToPoint(QPointF(3.3 / scale, 1.6 / scale), 1);
    const QImage copied = canvas.finished().copy(3, 20 - 2 - 5, 7, 5);
    EXPECT_EQ(maximumDifference(copied, bitmap), 0) << scale;
    EXPECT_EQ(inkBounds(canvas.image), QRect(3, 2, 7, 5)) << scale;
  }
}

TEST(Image, DissolvesByTheFraction) {
  Canvas canvas({4, 4});
  drawing(QSizeF(4, 4))->dissolveToPoint(QPointF(), 0.5);
  canvas.finished();
  EXPECT_NEAR(canvas.pixel(3, 3).green(), 127, 2);
  EXPECT_EQ(canvas.pixel(3, 3).red(), 255);
}

TEST(Image, DrawsPartsOfItselfIntoARectangle) {
  Canvas canvas({20, 20});
  // The right half of the lower half, twice as large.
  Image::fromQImage(marked(8, 8))->drawInRect(QRectF(4, 6, 8, 8), QRectF(4, 0, 4, 4));
  const QImage& picture = canvas.finished();
  EXPECT_EQ(inkBounds(picture, Qt::white, 1), QRect(4, 6, 8, 8));
  EXPECT_EQ(canvas.pixel(11, 6), QColor(Qt::blue));
  EXPECT_EQ(canvas.pixel(4, 13), QColor(Qt::red));
}

TEST(Image, AnEmptySourceRectangleThatIsNotZeroDrawsNothing) {
  Canvas canvas({20, 20});
  const Ref<Image> image = drawing(QSizeF(8, 8));
  image->drawInRect(QRectF(0, 0, 8, 8), QRectF(2, 2, 0, 0));
  image->drawInRect(QRectF(0, 0, 0, 8));
  image->drawInRect(QRectF(0, 0, 8, 8), QRectF(20, 20, 4, 4));
  EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
}

TEST(Image, IsUprightInAFlippedContextUnlessToldOtherwise) {
  for (const bool respect : {true, false}) {
    Canvas canvas({10, 10}, 1, true);
    drawing(QSizeF(8, 4))
        ->drawInRect(QRectF(1, 2, 8, 4), QRectF(), CompositingOperation::SourceOver, 1, respect);
    canvas.finished();
    // In rows from below: the rectangle stands from 4 to 7.
    EXPECT_EQ(inkBounds(canvas.image), QRect(1, 4, 8, 4));
    EXPECT_EQ(canvas.pixel(1, respect ? 4 : 7), QColor(Qt::blue));
    EXPECT_EQ(canvas.pixel(1, respect ? 7 : 4), QColor(Qt::red));
  }
}

TEST(Image, ScalesSmoothly) {
  QImage checks(16, 16, QImage::Format_RGB32);
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; ++x)
      checks.setPixelColor(x, y, (x + y) % 2 ? Qt::white : Qt::black);
  Canvas canvas({4, 4}, 1, false, Canvas::Ground::Clear);
  Image::fromQImage(checks)->drawInRect(QRectF(0, 0, 4, 4));
  canvas.finished();
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x) {
      EXPECT_NEAR(canvas.pixel(x, y).red(), 127, 6);
      EXPECT_EQ(canvas.pixel(x, y).alpha(), 255);
    }
}

TEST(Image, CombinesByItsOwnOperation) {
  Canvas canvas({4, 4});
  canvas.context->setCompositingOperation(CompositingOperation::Clear);
  drawing(QSizeF(4, 4))
      ->drawInRect(QRectF(0, 0, 4, 4), QRectF(), CompositingOperation::DestinationOut, 0.5);
  EXPECT_EQ(canvas.context->compositingOperation(), CompositingOperation::Clear);
  EXPECT_NEAR(canvas.finished().pixelColor(0, 0).alpha(), 127, 2);
}

TEST(Image, DrawsThroughRotations) {
  Canvas canvas({20, 20});
  canvas.context->translate(10, 10);
  canvas.context->concat(QTransform().rotate(90));
  // A quarter turn to the left: the lower left corner comes to the lower right.
  drawing(QSizeF(8, 4))->dissolveToPoint(QPointF(0, 0), 1);
  canvas.finished();
  EXPECT_EQ(inkBounds(canvas.image, Qt::white, 128), QRect(6, 10, 4, 8));
  EXPECT_EQ(canvas.pixel(9, 10), QColor(Qt::blue));
  EXPECT_EQ(canvas.pixel(6, 10), QColor(Qt::red));
}

TEST(Image, IsSharpAtEveryScaleWhenDrawn) {
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
    const QImage pixels = drawing(QSizeF(8, 4))->rasterised(scale);
    ASSERT_EQ(pixels.size(), QSize(int(8 * scale), int(4 * scale)));
    for (int y = 0; y < pixels.height(); ++y)
      for (int x = 0; x < pixels.width(); ++x) {
        const bool isBlue = x < pixels.width() / 2 && y >= pixels.height() / 2;
        ASSERT_EQ(pixels.pixelColor(x, y), QColor(isBlue ? Qt::blue : Qt::red)) << scale;
      }
  }
}

TEST(Image, StandsAtTheLowerLeftOfPixelsThatItDoesNotFill) {
  const Ref<Image> image = drawing(QSizeF(8.4, 4.4));
  EXPECT_EQ(image->pixelSize(1), QSize(9, 5));
  const QImage pixels = image->rasterised(1);
  EXPECT_EQ(pixels.pixelColor(0, 4), QColor(Qt::blue));
  EXPECT_EQ(pixels.pixelColor(7, 4), QColor(Qt::red));
  EXPECT_NEAR(pixels.pixelColor(8, 4).alpha(), 102, 3);
  EXPECT_NEAR(pixels.pixelColor(0, 0).alpha(), 102, 3);
}

TEST(Image, GivesPartsOfItsPixels) {
  const Ref<Image> image = drawing(QSizeF(8, 4));
  const QImage whole = image->rasterised(2);
  EXPECT_EQ(image->rasterised(2, QRect(3, 1, 5, 6)), whole.copy(3, 1, 5, 6));
  EXPECT_EQ(image->rasterised(2, QRect(12, 4, 50, 50)), whole.copy(12, 4, 4, 4));
  EXPECT_TRUE(image->rasterised(2, QRect(16, 0, 4, 4)).isNull());
  EXPECT_TRUE(image->rasterised(0).isNull());
  EXPECT_TRUE(image->rasterised(1e9).isNull());
}

TEST(Image, TakesTheRepresentationThatSuitsTheScale) {
  QImage one(4, 4, QImage::Format_RGB32);
  one.fill(Qt::red);
  QImage two(8, 8, QImage::Format_RGB32);
  two.fill(Qt::blue);
  const Ref<Image> image = Image::make(QSizeF(4, 4), {ImageRepresentation::make(one, {4, 4}),
                                                      ImageRepresentation::make(two, {4, 4})});
  EXPECT_EQ(image->rasterised(1).pixelColor(0, 0), QColor(Qt::red));
  EXPECT_EQ(image->rasterised(1.5).pixelColor(0, 0), QColor(Qt::blue));
  EXPECT_EQ(image->rasterised(2).pixelColor(0, 0), QColor(Qt::blue));
  EXPECT_EQ(image->rasterised(3).pixelColor(0, 0), QColor(Qt::blue));
  EXPECT_EQ(image->rasterised(0.5).pixelColor(0, 0), QColor(Qt::red));
}

TEST(Image, IsScaledToAnotherSizeWhenThatIsSet) {
  const Ref<Image> image = drawing(QSizeF(8, 4));
  image->setSize(QSizeF(4, 4));
  const QImage pixels = image->rasterised(1);
  ASSERT_EQ(pixels.size(), QSize(4, 4));
  EXPECT_EQ(pixels.pixelColor(1, 2), QColor(Qt::blue));
  EXPECT_EQ(pixels.pixelColor(2, 2), QColor(Qt::red));
}

TEST(Image, KeepsWhatItShowedWhenDrawnIntoAgain) {
  const Ref<Image> recorded = drawing(QSizeF(8, 4));
  const Ref<Image> bitmap = Image::fromQImage(marked(8, 4));
  for (const Ref<Image>& image : {recorded, bitmap}) {
    const QColor before = image->rasterised(1).pixelColor(7, 3);
    {
      const ImageFocus focus(*image);
      GraphicsContext::currentContext()->fillRect(QRectF(3, 0, 1, 1));
    }
    const QImage pixels = image->rasterised(1);
    EXPECT_EQ(pixels.pixelColor(3, 3), QColor(Qt::black));
    EXPECT_EQ(pixels.pixelColor(7, 3), before);
  }
}

TEST(Image, DoesNotCarryTheStateOfOneFocusIntoTheNext) {
  const Ref<Image> image = Image::make(QSizeF(8, 4));
  {
    const ImageFocus focus(*image);
    GraphicsContext* context = GraphicsContext::currentContext();
    context->setFillColor(red);
    context->saveGraphicsState();
    context->translate(100, 0);
    context->clipToRect(QRectF(0, 0, 1, 1));
  }
  {
    const ImageFocus focus(*image);
    GraphicsContext::currentContext()->restoreGraphicsState();
    GraphicsContext::currentContext()->fillRect(QRectF(0, 0, 8, 4));
  }
  EXPECT_EQ(image->rasterised(1).pixelColor(0, 0), QColor(Qt::black));
}

TEST(Image, ChangesOnlyWhenTheFocusIsUnlocked) {
  const Ref<Image> image = Image::make(QSizeF(4, 4));
  image->lockFocus();
  image->lockFocus();
  GraphicsContext* context = GraphicsContext::currentContext();
  ASSERT_NE(context, nullptr);
  EXPECT_TRUE(context->isRecording());
  EXPECT_EQ(context->painter(), nullptr);
  context->fillRect(QRectF(0, 0, 4, 4));
  image->unlockFocus();
  EXPECT_TRUE(image->representations().empty());
  EXPECT_EQ(GraphicsContext::currentContext(), context);
  image->unlockFocus();
  EXPECT_EQ(image->representations().size(), 1U);
  EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
  image->unlockFocus();
  EXPECT_EQ(image->rasterised(1).pixelColor(0, 0), QColor(Qt::black));
}

TEST(Image, MayGoAwayWithItsFocusLocked) {
  Image::make(QSizeF(4, 4))->lockFocus();
  EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
}

TEST(Image, RecordsOtherImagesAsTheyLookAtThatMoment) {
  const Ref<Image> inner = drawing(QSizeF(4, 4));
  const Ref<Image> outer = Image::make(QSizeF(4, 4));
  {
    const ImageFocus focus(*outer);
    inner->dissolveToPoint(QPointF(), 1);
  }
  {
    const ImageFocus focus(*inner);
    GraphicsContext::currentContext()->fillRect(QRectF(0, 0, 4, 4));
  }
  inner->setSize(QSizeF(1, 1));
  EXPECT_EQ(outer->rasterised(1).pixelColor(3, 0), QColor(Qt::red));
  EXPECT_EQ(outer->rasterised(1).pixelColor(0, 3), QColor(Qt::blue));
}

TEST(Image, MayBeDrawnIntoItself) {
  const Ref<Image> image = drawing(QSizeF(4, 4));
  {
    const ImageFocus focus(*image);
    image->drawInRect(QRectF(2, 2, 2, 2));
  }
  const QImage pixels = image->rasterised(1);
  EXPECT_EQ(pixels.pixelColor(2, 1), QColor(Qt::blue));
  EXPECT_EQ(pixels.pixelColor(3, 0), QColor(Qt::red));
}

TEST(Image, CompositingInADrawingStaysInsideIt) {
  const Ref<Image> image = Image::make(QSizeF(4, 4));
  {
    const ImageFocus focus(*image);
    GraphicsContext* context = GraphicsContext::currentContext();
    context->fillRect(QRectF(0, 0, 4, 4));
    context->setCompositingOperation(CompositingOperation::Clear);
    context->fillRect(QRectF(0, 0, 2, 4));
  }
  Canvas canvas({4, 4});
  image->dissolveToPoint(QPointF(), 1);
  canvas.finished();
  EXPECT_EQ(canvas.pixel(0, 0), QColor(Qt::white));
  EXPECT_EQ(canvas.pixel(3, 0), QColor(Qt::black));
}

TEST(Image, CopiesAreEqualButIndependent) {
  const Ref<Image> image = drawing(QSizeF(8, 4));
  const Ref<Image> copy = copyOf(image);
  EXPECT_NE(copy, image);
  EXPECT_TRUE(copy->isEqual(*image));
  {
    const ImageFocus focus(*image);
    GraphicsContext::currentContext()->fillRect(QRectF(0, 0, 8, 4));
  }
  EXPECT_FALSE(copy->isEqual(*image));
  EXPECT_EQ(copy->rasterised(1).pixelColor(7, 3), QColor(Qt::red));
  const Ref<Image> resized = copyOf(copy);
  resized->setSize(QSizeF(4, 4));
  EXPECT_EQ(copy->size(), QSizeF(8, 4));
  EXPECT_FALSE(copy->isEqual(*resized));
}

TEST(Image, IsEqualToAnImageThatShowsTheSame) {
  EXPECT_TRUE(drawing(QSizeF(8, 4))->isEqual(*drawing(QSizeF(8, 4))));
  EXPECT_TRUE(Image::fromQImage(marked(5, 5))->isEqual(*Image::fromQImage(marked(5, 5))));
  QImage other = marked(5, 5);
  other.setPixelColor(2, 2, Qt::cyan);
  EXPECT_FALSE(Image::fromQImage(marked(5, 5))->isEqual(*Image::fromQImage(other)));
  EXPECT_FALSE(Image::make(QSizeF(5, 5))->isEqual(*Image::fromQImage(marked(5, 5))));
  EXPECT_TRUE(Image::make(QSizeF(5, 5))->isEqual(*Image::make(QSizeF(5, 5))));
  EXPECT_FALSE(Image::make(QSizeF(5, 5))->isEqual(*red));
}

TEST(Image, ShowsOnlyWhatTheClipLetsThrough) {
  Canvas canvas({20, 20});
  canvas.context->clipToRect(QRectF(3, 3, 2, 2));
  drawing(QSizeF(20, 20))->dissolveToPoint(QPointF(), 1);
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(3, 3, 2, 2));
}

TEST(Image, LeavesTheContextAsItWas) {
  Canvas canvas({20, 20});
  canvas.context->translate(1, 1);
  const QTransform before = canvas.painter->worldTransform();
  drawing(QSizeF(4, 4))
      ->drawInRect(QRectF(1, 1, 8, 8), QRectF(1, 1, 2, 2), CompositingOperation::Copy, 0.5);
  EXPECT_EQ(canvas.painter->worldTransform(), before);
  EXPECT_EQ(canvas.painter->opacity(), 1);
  EXPECT_EQ(canvas.painter->compositionMode(), QPainter::CompositionMode_SourceOver);
  EXPECT_FALSE(canvas.painter->hasClipping());
}

TEST(Image, BearsPlacesAndSizesBeyondAllMeasure) {
  const double infinite = std::numeric_limits<double>::infinity();
  Canvas canvas({20, 20});
  const Ref<Image> bitmap = Image::fromQImage(marked(4, 4));
  for (const Ref<Image>& image : {bitmap, drawing(QSizeF(4, 4)), drawing(QSizeF(1e9, 1e-9))}) {
    for (const double far : {infinite, -infinite, std::nan(""), 1e300, -1e300, 1e12})
      image->dissolveToPoint(QPointF(far, 3), 1);
    image->drawInRect(QRectF(30, 30, 1e300, 1e300));
    image->drawInRect(QRectF(30, 0, 1e-300, 5));
    image->drawInRect(QRectF(-1e9, 30, 1e9, 1e9));
  }
  EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
}

TEST(Image, EnlargesWithoutBound) {
  Canvas canvas({20, 20});
  drawing(QSizeF(4, 4))->drawInRect(QRectF(-1e6, -1e6, 4e6, 4e6));
  canvas.finished();
  EXPECT_EQ(inkBounds(canvas.image), QRect(0, 0, 20, 20));
  EXPECT_EQ(canvas.pixel(10, 10), QColor(Qt::blue));
}

TEST(Image, ReadsOtherFormatsByTheirContent) {
  for (const char* format : {"PNG", "BMP", "PPM", "XPM"}) {
    QByteArray data;
    QBuffer buffer(&data);
    ASSERT_TRUE(marked(6, 3).save(&buffer, format));
    const Ref<Image> image = Image::initWithData(data);
    ASSERT_NE(image, nullptr) << format;
    EXPECT_EQ(image->size(), QSizeF(6, 3)) << format;
    EXPECT_EQ(maximumDifference(image->rasterised(1), marked(6, 3)), 0) << format;
  }
}

TEST(Image, WritesTheSameBytesAgainWhateverTheFormatSaidOfAlpha) {
  // Opaque throughout, in a file that announces an alpha channel.
  QFile file(u"" ZQTICKER_SOURCE_DIR "/fuzz/seeds/image/alpha_flag_without_alpha.webp"_s);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  zq::testing::allowLog(u"WebP"_s);
  const Ref<Image> image = Image::initWithData(file.readAll());
  if (!image)
    GTEST_SKIP() << "this desktop reads no WebP";
  const auto tiff = image->TIFFRepresentation();
  EXPECT_EQ(Image::initWithData(*tiff)->TIFFRepresentation(), tiff);
}

TEST(Image, TakesAPictureOf144DotsAnInchAsTwoPixelsAPoint) {
  QImage bitmap = marked(6, 4);
  bitmap.setDotsPerMeterX(5669);
  bitmap.setDotsPerMeterY(5669);
  QByteArray data;
  QBuffer buffer(&data);
  ASSERT_TRUE(bitmap.save(&buffer, "PNG"));
  EXPECT_EQ(Image::initWithData(data)->size(), QSizeF(3, 2));
}

TEST(Image, IsNoImageWhereDataCannotBeDecoded) {
  QByteArray png;
  QBuffer buffer(&png);
  ASSERT_TRUE(marked(64, 64).save(&buffer, "PNG"));
  EXPECT_EQ(Image::initWithData(QByteArray()), nullptr);
  EXPECT_EQ(Image::initWithData("no picture"), nullptr);
  EXPECT_EQ(Image::initWithData("<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'/>"),
            nullptr);
  for (qsizetype length = 0; length < png.size() - 16; length += 7)
    EXPECT_EQ(Image::initWithData(png.left(length)), nullptr) << length;
}

TEST(Image, RefusesAPictureThatIsTooLargeBeforeDecodingIt) {
  // A PNG header of 100,000 by 100,000 pixels.
  QByteArray png =
      QByteArray::fromHex("89504e470d0a1a0a0000000d49484452000186a0000186a00806000000");
  png += QByteArray::fromHex("c6b5d8e3") + QByteArray(64, '\0');
  EXPECT_EQ(Image::initWithData(png), nullptr);
}

TEST(Image, ReadsFilesAndSaysWhyItCannot) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"picture.png"_s);
  ASSERT_TRUE(marked(6, 3).save(path));
  QString error = u"untouched"_s;
  const Ref<Image> image = Image::initWithContentsOfFile(path, &error);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->size(), QSizeF(6, 3));
  EXPECT_EQ(error, u"untouched"_s);

  EXPECT_EQ(Image::initWithContentsOfFile(folder.filePath(u"none.png"_s), &error), nullptr);
  EXPECT_TRUE(error.contains(u"none.png: "_s)) << error.toStdString();
  QFile text(folder.filePath(u"text.png"_s));
  ASSERT_TRUE(text.open(QIODevice::WriteOnly));
  text.write("no picture");
  text.close();
  EXPECT_EQ(Image::initWithContentsOfFile(text.fileName(), &error), nullptr);
  EXPECT_TRUE(error.endsWith(u"The file holds no picture in a known format."_s));
  EXPECT_EQ(Image::initWithContentsOfFile(text.fileName()), nullptr);
  EXPECT_EQ(Image::initWithContentsOfFile(u"/dev/zero"_s, &error), nullptr);
  EXPECT_EQ(Image::initWithContentsOfFile(folder.path(), &error), nullptr);
  EXPECT_TRUE(error.endsWith(u"It is not an ordinary file."_s));
  EXPECT_EQ(Image::fromQImage(QImage()), nullptr);
}
