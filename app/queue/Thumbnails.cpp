#include "app/queue/Thumbnails.h"

#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/objects/Exception.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

using namespace platform;

namespace {
// What an entry costs besides its pixels.
constexpr qsizetype EntryBytes = 256;

QImage drawn(const Image& image, QSizeF room, double scale) {
  const QSizeF size = image.size();
  if (size.isEmpty())
    return QImage();
  const double factor = std::min({1.0, room.width() / size.width(), room.height() / size.height()});
  // A picture that is much longer than the room keeps a line that can be seen.
  const QSize pixels(std::max(1, qRound(size.width() * factor * scale)),
                     std::max(1, qRound(size.height() * factor * scale)));
  QImage picture;
  try {
    picture = image.rasterised(factor * scale);
  } catch (const Exception&) {
    // The cell stays empty; the strip says what is wrong with the picture.
    return QImage();
  }
  if (!picture.isNull() && picture.size() != pixels)
    picture = picture.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  picture.setDevicePixelRatio(scale);
  return picture;
}
} // namespace

// Holds the image, so that no other one takes its address meanwhile.
struct Thumbnails::Picture {
  Ref<Image> image;
  QSizeF size;
  QSizeF room;
  double scale = 1;
  QImage pixels;
};

Thumbnails::Thumbnails() : pictures_(MostBytes) {}
Thumbnails::~Thumbnails() = default;

QImage Thumbnails::thumbnail(const Ref<Image>& image, QSizeF room, double scale) {
  if (!image)
    return QImage();
  const Picture* known = pictures_.object(image.get());
  if (known && known->size == image->size() && known->room == room && known->scale == scale)
    return known->pixels;
  ++drawn_;
  auto* made = new Picture{image, image->size(), room, scale, drawn(*image, room, scale)};
  const QImage pixels = made->pixels;
  pictures_.insert(image.get(), made, pixels.sizeInBytes() + EntryBytes);
  return pixels;
}

} // namespace zq::app
