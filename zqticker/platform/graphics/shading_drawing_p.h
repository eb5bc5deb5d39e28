// Rows of colour for shadings.
#pragma once

#include "zqticker/platform/graphics/VerticalShading.h"

#include <QtCore/QCache>
#include <QtCore/QMutex>
#include <QtCore/QRectF>
#include <QtGui/QBrush>
#include <QtGui/QImage>

namespace zq::platform {

class GraphicsContext;

// Evaluated rows of shadings that have an identifier, least recently used out first.
//
// Thread: any.
class ShadingCache {
 public:
  // What all rows together may take.
  static constexpr qsizetype MaximumBytes = qsizetype(2) << 20;

  static ShadingCache& shared();

  // Null where there is none.
  QImage find(const QByteArray& key);
  // Of several for one key, which threads may have made at once, the first one stays.
  void insert(const QByteArray& key, const QImage& strip);
  // What the rows take at present, in bytes.
  qsizetype bytes() const;

 private:
  mutable QMutex mutex_;
  QCache<QByteArray, QImage> strips_{MaximumBytes};
};

// A brush for the present user space of `context` that shades `bounds`. No brush where they are
// empty or nothing of them can show. The colours at the ends go on outside of `bounds` for the
// fraction of a device pixel only.
QBrush brushOfShading(const VerticalShading& shading, const GraphicsContext& context,
                      const QRectF& bounds);

} // namespace zq::platform
