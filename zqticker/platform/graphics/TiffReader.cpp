// Pages of TIFF files as representations.
#include "zqticker/platform/graphics/BitmapRepresentation_p.h"
#include "zqticker/platform/graphics/TiffFile_p.h"
#include "zqticker/platform/graphics/picture_data_p.h"

#include <tiffio.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace zq::platform {

namespace {

// Pages that are looked at; the representations of one picture are a few.
constexpr int maximumPages = 64;
// Pages up to this many pixels are decoded at once, so that damaged pixels make no image.
constexpr qint64 smallPage = qint64(1) << 20;

struct Page {
  QSize pixels;
  QSizeF size;
};

// Whether libtiff may be trusted with a compression; old-style JPEG and the rarer ones stay out.
bool isKnownCompression(std::uint16_t compression) {
  switch (compression) {
  case COMPRESSION_NONE:
  case COMPRESSION_CCITTRLE:
  case COMPRESSION_CCITTFAX3:
  case COMPRESSION_CCITTFAX4:
  case COMPRESSION_LZW:
  case COMPRESSION_JPEG:
  case COMPRESSION_ADOBE_DEFLATE:
  case COMPRESSION_DEFLATE:
  case COMPRESSION_PACKBITS:
    return TIFFIsCODECConfigured(compression);
  default:
    return false;
  }
}

// Whether every strip or tile lies inside the file.
bool isComplete(TIFF* tiff, std::uint64_t fileSize) {
  const std::uint32_t count =
      TIFFIsTiled(tiff) ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
  if (count == 0 || count > fileSize)
    return false;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint64_t offset = TIFFGetStrileOffset(tiff, i);
    const std::uint64_t bytes = TIFFGetStrileByteCount(tiff, i);
    if (offset == 0 || bytes == 0 || offset > fileSize || bytes > fileSize - offset)
      return false;
  }
  return true;
}

// Points of so many pixels. Sixty-fourths of a point that the single precision of a resolution
// has blurred come back exactly, whole points among them.
double pointsOf(std::uint32_t pixels, double dotsPerInch) {
  const double points = pixels * 72.0 / dotsPerInch;
  const double rounded = std::round(points * 64) / 64;
  return std::abs(points - rounded) <= points * 2e-7 ? rounded : points;
}

// 72 dots an inch where the page states no sensible resolution.
double dotsPerInch(TIFF* tiff, std::uint32_t tag) {
  float resolution = 0;
  std::uint16_t unit = RESUNIT_INCH;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
  if (!TIFFGetField(tiff, tag, &resolution) || unit == RESUNIT_NONE)
    return 72;
  const double result = unit == RESUNIT_CENTIMETER ? resolution * 2.54 : double(resolution);
  return std::isfinite(result) && result >= 1e-3 && result <= 1e6 ? result : 72;
}

// The present page, where it holds a picture that can be shown.
std::optional<Page> readPage(TIFF* tiff, std::uint64_t fileSize) {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t kind = 0;
  std::uint16_t compression = 0;
  char message[1024];
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &kind);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
  if (!TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width) ||
      !TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height) || width == 0 || height == 0 ||
      std::uint64_t(width) * height > std::uint64_t(Image::MaximumPixels) ||
      (kind & FILETYPE_MASK) || !isKnownCompression(compression) || !isComplete(tiff, fileSize) ||
      !TIFFRGBAImageOK(tiff, message))
    return std::nullopt;
  // A strip or tile is decoded as a whole: a small page must not ask for a large one.
  std::uint32_t blockWidth = width;
  std::uint32_t blockHeight = height;
  if (TIFFIsTiled(tiff)) {
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &blockWidth);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &blockHeight);
  }
  if (std::uint64_t(blockWidth) * blockHeight > std::uint64_t(Image::MaximumPixels))
    return std::nullopt;
  return Page{QSize(int(width), int(height)),
              QSizeF(pointsOf(width, dotsPerInch(tiff, TIFFTAG_XRESOLUTION)),
                     pointsOf(height, dotsPerInch(tiff, TIFFTAG_YRESOLUTION)))};
}

