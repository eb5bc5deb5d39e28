// The forms in which an image holds its picture.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QRect>
#include <QtCore/QSizeF>
#include <QtGui/QImage>

#include <memory>

namespace zq::platform {

// The pixels into which a representation is turned: how many there are, and how many of them stand
// on a point of the representation's own size.
struct RasterGrid {
  QSize pixels;
  double scaleX = 1;
  double scaleY = 1;
};

// One form of a picture: a bitmap or a recorded drawing. Immutable.
//
// Thread: main.
class ZQTICKER_EXPORT ImageRepresentation {
 public:
  virtual ~ImageRepresentation();
  ImageRepresentation(const ImageRepresentation&) = delete;
  ImageRepresentation& operator=(const ImageRepresentation&) = delete;

  // A bitmap shown at `sizeInPoints`. Null for a null image and for an empty size.
  static std::shared_ptr<const ImageRepresentation> make(const QImage& bitmap, QSizeF sizeInPoints);

  // The bitmap of `representation` shown at `sizeInPoints`. Null for null, a drawing and an empty
  // size.
  static std::shared_ptr<const ImageRepresentation>
  withSize(const std::shared_ptr<const ImageRepresentation>& representation, QSizeF sizeInPoints);

  // A number that no other representation of the process has.
  quint64 identifier() const { return identifier_; }
  // In points.
  QSizeF size() const { return size_; }
  // Of a bitmap; the null size for a drawing, which has no pixels of its own.
  virtual QSize pixelSize() const = 0;
  bool isBitmap() const { return !pixelSize().isNull(); }
  // The pixels of a bitmap in QImage::Format_ARGB32_Premultiplied or Format_RGB32, decoded when
  // first needed. Null for a drawing; transparent where the data turns out to be damaged.
  virtual QImage bitmap() const = 0;

  // The pixels for showing the representation at `size` points with so many pixels a point.
  virtual RasterGrid grid(QSizeF size, double scaleX, double scaleY) const = 0;
  // The part `part` of those pixels, in QImage::Format_ARGB32_Premultiplied.
  virtual QImage render(const RasterGrid& grid, const QRect& part) const = 0;

 protected:
  explicit ImageRepresentation(QSizeF size);

 private:
  quint64 identifier_;
  QSizeF size_;
};

} // namespace zq::platform
