#include "app/services/picture_decoding.h"

#include "app/intake/SilencedStandardError.h"

#include <QtCore/QBuffer>
#include <QtGui/QImageReader>

#include <algorithm>
#include <array>

namespace zq::app {

namespace {
constexpr std::array<const char*, 6> Formats{"png", "jpeg", "gif", "webp", "bmp", "ico"};

bool isLarger(QSize size, QSize room) {
  return size.width() > room.width() || size.height() > room.height();
}
} // namespace

QImage decodePicture(const QByteArray& data, QSize room) {
  const SilencedStandardError silence;
  QBuffer buffer;
  buffer.setData(data);
  QImageReader reader(&buffer);
  reader.setDecideFormatFromContent(true);
  const QByteArray format = reader.format();
  if (std::none_of(Formats.begin(), Formats.end(),
                   [&](const char* name) { return format == name; }))
    return QImage();
  const QSize size = reader.size();
  if (size.width() < ShortestPictureSide || size.height() < ShortestPictureSide ||
      qint64(size.width()) * size.height() > MostDecodedPixels)
    return QImage();
  reader.setAutoTransform(true);
  // JPEG pictures are decoded in a fraction of their size, the rest of the way is smooth.
  if (format == "jpeg" && isLarger(size, 2 * room))
    reader.setScaledSize(size.scaled(2 * room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
  const QImage image = reader.read();
  if (image.isNull() || !isLarger(image.size(), room))
    return image;
  return image.scaled(image.size().scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)),
                      Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace zq::app
