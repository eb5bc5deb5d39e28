#include "app/display/StripPlayer.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zq::app {

namespace {
// A longer gap between two frames is time in which the process was stopped, or kept from running:
// nobody sees a motion across it any more.
constexpr double LongestGap = 0.25;
constexpr double LongestGapPeriods = 4; // of screens that are refreshed very slowly
constexpr double LongestWakeSeconds = 86'400;
// Of preparing signs between two frames.
constexpr qint64 SliceNanoseconds = 1'500'000;
// So that a time that is put together from others is not before what it stands for.
constexpr double Rounding = 1e-6;
constexpr double Never = std::numeric_limits<double>::infinity();
} // namespace

StripPlayer::StripPlayer(TickerDisplay& display, FrameClock::Now now, QObject* parent)
    : QObject(parent), display_(display), now_(std::move(now)), clock_(nullptr, now_),
      outSince_(now_()), wakeTime_(Never) {
  connect(&clock_, &FrameClock::tick, this, &StripPlayer::playFrame);
  wakeTimer_.setSingleShot(true);
  wakeTimer_.setTimerType(Qt::PreciseTimer);
  connect(&wakeTimer_, &QTimer::timeout, this, &StripPlayer::wake);
  connect(&prepareTimer_, &QTimer::timeout, this, &StripPlayer::prepare);
  display_.setHoldsUnprepared(true);
}

StripPlayer::~StripPlayer() {
  display_.setHoldsUnprepared(false);
}

double StripPlayer::longestGap() const {
  return std::max(LongestGap, LongestGapPeriods * clock_.period());
}

double StripPlayer::clockTime() const {
  if (!isInSight_)
    return outSince_;
  return std::min(now_(), clock_.isRunning() ? frame_ : wakeTime_);
}

void StripPlayer::setInSight(bool isInSight) {
  if (isInSight == isInSight_)
    return;
  if (isInSight) {
    const double now = now_();
    lost_ += now - outSince_;
    isInSight_ = true;
    advance(now);
  } else {
    outSince_ = clockTime();
    isInSight_ = false;
    schedule();
  }
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
  if (!isInSight_)
    schedule();
  else if (clock_.isRunning())
    advance(frame_);
  else
    wake();
}

// What should have happened long ago happens now.
void StripPlayer::wake() {
  const double now = now_();
  if (now - wakeTime_ > longestGap())
    lost_ += now - wakeTime_ - Rounding;
  advance(now);
}

void StripPlayer::playFrame(double time) {
  const double gap = time - frame_;
  const PlayedFrame played{time, 0, clock_.blank(), true, isFirstFrame_, gap > longestGap()};
  if (played.lostTime)
    lost_ += gap - clock_.period();
  frame_ = time;
  isFirstFrame_ = false;
  show(time);
  observe(played);
  schedule();
}

void StripPlayer::advance(double clockTime) {
  if (show(clockTime))
    observe({clockTime, 0, clock_.blank()});
  schedule();
}

bool StripPlayer::show(double clockTime) {
  const bool isDue = display_.advanceTo(clockTime - lost_);
  if (isDue)
    Q_EMIT frameDue();
  return isDue;
}

void StripPlayer::observe(PlayedFrame frame) {
  if (!observer_)
    return;
  frame.drawn = now_();
  observer_->framePlayed(frame);
}

void StripPlayer::prepare() {
  QDeadlineTimer deadline(0, Qt::PreciseTimer);
  deadline.setPreciseRemainingTime(0, SliceNanoseconds, Qt::PreciseTimer);
  if (!display_.prepareUntil(deadline))
    return;
  prepareTimer_.stop();
  // What was held up enters.
  displayChanged();
}

void StripPlayer::schedule() {
  if (!isInSight_ || display_.isPrepared())
    prepareTimer_.stop();
  else if (!prepareTimer_.isActive())
    prepareTimer_.start(0);
  if (!display_.isFinished())
    isFinished_ = false;
  if (isInSight_ && display_.isMoving()) {
    wakeTimer_.stop();
    if (!clock_.isRunning()) {
      frame_ = now_();
      isFirstFrame_ = true;
      clock_.start();
    }
    return;
  }
  clock_.stop();
  wakeTimer_.stop();
  wakeTime_ = Never;
  if (display_.isFinished()) {
    if (!isFinished_)
      Q_EMIT finished();
    isFinished_ = true;
    return;
  }
  if (!isInSight_)
    return;
  const double now = now_();
  const double wait = display_.nextEntryTime() - (now - lost_);
  if (!std::isfinite(wait))
    return;
  wakeTime_ = now + std::clamp(wait, 0.0, LongestWakeSeconds);
  wakeTimer_.start(static_cast<int>(std::ceil((wakeTime_ - now) * 1000)));
}

} // namespace zq::app
