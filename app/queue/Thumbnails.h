// Pictures made small, once each.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QCache>
#include <QtCore/QSizeF>
#include <QtGui/QImage>

namespace zq::platform {
class Image;
} // namespace zq::platform

namespace zq::app {

// The small pictures that were asked for last, as many as fit into MostBytes.
//
// Thread: main.
class Thumbnails {
 public:
  static constexpr qsizetype MostBytes = qsizetype(8) << 20;

  Thumbnails();
  ~Thumbnails();

  // `image` as it fits into `room` in points, never larger than it is, at `scale` device pixels a
  // point. Null for a picture that cannot be drawn. The same image is drawn anew only after it has
  // gone from here, or for another room or scale.
  QImage thumbnail(const platform::Ref<platform::Image>& image, QSizeF room, double scale);

  qsizetype byteCount() const { return pictures_.totalCost(); }
  // How many pictures were drawn.
  int drawnCount() const { return drawn_; }

 private:
  struct Picture;

  QCache<const platform::Image*, Picture> pictures_;
  int drawn_ = 0;
};

} // namespace zq::app
