// Finished pixels of pictures, kept for the next frame.
#pragma once

#include "zqticker/platform/graphics/ImageRepresentation.h"

#include <QtCore/QCache>
#include <QtCore/QMutex>

namespace zq::platform {

// The tiles of all representations, least recently used out first. A look-up of a tile that is
// there allocates nothing.
//
// Thread: tiles on the main thread, forget on any.
class TileCache {
 public:
  // Wide and low, as most pictures of a ticker are.
  static constexpr int TileWidth = 1024;
  static constexpr int TileHeight = 256;
  // What all tiles together may take.
  static constexpr qsizetype MaximumBytes = qsizetype(64) << 20;

  static TileCache& shared();

  // The tile in column `x` and row `y` of `representation` on `grid`; rendered where it is not
  // there yet. Tiles at the right and lower edges are cut to the grid.
  QImage tile(const ImageRepresentation& representation, const RasterGrid& grid, int x, int y);
  // Drops every tile of a representation.
  void forget(quint64 representation);

  // What the tiles take at present, in bytes.
  qsizetype bytes() const;

 private:
  struct Key {
    quint64 representation;
    double scaleX;
    double scaleY;
    int x;
    int y;
    friend bool operator==(const Key&, const Key&) = default;
    friend size_t qHash(const Key& key, size_t seed) noexcept {
      return qHashMulti(seed, key.representation, key.scaleX, key.scaleY, key.x, key.y);
    }
  };

  mutable QMutex mutex_;
  QCache<Key, QImage> tiles_{MaximumBytes};
};

} // namespace zq::platform