// Copies a block of pixels that libtiff delivers bottom row first. Colours above their alpha,
// which only a damaged or lying file has, are limited to it.
void copyBlock(const std::vector<std::uint32_t>& block, std::uint32_t stride, std::uint32_t rows,
               QImage& image, std::uint32_t left, std::uint32_t top) {
  const std::uint32_t columns = std::min(stride, std::uint32_t(image.width()) - left);
  for (std::uint32_t y = 0; y < rows; ++y) {
    const std::uint32_t* in = block.data() + std::size_t(rows - 1 - y) * stride;
    auto* out = reinterpret_cast<QRgb*>(image.scanLine(int(top + y))) + left;
    for (std::uint32_t x = 0; x < columns; ++x) {
      const std::uint32_t pixel = in[x];
      const int alpha = int(TIFFGetA(pixel));
      out[x] = qRgba(std::min(int(TIFFGetR(pixel)), alpha), std::min(int(TIFFGetG(pixel)), alpha),
                     std::min(int(TIFFGetB(pixel)), alpha), alpha);
    }
  }
}

// Decodes strip by strip or tile by tile; a null image where one of them is damaged.
QImage decodePixels(TIFF* tiff, QSize pixels) {
  QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
  if (image.isNull())
    return {};
  const auto width = std::uint32_t(pixels.width());
  const auto height = std::uint32_t(pixels.height());
  std::uint32_t blockWidth = width;
  std::uint32_t blockHeight = height;
  const bool tiled = TIFFIsTiled(tiff);
  if (tiled) {
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &blockWidth);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &blockHeight);
  } else {
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &blockHeight);
    blockHeight = std::min(blockHeight, height);
  }
  if (blockWidth == 0 || blockHeight == 0)
    return {};
  std::vector<std::uint32_t> block(std::size_t(blockWidth) * blockHeight);
  constexpr int stopOnError = 1;
  for (std::uint32_t y = 0; y < height; y += std::min(blockHeight, height - y)) {
    const std::uint32_t rows = std::min(blockHeight, height - y);
    for (std::uint32_t x = 0; x < width; x += std::min(blockWidth, width - x)) {
      const bool decoded = tiled ? TIFFReadRGBATileExt(tiff, x, y, block.data(), stopOnError)
                                 : TIFFReadRGBAStripExt(tiff, y, block.data(), stopOnError);
      if (!decoded)
        return {};
      // A tile at the lower edge keeps its full height; its rows that lie outside come last.
      if (tiled && rows < blockHeight)
        block.erase(block.begin(), block.begin() + std::ptrdiff_t(blockHeight - rows) * blockWidth);
      copyBlock(block, blockWidth, rows, image, x, y);
      block.resize(std::size_t(blockWidth) * blockHeight);
    }
  }
  return image;
}

// The page as it is to be seen: mirrored where its rows or columns run the other way. Pages that
// lie on their side are shown as they are stored.
QImage decodeUpright(TIFF* tiff, QSize pixels) {
  std::uint16_t orientation = ORIENTATION_TOPLEFT;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &orientation);
  // libtiff would turn each strip by itself.
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  const QImage image = decodePixels(tiff, pixels);
  const bool fromRight = orientation == ORIENTATION_TOPRIGHT || orientation == ORIENTATION_BOTRIGHT;
  const bool fromBelow = orientation == ORIENTATION_BOTLEFT || orientation == ORIENTATION_BOTRIGHT;
  return fromRight || fromBelow ? image.mirrored(fromRight, fromBelow) : image;
}

QImage decodePage(const QByteArray& data, int index, QSize pixels) {
  const TiffFile file = TiffFile::reading(data);
  if (!file.handle() || !TIFFSetDirectory(file.handle(), tdir_t(index)))
    return {};
  return decodeUpright(file.handle(), pixels);
}

} // namespace

Image::Representations representationsFromTiff(const QByteArray& data) {
  Image::Representations representations;
  const TiffFile file = TiffFile::reading(data);
  if (!file.handle())
    return representations;
  for (int index = 0; index < maximumPages; ++index) {
    if (const auto page = readPage(file.handle(), std::uint64_t(data.size()))) {
      if (qint64(page->pixels.width()) * page->pixels.height() > smallPage) {
        const auto decode = [data, index, pixels = page->pixels] {
          return decodePage(data, index, pixels);
        };
        representations.push_back(
            std::make_shared<BitmapRepresentation>(page->pixels, page->size, decode));
      } else if (const QImage image = decodeUpright(file.handle(), page->pixels); !image.isNull()) {
        representations.push_back(std::make_shared<BitmapRepresentation>(image, page->size));
      }
    }
    if (!TIFFReadDirectory(file.handle()))
      break;
  }
  return representations;
}

} // namespace zq::platform
