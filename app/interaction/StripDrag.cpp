#include "app/interaction/StripDrag.h"

#include <algorithm>

namespace zq::app {

namespace {
// Shorter times say nothing about a speed.
constexpr double ShortestSeconds = 0.005;
} // namespace

void StripDrag::moveTo(double place, double time) {
  samples_.push_back({place, time});
  while (samples_.size() > 2 && samples_[1].time < time - ThrowWithinSeconds)
    samples_.pop_front();
}

double StripDrag::speedAt(double time) const {
  if (samples_.size() < 2 || time - samples_.back().time > ThrowWithinSeconds)
    return 0;
  const double seconds = std::max(samples_.back().time - samples_.front().time, ShortestSeconds);
  return std::clamp((samples_.back().place - samples_.front().place) / seconds, -FastestThrow,
                    FastestThrow);
}

} // namespace zq::app
