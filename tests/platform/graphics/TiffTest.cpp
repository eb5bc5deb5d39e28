// Pictures as TIFF data, written by this library and by libtiff itself.
#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/platform/graphics/TiffFile_p.h"

#include <gtest/gtest.h>

#include <tiffio.h>

#include <numeric>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::maximumDifference;

namespace {

// A picture without repetitions, half of it transparent to different degrees.
QImage colourful(int width, int height, QImage::Format format) {
  QImage image(width, height, QImage::Format_ARGB32);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      image.setPixel(x, y,
                     qRgba(x * 7 % 256, y * 11 % 256, (x + y) * 3 % 256,
                           format == QImage::Format_RGB32 ? 255 : (x * 13 + y) % 256));
  return image.convertToFormat(format);
}

// What a page states, and its samples, as libtiff writes them.
struct PageOptions {
  std::uint32_t width = 4;
  std::uint32_t height = 3;
  std::uint16_t samples = 3;
  std::uint16_t bits = 8;
  std::uint16_t photometric = PHOTOMETRIC_RGB;
  std::uint16_t compression = COMPRESSION_NONE;
  std::uint16_t extraSample = 0;
  double dotsPerInch = 0;
  std::uint16_t unit = RESUNIT_INCH;
  std::uint32_t rowsPerStrip = 2;
  std::uint32_t kind = 0;
  bool tiled = false;
  std::uint16_t orientation = ORIENTATION_TOPLEFT;
};

void appendPage(TIFF* tiff, const PageOptions& page, const std::vector<uchar>& samples) {
  TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, page.kind);
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.height);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, page.samples);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, page.bits);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, page.photometric);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, page.compression);
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, page.orientation);
  if (page.extraSample) {
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &page.extraSample);
  }
  if (page.photometric == PHOTOMETRIC_PALETTE) {
    std::vector<std::uint16_t> ramp(256);
    std::iota(ramp.begin(), ramp.end(), std::uint16_t(0));
    for (std::uint16_t& value : ramp)
      value = std::uint16_t(value * 257);
    const std::vector<std::uint16_t> zeros(256);
    TIFFSetField(tiff, TIFFTAG_COLORMAP, ramp.data(), zeros.data(), zeros.data());
  }
  if (page.dotsPerInch > 0) {
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, page.unit);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, page.dotsPerInch);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, page.dotsPerInch);
  }
  if (page.tiled) {
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 16);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
    std::vector<uchar> tile(std::size_t(16) * 16 * page.samples, 0x55);
    for (std::uint32_t i = 0; i < TIFFNumberOfTiles(tiff); ++i)
      ASSERT_EQ(TIFFWriteEncodedTile(tiff, i, tile.data(), tmsize_t(tile.size())),
                tmsize_t(tile.size()));
  } else {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, page.rowsPerStrip);
    const std::size_t row = (std::size_t(page.width) * page.samples * page.bits + 7) / 8;
    for (std::uint32_t y = 0; y < page.height; ++y) {
      std::vector<uchar> line(samples.begin() + std::ptrdiff_t(y * row),
                              samples.begin() + std::ptrdiff_t((y + 1) * row));
      ASSERT_EQ(TIFFWriteScanline(tiff, line.data(), y, 0), 1);
    }
  }
  ASSERT_EQ(TIFFWriteDirectory(tiff), 1);
}

std::vector<uchar> ramp(std::size_t count) {
  std::vector<uchar> samples(count);
  std::iota(samples.begin(), samples.end(), uchar(10));
  return samples;
}

QByteArray onePage(const PageOptions& page, const std::vector<uchar>& samples) {
  TiffFile file = TiffFile::writing();
  appendPage(file.handle(), page, samples);
  return file.close();
}

// Overwrites the value of a LONG or SHORT entry of the first directory of a little-endian file.
QByteArray withEntry(QByteArray data, std::uint16_t tag, std::uint32_t value) {
  const auto read = [&](qsizetype at, int bytes) {
    std::uint32_t number = 0;
    for (int i = bytes - 1; i >= 0; --i)
      number = number << 8 | quint8(data[at + i]);
    return number;
  };
  const qsizetype directory = read(4, 4);
  const auto count = read(directory, 2);
  for (std::uint32_t i = 0; i < count; ++i) {
    const qsizetype entry = directory + 2 + qsizetype(i) * 12;
    if (read(entry, 2) != tag)
      continue;
    data[entry + 2] = 4; // LONG
    for (int byte = 0; byte < 4; ++byte)
      data[entry + 8 + byte] = char(value >> (8 * byte));
    return data;
  }
  ADD_FAILURE() << "no entry " << tag;
  return data;
}

