#include "zqticker/platform/text/LineCache_p.h"

#include "zqticker/platform/text/TextLine_p.h"

namespace zq::platform {

LineCache& LineCache::shared() {
  // Never freed: layouts must not outlive the application object.
  static auto& cache = *new LineCache;
  return cache;
}

void LineCache::use(const std::shared_ptr<const TextLine>& line) {
  LineCachePlace& place = line->cachePlace_;
  if (!place) {
    lines_.push_front({line});
    place = lines_.begin();
  } else if (*place != lines_.begin()) {
    lines_.splice(lines_.begin(), lines_, *place);
  }
  LineCacheEntry& entry = lines_.front();
  const qsizetype cost = LineCost + line->laidOutLength();
  cost_ += cost - entry.cost;
  entry.cost = cost;
  while (cost_ > MaximumCost && lines_.size() > 1) {
    const LineCacheEntry oldest = std::move(lines_.back());
    lines_.pop_back();
    cost_ -= oldest.cost;
    oldest.line->cachePlace_.reset();
    oldest.line->forgetGlyphs();
  }
}

} // namespace zq::platform
