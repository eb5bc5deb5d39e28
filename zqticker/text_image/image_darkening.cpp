#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/text_image/bitmap_darkening_p.h"
#include "zqticker/text_image/image_additions.h"

#include <QtCore/QLoggingCategory>

#include <algorithm>

namespace zq {

using platform::Color;
using platform::Image;
using platform::ImageRepresentation;
using platform::Ref;

namespace {

Q_LOGGING_CATEGORY(textImageLog, "zqticker.text_image")

constexpr const char* notABitmap = "not a bitmap image rep";

std::array<int, 3> subtrahendsOf(const Ref<Color>& color) {
  // A pattern, which has no components, answers black.
  return {subtrahendFor(color ? color->redComponent() : 0),
          subtrahendFor(color ? color->greenComponent() : 0),
          subtrahendFor(color ? color->blueComponent() : 0)};
}

} // namespace

Ref<Image> darkenedImageWithColor(const Ref<Image>& image, const Ref<Color>& color) {
  if (!image)
    return nullptr;
  const Image::Representations& representations = image->representations();
  if (representations.empty() || !representations.front()->isBitmap()) {
    qCWarning(textImageLog, "%s", notABitmap);
    return nullptr;
  }
  // The image's points, not the bitmap's pixels: deliberate, see the header.
  const QSizeF points = image->size();
  if (points.width() * points.height() > double(Image::MaximumPixels))
    return nullptr;
  // One side may be long where the other is a fraction of a point.
  constexpr double longest = double(Image::MaximumPixels);
  const QSize size(int(std::min(points.width(), longest)), int(std::min(points.height(), longest)));

  const QImage bitmap = representations.front()->bitmap();
  const bool hasAlpha = bitmap.isNull() || bitmap.hasAlphaChannel();
  const QImage::Format format =
      hasAlpha ? QImage::Format_RGBA8888_Premultiplied : QImage::Format_RGB888;
  const QImage source = bitmap.convertToFormat(format);
  QImage destination(size, format);
  if (destination.isNull())
    return Image::make(points);
  destination.fill(Qt::transparent);
  darken({source.constBits(), std::size_t(source.sizeInBytes())},
         {destination.bits(), std::size_t(destination.sizeInBytes())},
         {source.bytesPerLine(), source.depth(), hasAlpha}, size, subtrahendsOf(color));
  return Image::make(points, {ImageRepresentation::make(destination, size)});
}

} // namespace zq
