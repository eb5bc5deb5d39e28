#include "zqticker/platform/graphics/TileCache_p.h"

#include <algorithm>

namespace zq::platform {

TileCache& TileCache::shared() {
  // Never freed: images may outlive everything else at the end of the process.
  static auto& cache = *new TileCache;
  return cache;
}

QImage TileCache::tile(const ImageRepresentation& representation, const RasterGrid& grid, int x,
                       int y) {
  const Key key{representation.identifier(), grid.scaleX, grid.scaleY, x, y};
  {
    const QMutexLocker lock(&mutex_);
    if (const QImage* found = tiles_.object(key))
      return *found;
  }
  const QRect part =
      QRect(x * TileWidth, y * TileHeight, TileWidth, TileHeight) & QRect(QPoint(), grid.pixels);
  // Without the lock: a drawing may show other pictures.
  QImage image = representation.render(grid, part);
  const QMutexLocker lock(&mutex_);
  tiles_.insert(key, new QImage(image), std::max<qsizetype>(1, image.sizeInBytes()));
  return image;
}

void TileCache::forget(quint64 representation) {
  const QMutexLocker lock(&mutex_);
  if (tiles_.isEmpty())
    return;
  const QList<Key> keys = tiles_.keys();
  for (const Key& key : keys)
    if (key.representation == representation)
      tiles_.remove(key);
}

qsizetype TileCache::bytes() const {
  const QMutexLocker lock(&mutex_);
  return tiles_.totalCost();
}

} // namespace zq::platform
