#include "zqticker/text_image/image_additions.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"

#include <algorithm>
#include <cmath>

namespace zq {

using platform::Color;
using platform::CompositingOperation;
using platform::GraphicsContext;
using platform::Image;
using platform::ImageFocus;
using platform::ImageRepresentation;
using platform::Ref;

Ref<Image> normalizeSize(const Ref<Image>& image) {
  if (!image)
    return nullptr;
  Image::Representations representations = image->representations();
  const auto bitmap =
      std::find_if(representations.begin(), representations.end(),
                   [](const auto& representation) { return representation->isBitmap(); });
  if (bitmap == representations.end())
    return image;
  const QSizeF pixels = (*bitmap)->pixelSize();
  if ((*bitmap)->size() != pixels)
    *bitmap = ImageRepresentation::withSize(*bitmap, pixels);
  image->setRepresentations(std::move(representations));
  image->setSize(pixels);
  return image;
}

namespace {

// Fills the area of `image`, drawn at the origin of the current context. At scales that are no
// whole numbers a picture is moved to whole pixels; the fill covers the same ones, so that no rim
// is left beside the picture.
void fillAreaOf(const Ref<Image>& image, const Ref<Color>& color, CompositingOperation operation) {
  GraphicsContext::currentContext()->perform(
      [image = platform::copyOf(image), color, operation](GraphicsContext& context) {
        const QTransform toDevice = context.deviceTransform();
        const double scaleX = std::hypot(toDevice.m11(), toDevice.m12());
        const double scaleY = std::hypot(toDevice.m21(), toDevice.m22());
        const QSizeF pixels(image->pixelSize(scaleX).width(), image->pixelSize(scaleY).height());
        const QSizeF area = pixels.isEmpty()
                                ? image->size()
                                : QSizeF(pixels.width() / scaleX, pixels.height() / scaleY);
        context.setFillColor(color);
        context.setCompositingOperation(operation);
        context.fillRect(QRectF(QPointF(), area));
      });
}

void drawAtOrigin(const Image& image, CompositingOperation operation) {
  image.drawInRect(QRectF(QPointF(), image.size()), QRectF(), operation, 1);
}

} // namespace

Ref<Image> tintedImageWithColor(const Ref<Image>& image, const Ref<Color>& color) {
  if (!image)
    return nullptr;
  const Ref<Image> result = Image::make(image->size());
  // An image that shows nothing is opaque nowhere, and drawing it would leave the fill.
  if (image->representations().empty())
    return result;
  const ImageFocus focus(*result);
  fillAreaOf(image, color, CompositingOperation::Copy);
  drawAtOrigin(*image, CompositingOperation::DestinationIn);
  return result;
}

Ref<Image> maskedImageWithColor(const Ref<Image>& image, const Ref<Color>& color) {
  if (!image)
    return nullptr;
  const Ref<Image> result = Image::make(image->size());
  const ImageFocus focus(*result);
  drawAtOrigin(*image, CompositingOperation::Copy);
  fillAreaOf(image, color, CompositingOperation::SourceIn);
  return result;
}

Ref<Image> invertedMask(const Ref<Image>& image) {
  if (!image)
    return nullptr;
  const Ref<Image> result = Image::make(image->size());
  const ImageFocus focus(*result);
  fillAreaOf(image, Color::deviceWhite(0), CompositingOperation::Copy);
  drawAtOrigin(*image, CompositingOperation::DestinationOut);
  return result;
}

namespace {

// The size of an image of size `own` scaled to `target` with its proportions kept.
QSizeF fittedSize(QSizeF own, QSizeF target) {
  const double ownRatio = own.width() / own.height();
  const double targetRatio = target.width() / target.height();
  if (ownRatio == targetRatio)
    return target;
  if (ownRatio > targetRatio)
    return {target.width(), target.width() / own.width() * own.height()};
  return {target.height() / own.height() * own.width(), target.height()};
}

} // namespace

Ref<Image> imageByScalingToSize(const Ref<Image>& image, QSizeF size, bool preserveAspectRatio) {
  if (!image)
    return nullptr;
  const QSizeF own = image->size();
  // Exactly: sizes as Qt compares them are equal when they are only close.
  if (own.width() == size.width() && own.height() == size.height())
    return image;
  const Ref<Image> result = Image::make(preserveAspectRatio ? fittedSize(own, size) : size);
  const ImageFocus focus(*result);
  image->drawInRect(QRectF(QPointF(), result->size()), QRectF(), CompositingOperation::Copy, 1);
  return result;
}

} // namespace zq
