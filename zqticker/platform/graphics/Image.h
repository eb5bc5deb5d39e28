// Pictures with a size in points.
#pragma once

#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QByteArray>
#include <QtCore/QRect>
#include <QtCore/QSizeF>
#include <QtGui/QImage>

#include <memory>
#include <optional>
#include <vector>

namespace zq::platform {

class ImageRepresentation;

// A picture: a size in points and the representations that show it. A representation is a bitmap,
// or a recorded drawing, which is sharp at any scale. Of several, the one that suits the scale of
// the target is drawn. Representations are immutable; a change of an image gives it new ones.
//
// Drawing goes to the current context; without one nothing happens. What is drawn at the size of
// its own pixels is placed on the nearest whole device pixel and copied unchanged; every other
// scale is smooth. Finished pixels are kept in a cache of bounded size for all images together.
//
// Thread: main.
class ZQTICKER_EXPORT Image : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSImage")

 public:
  using Representations = std::vector<std::shared_ptr<const ImageRepresentation>>;

  // An image of no size without representations; what a decoder starts from.
  Image();
  ~Image() override;

  // An image without representations, to be drawn into. Sides that are negative or no finite
  // numbers are taken as 0.
  static Ref<Image> make(QSizeF sizeInPoints);
  // An image of that size that is shown by `representations`; none of them may be null.
  static Ref<Image> make(QSizeF sizeInPoints, Representations representations);
  // The picture in `data`: TIFF (each page a representation, its resolution giving the size in
  // points), or PNG, JPEG, GIF, BMP, ICO, WebP, PBM, PGM, PPM, XBM, XPM (one pixel a point, or two
  // where the file states 144 dots an inch). Null where nothing can be decoded, and for a picture
  // of more than MaximumPixels.
  static Ref<Image> initWithData(const QByteArray& data);
  // The picture in a file. Null where that fails; `error`, where given, then receives a sentence
  // for people.
  static Ref<Image> initWithContentsOfFile(const QString& path, QString* error = nullptr);
  // A bitmap; its size is its pixels divided by its device pixel ratio. Null for a null image.
  static Ref<Image> fromQImage(const QImage& image);

  // The largest area of one bitmap, in pixels. Sides are not limited.
  static constexpr qint64 MaximumPixels = qint64(1) << 26;
  // The largest area of a recorded drawing written as pixels.
  static constexpr qint64 MaximumWrittenPixels = qint64(1) << 24;

  QSizeF size() const { return size_; }
  // Changes the size in points; what is shown is scaled to it.
  void setSize(QSizeF sizeInPoints);
  // In the order of the file; empty for an image without content.
  const Representations& representations() const { return representations_; }
  // Shows `representations` from now on, at the size that the image has; none of them may be null.
  void setRepresentations(Representations representations);

  // The picture as TIFF data, one page a representation, each with the resolution that gives this
  // image's size. A recorded drawing is written at two pixels a point, with fewer where it would
  // exceed MaximumWrittenPixels. The same picture gives the same bytes. Nothing for an image
  // without representations or size.
  std::optional<QByteArray> TIFFRepresentation() const;

  // Makes a recording context current; what is drawn until unlockFocus is added to the picture, on
  // top of what it shows. Both nest. An unlock without a lock does nothing, and what is drawn into
  // an image without area is lost.
  void lockFocus();
  void unlockFocus();

  // Draws the whole image with its lower left corner at `point`, upright in every context, its
  // opacity multiplied by `fraction`.
  void dissolveToPoint(QPointF point, double fraction) const;
  // Draws `fromRect` of the image (in points; the zero rectangle means all of it) scaled to
  // `rect`. In a flipped context the picture is upright when `respectFlipped`, else upside down.
  void drawInRect(const QRectF& rect, const QRectF& fromRect = QRectF(),
                  CompositingOperation operation = CompositingOperation::SourceOver,
                  double fraction = 1, bool respectFlipped = true) const;

  // The pixels of the image at `scale` device pixels a point: the part `devicePixels`, counted
  // from the upper left, of pixelSize(scale); all of it by default. Null for an empty part, and
  // for one of more than MaximumPixels.
  QImage rasterised(double scale, const QRect& devicePixels = QRect()) const;
  // The size in pixels at `scale`. Fractions of a pixel are rounded up for a recorded drawing,
  // which stands at the lower left of its pixels, and to the nearest for a bitmap.
  QSize pixelSize(double scale) const;

  // Whether `other` is an image of the same size that shows the same.
  bool isEqual(const Object& other) const override;
  // An equal image with representations of its own: a later change of one image does not reach
  // the other.
  Ref<Object> copy() override;

  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  struct Focus;

  QSizeF size_;
  Representations representations_;
  std::unique_ptr<Focus> focus_;
};

// Locks the focus on an image and unlocks it at the end of the scope.
class ZQTICKER_EXPORT ImageFocus {
 public:
  explicit ImageFocus(Image& image);
  ~ImageFocus();
  ImageFocus(const ImageFocus&) = delete;
  ImageFocus& operator=(const ImageFocus&) = delete;

 private:
  Image& image_;
};

} // namespace zq::platform