Ref<Image> drawing(QSizeF size) {
  const Ref<Image> image = Image::make(size);
  const ImageFocus focus(*image);
  GraphicsContext* context = GraphicsContext::currentContext();
  context->setFillColor(Color::deviceRGB(1, 0, 0));
  context->fillRect(QRectF(0, 0, size.width() / 2, size.height()));
  return image;
}

} // namespace

TEST(Tiff, KeepsBitmapsPixelForPixel) {
  for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied})
    for (const QSize size : {QSize(1, 1), QSize(13, 7), QSize(300, 1), QSize(1, 300),
                             QSize(1000, 400), QSize(9000, 20)}) {
      const QImage bitmap = colourful(size.width(), size.height(), format);
      const auto data = Image::fromQImage(bitmap)->TIFFRepresentation();
      ASSERT_TRUE(data);
      const Ref<Image> image = Image::initWithData(*data);
      ASSERT_NE(image, nullptr);
      EXPECT_EQ(image->size(), QSizeF(size));
      EXPECT_EQ(image->representations().front()->bitmap().format(), format);
      EXPECT_EQ(image->representations().front()->bitmap(), bitmap);
    }
}

TEST(Tiff, CopiesThroughDataAreEqual) {
  const Ref<Image> image = Image::fromQImage(colourful(40, 20, QImage::Format_RGB32));
  image->setSize(QSizeF(33.3, 12.75));
  const Ref<Image> decoded = Image::initWithData(*image->TIFFRepresentation());
  EXPECT_NEAR(decoded->size().width(), 33.3, 1e-5);
  EXPECT_EQ(decoded->size().height(), 12.75);
}

TEST(Tiff, TheSamePictureGivesTheSameBytes) {
  const auto first = drawing(QSizeF(31.7, 11))->TIFFRepresentation();
  const auto second = drawing(QSizeF(31.7, 11))->TIFFRepresentation();
  EXPECT_EQ(first, second);
  EXPECT_TRUE(first->startsWith("II*"));
}

TEST(Tiff, WritesDrawingsAtTwoPixelsAPoint) {
  const Ref<Image> image = drawing(QSizeF(30, 10));
  const Ref<Image> decoded = Image::initWithData(*image->TIFFRepresentation());
  EXPECT_EQ(decoded->size(), QSizeF(30, 10));
  ASSERT_EQ(decoded->representations().size(), 1U);
  EXPECT_EQ(decoded->representations().front()->pixelSize(), QSize(60, 20));
  EXPECT_EQ(maximumDifference(decoded->rasterised(2), image->rasterised(2)), 0);
}

TEST(Tiff, WritesLongDrawingsInTilesWithoutSeams) {
  const Ref<Image> image = drawing(QSizeF(30000, 20));
  const auto data = image->TIFFRepresentation();
  ASSERT_TRUE(data);
  EXPECT_LT(data->size(), 1 << 20);
  const Ref<Image> decoded = Image::initWithData(*data);
  ASSERT_NE(decoded, nullptr);
  EXPECT_EQ(decoded->size(), QSizeF(30000, 20));
  EXPECT_EQ(decoded->rasterised(2, QRect(29000, 0, 2000, 40)),
            image->rasterised(2, QRect(29000, 0, 2000, 40)));
}

TEST(Tiff, WritesDrawingsBeyondTheLimitWithFewerPixels) {
  const QSizeF size(2e7, 14);
  const auto data = drawing(size)->TIFFRepresentation();
  ASSERT_TRUE(data);
  const Ref<Image> decoded = Image::initWithData(*data);
  ASSERT_NE(decoded, nullptr);
  EXPECT_NEAR(decoded->size().width(), size.width(), size.width() * 1e-6);
  const QSize pixels = decoded->representations().front()->pixelSize();
  EXPECT_LE(qint64(pixels.width()) * pixels.height(), Image::MaximumWrittenPixels);
  EXPECT_GT(qint64(pixels.width()) * pixels.height(), Image::MaximumWrittenPixels / 2);
}

TEST(Tiff, KeepsSeveralRepresentations) {
  const QImage one = colourful(10, 6, QImage::Format_RGB32);
  const QImage two = colourful(20, 12, QImage::Format_ARGB32_Premultiplied);
  const Ref<Image> image =
      Image::make(QSizeF(10, 6), {ImageRepresentation::make(one, QSizeF(10, 6)),
                                  ImageRepresentation::make(two, QSizeF(10, 6))});
  const Ref<Image> decoded = Image::initWithData(*image->TIFFRepresentation());
  EXPECT_EQ(decoded->size(), QSizeF(10, 6));
  ASSERT_EQ(decoded->representations().size(), 2U);
  EXPECT_EQ(decoded->representations()[0]->bitmap(), one);
  EXPECT_EQ(decoded->representations()[1]->bitmap(), two);
  EXPECT_TRUE(decoded->isEqual(*image));
}

