#include "zqticker/platform/graphics/ImageRepresentation.h"

#include "zqticker/platform/graphics/BitmapRepresentation_p.h"
#include "zqticker/platform/graphics/TileCache_p.h"

#include <atomic>

namespace zq::platform {

static std::atomic<quint64> lastIdentifier = 0;

ImageRepresentation::ImageRepresentation(QSizeF size)
    : identifier_(++lastIdentifier), size_(size) {}

ImageRepresentation::~ImageRepresentation() {
  TileCache::shared().forget(identifier_);
}

std::shared_ptr<const ImageRepresentation> ImageRepresentation::make(const QImage& bitmap,
                                                                     QSizeF sizeInPoints) {
  if (bitmap.isNull() || sizeInPoints.isEmpty())
    return nullptr;
  return std::make_shared<BitmapRepresentation>(bitmap, sizeInPoints);
}

std::shared_ptr<const ImageRepresentation>
ImageRepresentation::withSize(const std::shared_ptr<const ImageRepresentation>& representation,
                              QSizeF sizeInPoints) {
  if (!representation || !representation->isBitmap() || sizeInPoints.isEmpty())
    return nullptr;
  return std::make_shared<BitmapRepresentation>(representation->pixelSize(), sizeInPoints,
                                                [=] { return representation->bitmap(); });
}

} // namespace zq::platform
