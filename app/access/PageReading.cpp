#include "app/access/PageReading.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zq::app {

namespace {
double usableSpeed(double speed) {
  return std::isfinite(speed) ? std::max(speed, 0.0) : 0.0;
}
} // namespace

PageReading::PageReading(double pointsPerSecond, double time)
    : speed_(usableSpeed(pointsPerSecond)), since_(time) {}

void PageReading::count(double time) {
  if (speed_ > 0 && time > since_) {
    points_ += speed_ * (time - since_);
    seconds_ += time - since_;
  }
  since_ = std::max(since_, time);
}

void PageReading::setSpeed(double pointsPerSecond, double time) {
  count(time);
  speed_ = usableSpeed(pointsPerSecond);
}

void PageReading::begin(double time) {
  since_ = std::max(since_, time);
  points_ = seconds_ = lastAdded_ = 0;
}

void PageReading::add(double time) {
  count(time);
  lastAdded_ = seconds_;
}

double PageReading::endOf(double points) const {
  if (!(speed_ > 0))
    return std::numeric_limits<double>::infinity();
  return since_ +
         std::max({(points - points_) / speed_, lastAdded_ + LeastSeconds - seconds_, 0.0});
}

} // namespace zq::app
