#include "app/display/Motion.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zq::app {

namespace {
double usableSpeed(double speed) {
  return std::isfinite(speed) ? std::clamp(speed, 0.0, Motion::MostPointsPerSecond) : 0.0;
}
} // namespace

Motion::Motion(double pointsPerSecond, double startTime)
    : speed_(usableSpeed(pointsPerSecond)), since_(startTime), glideStart_(startTime) {}

// What is left of a glide shrinks with the cube of the time that is left.
double Motion::travelAt(double time) const {
  if (!isGlidingAt(time))
    return travelThen_ + speed_ * std::max(time - since_, 0.0);
  const double left = (since_ - std::max(time, glideStart_)) / (since_ - glideStart_);
  return travelThen_ - (travelThen_ - glideFrom_) * left * left * left;
}

double Motion::timeAt(double travel) const {
  if (travel > travelThen_)
    return speed_ > 0 ? since_ + (travel - travelThen_) / speed_
                      : std::numeric_limits<double>::infinity();
  // A glide backwards leaves nothing undone that lies before its end.
  if (travel <= glideFrom_ || glideFrom_ >= travelThen_)
    return glideStart_;
  const double left = std::cbrt((travelThen_ - travel) / (travelThen_ - glideFrom_));
  return since_ - left * (since_ - glideStart_);
}

void Motion::setSpeed(double pointsPerSecond, double time) {
  if (!isGlidingAt(time)) {
    travelThen_ = travelAt(time);
    since_ = std::max(since_, time);
    glideStart_ = since_;
    glideFrom_ = travelThen_;
  }
  speed_ = usableSpeed(pointsPerSecond);
}

void Motion::restartAt(double travel, double time) {
  travelThen_ = glideFrom_ = travel;
  since_ = glideStart_ = time;
}

void Motion::glideTo(double travel, double time, double seconds) {
  if (!std::isfinite(travel) || !std::isfinite(time) || !std::isfinite(seconds) || seconds <= 0)
    return;
  glideFrom_ = travelAt(time);
  glideStart_ = isGlidingAt(time) ? std::max(time, glideStart_) : std::max(time, since_);
  travelThen_ = travel;
  since_ = glideStart_ + seconds;
}

} // namespace zq::app
