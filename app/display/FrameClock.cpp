#include "app/display/FrameClock.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace zq::app {

namespace {
constexpr double UsualRate = 60;
constexpr double SlowestRate = 1;
constexpr double FastestRate = 1000;
// Periods without an answer after which a source counts as silent.
constexpr double Patience = 5;
// Periods before a blank within which a frame is not finished for it any more.
constexpr double DrawingShare = 0.125;
constexpr double LongestWait = 60; // seconds
} // namespace

FrameClock::FrameClock(QObject* parent, Now now)
    : QObject(parent), now_(std::move(now)), estimate_(1 / UsualRate), givenPeriod_(1 / UsualRate) {
  estimate_.begin(0, now_());
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  connect(&timer_, &QTimer::timeout, this, &FrameClock::wake);
}

FrameClock::~FrameClock() = default;

double FrameClock::now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// What was observed of a screen is better than what it says, until it says something else.
void FrameClock::setRate(double ticksPerSecond) {
  const bool isUsable = ticksPerSecond >= SlowestRate && ticksPerSecond <= FastestRate;
  const double period = 1 / (isUsable ? ticksPerSecond : UsualRate);
  if (period == givenPeriod_)
    return;
  givenPeriod_ = period;
  estimate_.setPeriod(period, blank_);
}

void FrameClock::setSource(std::unique_ptr<BlankSource> source) {
  source_ = std::move(source);
  isAsked_ = false;
  isFirst_ = true;
  answers_ = true;
  hasReport_ = false;
  estimate_.begin(blank_, estimate_.timeOf(blank_));
  if (source_)
    connect(source_.get(), &BlankSource::blank, this, &FrameClock::receive);
  if (isRunning_)
    ask();
}

void FrameClock::start() {
  if (isRunning_)
    return;
  isRunning_ = true;
  isFirst_ = true;
  answers_ = true;
  const double begin = std::max(now_(), time_);
  // Where no screen has told its blanks they count from here.
  if (hasReport_)
    blank_ = estimate_.countAt(begin) + 1;
  else
    estimate_.begin(blank_, begin + estimate_.period());
  ask();
}

void FrameClock::stop() {
  if (!isRunning_)
    return;
  isRunning_ = false;
  timer_.stop();
  if (source_ && isAsked_)
    source_->cancel();
  isAsked_ = false;
}

void FrameClock::receive(quint64 count, double time) {
  if (!isAsked_)
    return;
  isAsked_ = false;
  isFirst_ ? estimate_.addFirst(count, time) : estimate_.add(count, time);
  isFirst_ = false;
  hasReport_ = true;
  if (answers_) {
    emitTick();
    return;
  }
  // The timer has ticked for this blank.
  answers_ = true;
  blank_ = estimate_.countAt(std::max(now_(), time_)) + 1;
  ask();
}

void FrameClock::wake() {
  answers_ = !source_;
  emitTick();
}

void FrameClock::emitTick() {
  const double reached = std::max(now_(), time_);
  blank_ = estimate_.countAt(reached + DrawingShare * estimate_.period()) + 1;
  time_ = estimate_.timeOf(blank_);
  Q_EMIT tick(time_);
  if (isRunning_)
    ask();
}

// The next frame is drawn when the blank has come for which the last one was. The timer counts
// whole milliseconds; what it ticks for is counted from the line all the same.
void FrameClock::ask() {
  if (source_ && !isAsked_) {
    isAsked_ = true;
    source_->request(isFirst_ ? 0 : blank_);
  }
  const double patience = source_ && answers_ ? Patience * estimate_.period() : 0;
  const double wait = estimate_.timeOf(blank_) + patience - now_();
  timer_.start(static_cast<int>(std::lround(std::clamp(wait, 0.0, LongestWait) * 1000)));
}

} // namespace zq::app
