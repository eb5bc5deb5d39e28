#include "app/display/Motion.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zq::app {

namespace {
// After which a part of a glide's time is exact.
constexpr int Halvings = 60;
// The same of a way.
constexpr int Approaches = 40;

double usableSpeed(double speed) {
  return std::isfinite(speed) ? std::clamp(speed, 0.0, Motion::MostPointsPerSecond) : 0.0;
}

// The way that a glide must add where the strip moves by `own` points meanwhile, so that it turns
// `back` points behind its start. With the square root u of the way back, it turns at the part
// sqrt(own / 3) / u of its time, which is the larger zero of u^3 - (own + back) u + 2 (own /
// 3)^1.5.
double wayBack(double back, double own) {
  const double whole = own + back;
  const double turned = 2 * std::pow(own / 3, 1.5);
  // Comes down to it from above.
  double root = std::sqrt(whole);
  for (int i = 0; i < Approaches; ++i)
    root -= (root * (root * root - whole) + turned) / (3 * root * root - whole);
  return -root * root;
}
} // namespace

Motion::Motion(double pointsPerSecond, double startTime)
    : speed_(usableSpeed(pointsPerSecond)), since_(startTime), glideStart_(startTime) {}

double Motion::partLeftAt(double time) const {
  return (since_ - std::max(time, glideStart_)) / (since_ - glideStart_);
}

double Motion::wayLeft(double part) const {
  return speed_ * (since_ - glideStart_) * part + way_ * part * part * part;
}

// Where the velocity is 0, if it is before the glide's end.
double Motion::partAtLowest() const {
  return way_ < 0 ? std::min(std::sqrt(speed_ * (since_ - glideStart_) / (-3 * way_)), 1.0) : 1;
}

double Motion::travelAt(double time) const {
  return isGlidingAt(time) ? travelThen_ - wayLeft(partLeftAt(time))
                           : travelThen_ + speed_ * std::max(time - since_, 0.0);
}

double Motion::velocityAt(double time) const {
  if (!isGlidingAt(time))
    return speed_;
  const double left = partLeftAt(time);
  return speed_ + 3 * way_ * left * left / (since_ - glideStart_);
}

double Motion::goalAt(double time) const {
  if (!isGlidingAt(time))
    return travelAt(time);
  return hasGoal_ ? goal_ : travelThen_;
}

double Motion::timeAt(double travel) const {
  if (travel > travelThen_)
    return speed_ > 0 ? since_ + (travel - travelThen_) / speed_
                      : std::numeric_limits<double>::infinity();
  // A glide back leaves nothing undone that lies before its farthest place.
  const double missing = travelThen_ - travel;
  double high = partAtLowest();
  if (missing >= wayLeft(high))
    return glideStart_;
  double low = 0;
  for (int i = 0; i < Halvings; ++i) {
    const double middle = (low + high) / 2;
    (wayLeft(middle) > missing ? high : low) = middle;
  }
  return since_ - low * (since_ - glideStart_);
}

double Motion::lowestBetween(double begin, double end) const {
  return std::clamp(since_ - partAtLowest() * (since_ - glideStart_), begin, end);
}

void Motion::setSpeed(double pointsPerSecond, double time) {
  const double speed = usableSpeed(pointsPerSecond);
  const double velocity = velocityAt(time);
  const bool isGliding = isGlidingAt(time);
  const bool hadGoal = isGlidingToGoalAt(time);
  const double goal = goal_;
  const double end = since_;
  restartAt(travelAt(time), std::max(time, glideStart_));
  speed_ = speed;
  if (hadGoal)
    glideTo(goal, since_, end - since_);
  else if (isGliding)
    glideBy((velocity - speed) * (end - since_) / 3, since_, end - since_);
}

void Motion::restartAt(double travel, double time) {
  travelThen_ = travel;
  since_ = glideStart_ = time;
  way_ = 0;
  hasGoal_ = false;
}

void Motion::glideTo(double travel, double time, double seconds) {
  if (!std::isfinite(travel) || !std::isfinite(time) || !std::isfinite(seconds) || seconds <= 0)
    return;
  const double here = travelAt(time);
  glideStart_ = isGlidingAt(time) ? std::max(time, glideStart_) : std::max(time, since_);
  if (travel > here && travel - here < speed_ * seconds)
    seconds = (travel - here) / speed_;
  const double own = speed_ * seconds;
  way_ = travel < here ? wayBack(here - travel, own) : travel - here - own;
  since_ = glideStart_ + seconds;
  travelThen_ = travel < here ? here + own + way_ : travel;
  hasGoal_ = true;
  goal_ = travel;
}

void Motion::glideBy(double points, double time, double seconds) {
  if (!std::isfinite(points) || !std::isfinite(time) || !std::isfinite(seconds) || seconds <= 0)
    return;
  const double here = travelAt(time);
  const double left = isGlidingAt(time) ? partLeftAt(time) : 0;
  glideStart_ = isGlidingAt(time) ? std::max(time, glideStart_) : std::max(time, since_);
  way_ = way_ * left * left * left + points;
  since_ = glideStart_ + seconds;
  travelThen_ = here + speed_ * seconds + way_;
  hasGoal_ = false;
}

} // namespace zq::app
