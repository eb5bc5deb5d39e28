// Representations as pages of TIFF files.
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/platform/graphics/TiffFile_p.h"
#include "zqticker/platform/graphics/picture_data_p.h"

#include <tiffio.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace zq::platform {

namespace {

// Pixels a point of a recorded drawing.
constexpr double drawingScale = 2;
// Drawings are flat colour and clear ground: zlib's fastest level without a predictor writes text
// at twice the speed of its usual level with one, in four fifths of the bytes.
constexpr int drawingZipQuality = 1;
// Rows are written in strips of about so many pixels. A picture whose strips would be low and wide
// is written in tiles: a drawing then runs once for each tile, not once for each few rows.
constexpr int stripPixels = 1 << 18;
constexpr int maximumStripWidth = 8192;
constexpr int tileWidth = 1024;
constexpr int maximumTileHeight = 256;
// Tile heights must be multiples of this.
constexpr int tileStep = 16;

// Writes rows of `image` as samples, `samples` a pixel, into a block `stride` pixels wide.
void putSamples(const QImage& image, int samples, int stride, std::vector<uchar>& block) {
  const QImage rows = image.convertToFormat(samples == 4 ? QImage::Format_RGBA8888_Premultiplied
                                                         : QImage::Format_RGB888);
  const std::size_t rowBytes = std::size_t(rows.width()) * std::size_t(samples);
  const std::size_t blockRowBytes = std::size_t(stride) * std::size_t(samples);
  for (int y = 0; y < rows.height(); ++y)
    std::memcpy(block.data() + std::size_t(y) * blockRowBytes, rows.constScanLine(y), rowBytes);
}

RasterGrid gridForWriting(const ImageRepresentation& representation, QSizeF size) {
  if (representation.isBitmap())
    return {representation.pixelSize(),
            representation.pixelSize().width() / representation.size().width(),
            representation.pixelSize().height() / representation.size().height()};
  const double area = size.width() * size.height();
  double scale = std::min(drawingScale, std::sqrt(double(Image::MaximumWrittenPixels) / area));
  RasterGrid grid = representation.grid(size, scale, scale);
  // Rounding up to whole pixels may exceed the limit.
  while (qint64(grid.pixels.width()) * grid.pixels.height() > Image::MaximumWrittenPixels) {
    scale *= 0.75;
    grid = representation.grid(size, scale, scale);
  }
  return grid;
}

// Writes the pixels of `grid` in strips or in tiles, each rendered by itself.
bool writePixels(TIFF* tiff, const ImageRepresentation& representation, const RasterGrid& grid,
                 int samples) {
  const QSize pixels = grid.pixels;
  const bool tiled = pixels.width() > maximumStripWidth;
  QSize step(pixels.width(), std::clamp(stripPixels / pixels.width(), 1, pixels.height()));
  if (tiled) {
    const int height = (std::min(pixels.height(), maximumTileHeight) + tileStep - 1) / tileStep;
    step = QSize(tileWidth, height * tileStep);
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, std::uint32_t(step.width()));
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, std::uint32_t(step.height()));
  } else {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, std::uint32_t(step.height()));
  }
  std::vector<uchar> block;
  std::uint32_t index = 0;
  for (int y = 0; y < pixels.height(); y += step.height())
    for (int x = 0; x < pixels.width(); x += step.width()) {
      const QRect part = QRect(QPoint(x, y), step) & QRect(QPoint(), pixels);
      const QSize written = tiled ? step : part.size();
      block.assign(
          std::size_t(written.width()) * std::size_t(written.height()) * std::size_t(samples), 0);
      putSamples(representation.render(grid, part), samples, written.width(), block);
      const auto bytes = tmsize_t(block.size());
      const tmsize_t count = tiled ? TIFFWriteEncodedTile(tiff, index, block.data(), bytes)
                                   : TIFFWriteEncodedStrip(tiff, index, block.data(), bytes);
      if (count != bytes)
        return false;
      ++index;
    }
  return true;
}

bool writePage(TIFF* tiff, const ImageRepresentation& representation, QSizeF size) {
  const RasterGrid grid = gridForWriting(representation, size);
  if (grid.pixels.isEmpty())
    return false;
  const bool opaque =
      representation.isBitmap() && representation.bitmap().format() == QImage::Format_RGB32;
  const std::uint16_t samples = opaque ? 3 : 4;
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, std::uint32_t(grid.pixels.width()));
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, std::uint32_t(grid.pixels.height()));
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  if (!opaque) {
    const std::uint16_t premultiplied = EXTRASAMPLE_ASSOCALPHA;
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &premultiplied);
  }
  const bool deflate = TIFFIsCODECConfigured(COMPRESSION_ADOBE_DEFLATE);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, deflate ? COMPRESSION_ADOBE_DEFLATE : COMPRESSION_LZW);
  if (representation.isBitmap())
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
  else if (deflate)
    TIFFSetField(tiff, TIFFTAG_ZIPQUALITY, drawingZipQuality);
  TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 72 * grid.pixels.width() / size.width());
  TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 72 * grid.pixels.height() / size.height());
  return writePixels(tiff, representation, grid, samples) && TIFFWriteDirectory(tiff);
}

} // namespace

std::optional<QByteArray> tiffData(QSizeF size, const Image::Representations& representations) {
  TiffFile file = TiffFile::writing();
  if (!file.handle())
    return std::nullopt;
  for (const auto& representation : representations)
    if (!writePage(file.handle(), *representation, size))
      return std::nullopt;
  return file.close();
}

} // namespace zq::platform
