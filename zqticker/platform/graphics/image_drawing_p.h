// Drawing of an image's content into a context.
#pragma once

#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"

namespace zq::platform {

// What an image shows at one moment; refers to the image's own list.
struct ImageContent {
  QSizeF size;
  const Image::Representations& representations;

  bool isEmpty() const { return size.isEmpty() || representations.empty(); }
};

// The representation that suits so many device pixels a point best: the bitmap with the fewest
// pixels that are enough, else the one with the most; a drawing where there is one. `content` must
// not be empty.
const ImageRepresentation& bestRepresentation(const ImageContent& content, double scaleX,
                                              double scaleY);

// Draws the part `source` of `content`, in points of the image, by `placement` from there to user
// space.
void drawContent(GraphicsContext& context, const ImageContent& content, const QTransform& placement,
                 const QRectF& source, CompositingOperation operation, double fraction);

} // namespace zq::platform
