// Recoloured and scaled pictures: Image (ZQAdditions).
//
// Colours: a null one is clear for tinting and masking, black for darkening. Null images give null.
//
// Thread: main.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QSizeF>

#include <memory>

namespace zq::platform {
class Color;
class Image;
} // namespace zq::platform

namespace zq {

// Sets the size of `image`, and that of its first representation that is a bitmap, to that bitmap's
// pixels, one point a pixel, and returns `image` itself. An image without a bitmap stays as it is.
// Operation: normalizeSize
ZQTICKER_EXPORT std::shared_ptr<platform::Image>
normalizeSize(const std::shared_ptr<platform::Image>& image);

// A new image, whose pixels are those of `image` with a number taken from each channel, no lower
// than 0: the whole part of 256 − 255 × the colour's component, which is 1 for a component of 1 and
// 256 for one of 0. Transparency stays as it is.
//
// Colours are taken in the calibrated RGB space; one that cannot be converted, as a pattern, counts
// as black, which turns every pixel black.
//
// The result has the image's size, and a bitmap with a pixel for each whole point of it. Pixels of
// the result, too, are found by the source's bytes per row and bits per pixel: 4 bytes a pixel with
// alpha, 3 without, rows without alpha padded to multiples of 4 bytes. That holds for an image of
// one pixel a point, as normalizeSize makes it. On any other, pixels stand at wrong places or are
// missing; a pixel that would lie outside of either bitmap is left out.
//
// Null, with the log line "not a bitmap image rep", where the image's first representation is not a
// bitmap or there is none. Null, too, for an image of more than Image::MaximumPixels points.
// Operation: darkenedImageWithColor:
ZQTICKER_EXPORT std::shared_ptr<platform::Image>
darkenedImageWithColor(const std::shared_ptr<platform::Image>& image,
                       const std::shared_ptr<platform::Color>& color);

// A new image of the same size in the colour `color` wherever `image` is opaque: the area is filled
// and the image's opacity applied to it. Sharp at every scale at which `image` is.
// Operation: tintedImageWithColor:
ZQTICKER_EXPORT std::shared_ptr<platform::Image>
tintedImageWithColor(const std::shared_ptr<platform::Image>& image,
                     const std::shared_ptr<platform::Color>& color);

// The same, made the other way round: the image is drawn and the colour filled over it where it is
// opaque.
// Operation: maskedImageWithColor:
ZQTICKER_EXPORT std::shared_ptr<platform::Image>
maskedImageWithColor(const std::shared_ptr<platform::Image>& image,
                     const std::shared_ptr<platform::Color>& color);

// A new image of the same size, black wherever `image` is transparent and clear wherever it is
// opaque.
// Operation: invertedMask
ZQTICKER_EXPORT std::shared_ptr<platform::Image>
invertedMask(const std::shared_ptr<platform::Image>& image);

// `image` scaled to `size` points, or, where the aspect ratio is preserved, to the largest size of
// its own proportions that fits inside. `image` itself where it has exactly that size already.
// Sides that are negative or no finite numbers count as 0; an image of no area has no proportions
// and shows nothing at any size.
// Operation: imageByScalingToSize:preserveAspectRatio:
ZQTICKER_EXPORT std::shared_ptr<platform::Image>
imageByScalingToSize(const std::shared_ptr<platform::Image>& image, QSizeF size,
                     bool preserveAspectRatio);

} // namespace zq
