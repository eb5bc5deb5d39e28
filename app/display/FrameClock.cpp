#include "app/display/FrameClock.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace zq::app {

namespace {
constexpr double UsualRate = 60;
constexpr double SlowestRate = 1;
constexpr double FastestRate = 1000;
} // namespace

FrameClock::FrameClock(QObject* parent) : QObject(parent), period_(1 / UsualRate) {
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  connect(&timer_, &QTimer::timeout, this, [this] {
    const double time = now();
    schedule(time);
    Q_EMIT tick(time);
  });
}

FrameClock::~FrameClock() = default;

double FrameClock::now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void FrameClock::setRate(double ticksPerSecond) {
  const bool isUsable = ticksPerSecond >= SlowestRate && ticksPerSecond <= FastestRate;
  period_ = 1 / (isUsable ? ticksPerSecond : UsualRate);
}

void FrameClock::start() {
  if (isRunning())
    return;
  due_ = now();
  schedule(due_);
}

void FrameClock::stop() {
  timer_.stop();
}

// The timer counts whole milliseconds; waiting for due times instead of for a period keeps the
// average rate exact. Ticks that were missed are not made up for.
void FrameClock::schedule(double time) {
  due_ = std::max(due_ + period_, time);
  timer_.start(static_cast<int>(std::lround((due_ - time) * 1000)));
}

} // namespace zq::app
