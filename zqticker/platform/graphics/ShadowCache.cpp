#include "zqticker/platform/graphics/ShadowCache_p.h"

namespace zq::platform {

ShadowCache& ShadowCache::shared() {
  // Never freed: drawing may go on until the end of the process.
  static auto& cache = *new ShadowCache;
  return cache;
}

std::optional<ShadowPixels> ShadowCache::find(const QByteArray& key) {
  const QMutexLocker lock(&mutex_);
  const ShadowPixels* found = shadows_.object(key);
  return found ? std::optional(*found) : std::nullopt;
}

void ShadowCache::insert(const QByteArray& key, const ShadowPixels& pixels) {
  const QMutexLocker lock(&mutex_);
  if (shadows_.contains(key))
    return;
  shadows_.insert(key, new ShadowPixels(pixels),
                  key.size() + qsizetype(sizeof(ShadowPixels)) + pixels.image.sizeInBytes());
  ++insertions_;
}

qsizetype ShadowCache::bytes() const {
  const QMutexLocker lock(&mutex_);
  return shadows_.totalCost();
}

quint64 ShadowCache::insertions() const {
  const QMutexLocker lock(&mutex_);
  return insertions_;
}

} // namespace zq::platform
