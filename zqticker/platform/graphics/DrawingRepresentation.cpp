#include "zqticker/platform/graphics/DrawingRepresentation_p.h"

#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/pixels_p.h"

#include <QtGui/QPainter>

#include <cmath>

namespace zq::platform {

DrawingRepresentation::DrawingRepresentation(DrawingRecording recording)
    : ImageRepresentation(recording.size), recording_(std::move(recording)) {}

DrawingRepresentation::~DrawingRepresentation() = default;

RasterGrid DrawingRepresentation::grid(QSizeF size, double scaleX, double scaleY) const {
  // A thousandth of a pixel is the noise of the arithmetic, not a part of the picture.
  const auto covering = [](double length) { return wholePixels(std::ceil(length - 0.001)); };
  return {QSize(covering(size.width() * scaleX), covering(size.height() * scaleY)),
          scaleX * size.width() / this->size().width(),
          scaleY * size.height() / this->size().height()};
}

QImage DrawingRepresentation::render(const RasterGrid& grid, const QRect& part) const {
  QImage image(part.size(), QImage::Format_ARGB32_Premultiplied);
  if (image.isNull())
    return image;
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.translate(-part.topLeft());
  painter.setClipRect(part);
  painter.scale(grid.scaleX, grid.scaleY);
  GraphicsContext context(
      &painter, QSizeF(grid.pixels.width() / grid.scaleX, grid.pixels.height() / grid.scaleY));
  recording_.replay(context);
  return image;
}

} // namespace zq::platform
