#include "app/display/Motion.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zq::app {

namespace {
double usableSpeed(double speed) {
  return std::isfinite(speed) ? std::max(speed, 0.0) : 0.0;
}
} // namespace

Motion::Motion(double pointsPerSecond, double startTime)
    : speed_(usableSpeed(pointsPerSecond)), since_(startTime) {}

double Motion::travelAt(double time) const {
  return travelThen_ + speed_ * std::max(time - since_, 0.0);
}

double Motion::timeAt(double travel) const {
  if (travel <= travelThen_)
    return since_;
  return speed_ > 0 ? since_ + (travel - travelThen_) / speed_
                    : std::numeric_limits<double>::infinity();
}

void Motion::setSpeed(double pointsPerSecond, double time) {
  travelThen_ = travelAt(time);
  since_ = std::max(since_, time);
  speed_ = usableSpeed(pointsPerSecond);
}

} // namespace zq::app