TEST(Tiff, TakesTheSizeFromTheResolution) {
  struct Row {
    double resolution;
    std::uint16_t unit;
    double points;
  };
  for (const Row& row :
       {Row{0, RESUNIT_INCH, 4}, Row{72, RESUNIT_INCH, 4}, Row{144, RESUNIT_INCH, 2},
        Row{300, RESUNIT_INCH, 0.96}, Row{72, RESUNIT_NONE, 4},
        Row{10, RESUNIT_CENTIMETER, 4 * 7.2 / 2.54}, Row{1e-30, RESUNIT_INCH, 4}}) {
    PageOptions page;
    page.dotsPerInch = row.resolution;
    page.unit = row.unit;
    const Ref<Image> image = Image::initWithData(onePage(page, ramp(36)));
    ASSERT_NE(image, nullptr);
    EXPECT_NEAR(image->size().width(), row.points, 1e-5) << row.resolution;
  }
}

TEST(Tiff, ReadsEveryCommonKindOfSamples) {
  struct Row {
    const char* name;
    PageOptions page;
    std::vector<uchar> samples;
    QColor first;
  };
  PageOptions rgb;
  PageOptions gray{.samples = 1, .photometric = PHOTOMETRIC_MINISBLACK};
  PageOptions white{.samples = 1, .photometric = PHOTOMETRIC_MINISWHITE};
  PageOptions palette{.samples = 1, .photometric = PHOTOMETRIC_PALETTE};
  PageOptions sixteen{.bits = 16};
  PageOptions bilevel{.samples = 1, .bits = 1, .photometric = PHOTOMETRIC_MINISBLACK};
  PageOptions unassociated{.samples = 4, .extraSample = EXTRASAMPLE_UNASSALPHA};
  PageOptions associated{.samples = 4, .extraSample = EXTRASAMPLE_ASSOCALPHA};
  std::vector<uchar> transparent(48, 0);
  transparent[0] = 200;
  transparent[3] = 128;
  std::vector<uchar> premultiplied(48, 0);
  premultiplied[0] = 100;
  premultiplied[3] = 128;
  const Row rows[] = {
      {"RGB", rgb, ramp(36), QColor(10, 11, 12)},
      {"gray", gray, ramp(12), QColor(10, 10, 10)},
      {"white is zero", white, ramp(12), QColor(245, 245, 245)},
      {"palette", palette, ramp(12), QColor(10, 0, 0)},
      {"sixteen bits", sixteen, std::vector<uchar>(72, 0x40), QColor(0x40, 0x40, 0x40)},
      {"one bit", bilevel, std::vector<uchar>(3, 0x80), QColor(255, 255, 255)},
      {"alpha beside the colours", unassociated, transparent, QColor(200, 0, 0, 128)},
      {"alpha within the colours", associated, premultiplied, QColor(199, 0, 0, 128)},
  };
  for (const Row& row : rows)
    for (const std::uint16_t compression :
         {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS}) {
      PageOptions page = row.page;
      page.compression = compression;
      const Ref<Image> image = Image::initWithData(onePage(page, row.samples));
      ASSERT_NE(image, nullptr) << row.name << ' ' << compression;
      const QColor pixel = image->representations().front()->bitmap().pixelColor(0, 0);
      EXPECT_NEAR(pixel.red(), row.first.red(), 1) << row.name;
      EXPECT_NEAR(pixel.green(), row.first.green(), 1) << row.name;
      EXPECT_NEAR(pixel.blue(), row.first.blue(), 1) << row.name;
      EXPECT_EQ(pixel.alpha(), row.first.alpha()) << row.name;
    }
}

TEST(Tiff, LimitsColoursToTheirAlpha) {
  PageOptions page{.samples = 4, .extraSample = EXTRASAMPLE_ASSOCALPHA};
  std::vector<uchar> lying(48, 255);
  lying[3] = 10;
  const Ref<Image> image = Image::initWithData(onePage(page, lying));
  EXPECT_EQ(
      *reinterpret_cast<const QRgb*>(image->representations().front()->bitmap().constScanLine(0)),
      qRgba(10, 10, 10, 10));
}

TEST(Tiff, ReadsTiles) {
  PageOptions page{.width = 20, .height = 18, .tiled = true};
  const Ref<Image> image = Image::initWithData(onePage(page, {}));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->rasterised(1).pixelColor(19, 17), QColor(0x55, 0x55, 0x55));
}

