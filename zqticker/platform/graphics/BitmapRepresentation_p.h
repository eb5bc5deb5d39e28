// Pictures made of pixels.
#pragma once

#include "zqticker/platform/graphics/ImageRepresentation.h"

#include <functional>

namespace zq::platform {

// A bitmap, at hand or decoded when first needed.
class BitmapRepresentation : public ImageRepresentation {
 public:
  using Decoder = std::function<QImage()>;

  BitmapRepresentation(const QImage& bitmap, QSizeF size);
  // `decode` is called once, when the pixels are needed; a null image or one of other dimensions
  // than `pixelSize` counts as damaged.
  BitmapRepresentation(QSize pixelSize, QSizeF size, Decoder decode);
  ~BitmapRepresentation() override;

  QSize pixelSize() const override { return pixelSize_; }
  QImage bitmap() const override;
  // Whole pixels, at least one each way: a bitmap's edges stay sharp.
  RasterGrid grid(QSizeF size, double scaleX, double scaleY) const override;
  QImage render(const RasterGrid& grid, const QRect& part) const override;

 private:
  QSize pixelSize_;
  mutable Decoder decode_;
  mutable QImage bitmap_;
};

} // namespace zq::platform
