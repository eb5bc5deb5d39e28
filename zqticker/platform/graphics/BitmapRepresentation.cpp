#include "zqticker/platform/graphics/BitmapRepresentation_p.h"

#include "zqticker/platform/graphics/pixels_p.h"

#include <algorithm>
#include <utility>

namespace zq::platform {

BitmapRepresentation::BitmapRepresentation(const QImage& bitmap, QSizeF size)
    : ImageRepresentation(size), pixelSize_(bitmap.size()), bitmap_(inWorkingFormat(bitmap)) {}

BitmapRepresentation::BitmapRepresentation(QSize pixelSize, QSizeF size, Decoder decode)
    : ImageRepresentation(size), pixelSize_(pixelSize), decode_(std::move(decode)) {}

BitmapRepresentation::~BitmapRepresentation() = default;

QImage BitmapRepresentation::bitmap() const {
  if (decode_) {
    const Decoder decode = std::exchange(decode_, nullptr);
    const QImage decoded = decode();
    if (decoded.size() == pixelSize_)
      bitmap_ = inWorkingFormat(decoded);
  }
  return bitmap_;
}

RasterGrid BitmapRepresentation::grid(QSizeF size, double scaleX, double scaleY) const {
  const QSize pixels(std::max(1, wholePixels(size.width() * scaleX + 0.5)),
                     std::max(1, wholePixels(size.height() * scaleY + 0.5)));
  return {pixels, double(pixels.width()) / this->size().width(),
          double(pixels.height()) / this->size().height()};
}

QImage BitmapRepresentation::render(const RasterGrid& grid, const QRect& part) const {
  const QImage source = bitmap();
  if (source.isNull()) {
    QImage empty(part.size(), QImage::Format_ARGB32_Premultiplied);
    empty.fill(Qt::transparent);
    return empty;
  }
  return resampled(source, grid.pixels, part);
}

} // namespace zq::platform