TEST(Tiff, MirrorsRowsAndColumnsThatRunTheOtherWay) {
  // The first sample stored is white; two strips.
  std::vector<uchar> samples(12, 0);
  samples[0] = 255;
  const auto whiteAt = [&](std::uint16_t orientation) {
    const PageOptions page{
        .samples = 1, .photometric = PHOTOMETRIC_MINISBLACK, .orientation = orientation};
    const QImage pixels = Image::initWithData(onePage(page, samples))->rasterised(1);
    for (int y = 0; y < pixels.height(); ++y)
      for (int x = 0; x < pixels.width(); ++x)
        if (pixels.pixelColor(x, y) == QColor(Qt::white))
          return QPoint(x, y);
    return QPoint(-1, -1);
  };
  EXPECT_EQ(whiteAt(ORIENTATION_TOPLEFT), QPoint(0, 0));
  EXPECT_EQ(whiteAt(ORIENTATION_TOPRIGHT), QPoint(3, 0));
  EXPECT_EQ(whiteAt(ORIENTATION_BOTRIGHT), QPoint(3, 2));
  EXPECT_EQ(whiteAt(ORIENTATION_BOTLEFT), QPoint(0, 2));
}

TEST(Tiff, LeavesOutMasks) {
  TiffFile file = TiffFile::writing();
  appendPage(file.handle(), {.kind = FILETYPE_MASK}, ramp(36));
  appendPage(file.handle(), {.width = 3, .height = 4}, ramp(36));
  const Ref<Image> image = Image::initWithData(file.close());
  ASSERT_NE(image, nullptr);
  ASSERT_EQ(image->representations().size(), 1U);
  EXPECT_EQ(image->size(), QSizeF(3, 4));
}

TEST(Tiff, RefusesHeadersThatLie) {
  const QByteArray good = onePage({}, ramp(36));
  ASSERT_NE(Image::initWithData(good), nullptr);
  const auto refused = [](const QByteArray& data) { return !Image::initWithData(data); };
  EXPECT_TRUE(refused(withEntry(good, TIFFTAG_IMAGEWIDTH, 0)));
  EXPECT_TRUE(refused(withEntry(good, TIFFTAG_IMAGELENGTH, 0)));
  EXPECT_TRUE(
      refused(withEntry(withEntry(good, TIFFTAG_IMAGEWIDTH, 100000), TIFFTAG_IMAGELENGTH, 100000)));
  EXPECT_TRUE(refused(withEntry(good, TIFFTAG_IMAGEWIDTH, 0xffffffff)));
  EXPECT_TRUE(refused(withEntry(good, TIFFTAG_IMAGEWIDTH, 5000)));
  EXPECT_TRUE(refused(withEntry(good, TIFFTAG_COMPRESSION, COMPRESSION_LZW)));
  EXPECT_TRUE(refused(withEntry(good, TIFFTAG_COMPRESSION, COMPRESSION_OJPEG)));
  EXPECT_TRUE(refused(withEntry(good, TIFFTAG_COMPRESSION, 54321)));
}

TEST(Tiff, RefusesTruncatedFiles) {
  const QByteArray good =
      *Image::fromQImage(colourful(60, 40, QImage::Format_RGB32))->TIFFRepresentation();
  for (qsizetype length = 0; length < good.size(); length += 13)
    EXPECT_EQ(Image::initWithData(good.left(length)), nullptr) << length;
}

TEST(Tiff, ALargePageWithDamagedPixelsShowsNothing) {
  // Noise, so that damage is surely found, and large enough to be decoded late.
  QImage noise(1100, 1000, QImage::Format_RGB32);
  std::uint32_t state = 1;
  for (int y = 0; y < noise.height(); ++y)
    for (int x = 0; x < noise.width(); ++x)
      noise.setPixel(x, y, 0xff000000 | (state = state * 1664525 + 1013904223) >> 8);
  QByteArray data = *Image::fromQImage(noise)->TIFFRepresentation();
  ASSERT_NE(Image::initWithData(data), nullptr);
  for (qsizetype i = data.size() / 4; i < data.size() / 2; ++i)
    data[i] = char(0xff);
  const Ref<Image> image = Image::initWithData(data);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->size(), QSizeF(1100, 1000));
  EXPECT_EQ(image->rasterised(1, QRect(5, 5, 1, 1)).pixelColor(0, 0).alpha(), 0);
  zq::testing::Canvas canvas({20, 20});
  image->dissolveToPoint(QPointF(), 1);
  EXPECT_TRUE(zq::testing::inkBounds(canvas.finished()).isNull());
}

TEST(Tiff, FollowsALoopOfPagesOnlyOnce) {
  QByteArray data = onePage({}, ramp(36));
  // The offset of the next directory, which follows the entries, leads back to this one.
  const qsizetype directory = quint8(data[4]) | quint8(data[5]) << 8;
  const qsizetype next = directory + 2 + qsizetype(quint8(data[directory])) * 12;
  data[next] = data[4];
  data[next + 1] = data[5];
  const Ref<Image> image = Image::initWithData(data);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->representations().size(), 1U);
}
