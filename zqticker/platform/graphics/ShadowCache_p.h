// Finished shadows, kept for the next frame.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QCache>
#include <QtCore/QMutex>
#include <QtCore/QPoint>
#include <QtGui/QImage>

#include <optional>

namespace zq::platform {

// The pixels of one shadow, blurred and coloured.
struct ShadowPixels {
  // Null where nothing shows.
  QImage image;
  // Device pixels from the origin of the shadow's key to the image's upper left corner.
  QPoint corner;
};

// Shadows by what casts them and how, least recently used out first. A look-up of a shadow that is
// there allocates nothing.
//
// Thread: any.
class ShadowCache {
 public:
  // A larger shadow is not kept.
  static constexpr qint64 MaximumPixels = qint64(1) << 18;
  // What all shadows together may take.
  static constexpr qsizetype MaximumBytes = qsizetype(16) << 20;

  static ShadowCache& shared();

  std::optional<ShadowPixels> find(const QByteArray& key);
  // Of several for one key, which threads may have made at once, the first one stays.
  void insert(const QByteArray& key, const ShadowPixels& pixels);

  // What the shadows take at present, in bytes, and how many were inserted so far.
  qsizetype bytes() const;
  quint64 insertions() const;

 private:
  mutable QMutex mutex_;
  QCache<QByteArray, ShadowPixels> shadows_{MaximumBytes};
  quint64 insertions_ = 0;
};

} // namespace zq::platform
