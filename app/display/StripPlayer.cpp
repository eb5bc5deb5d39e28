#include "app/display/StripPlayer.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

namespace {
// A longer gap between two ticks is time in which the process was stopped.
constexpr double LongestGap = 1;
constexpr double LongestWakeSeconds = 86'400;
} // namespace

StripPlayer::StripPlayer(TickerDisplay& display, QObject* parent)
    : QObject(parent), display_(display), outSince_(FrameClock::now()) {
  connect(&clock_, &FrameClock::tick, this, &StripPlayer::advance);
  wake_.setSingleShot(true);
  wake_.setTimerType(Qt::PreciseTimer);
  connect(&wake_, &QTimer::timeout, this, [this] { advance(FrameClock::now()); });
}

StripPlayer::~StripPlayer() = default;

double StripPlayer::time() const {
  return (isInSight_ ? FrameClock::now() : outSince_) - lost_;
}

void StripPlayer::setInSight(bool isInSight) {
  if (isInSight == isInSight_)
    return;
  const double now = FrameClock::now();
  if (isInSight)
    lost_ += now - outSince_;
  else
    outSince_ = now;
  isInSight_ = isInSight;
  if (isInSight)
    advance(now);
  else
    schedule();
}

void StripPlayer::setPaused(Pause reason, bool paused) {
  pauses_ =
      paused ? pauses_ | static_cast<unsigned>(reason) : pauses_ & ~static_cast<unsigned>(reason);
  display_.setPaused(pauses_ != 0, time());
  displayChanged();
}

bool StripPlayer::isPaused(Pause reason) const {
  return (pauses_ & static_cast<unsigned>(reason)) != 0;
}

void StripPlayer::displayChanged() {
  if (isInSight_)
    advance(FrameClock::now());
  else
    schedule();
}

void StripPlayer::advance(double clockTime) {
  if (clock_.isRunning() && clockTime - lastTick_ > LongestGap)
    lost_ += clockTime - lastTick_;
  lastTick_ = clockTime;
  if (display_.advanceTo(clockTime - lost_))
    Q_EMIT frameDue();
  schedule();
}

void StripPlayer::schedule() {
  if (!display_.isFinished())
    isFinished_ = false;
  if (isInSight_ && display_.isMoving()) {
    wake_.stop();
    if (!clock_.isRunning()) {
      lastTick_ = FrameClock::now();
      clock_.start();
    }
    return;
  }
  clock_.stop();
  wake_.stop();
  if (display_.isFinished()) {
    if (!isFinished_)
      Q_EMIT finished();
    isFinished_ = true;
    return;
  }
  const double wait = display_.nextEntryTime() - time();
  if (isInSight_ && std::isfinite(wait))
    wake_.start(static_cast<int>(std::ceil(std::clamp(wait, 0.0, LongestWakeSeconds) * 1000)));
}

} // namespace zq::app
