// Pictures that are recorded drawings.
#pragma once

#include "zqticker/platform/graphics/DrawingRecording_p.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"

namespace zq::platform {

// A recorded drawing, which is turned into pixels at the scale at which it is shown. The drawing's
// lower left corner stands at a corner of the pixels; a fraction of a pixel that remains above and
// to the right is part of the grid.
class DrawingRepresentation : public ImageRepresentation {
 public:
  explicit DrawingRepresentation(DrawingRecording recording);
  ~DrawingRepresentation() override;

  const DrawingRecording& recording() const { return recording_; }

  QSize pixelSize() const override { return {0, 0}; }
  QImage bitmap() const override { return {}; }
  RasterGrid grid(QSizeF size, double scaleX, double scaleY) const override;
  QImage render(const RasterGrid& grid, const QRect& part) const override;

 private:
  DrawingRecording recording_;
};

} // namespace zq::platform
