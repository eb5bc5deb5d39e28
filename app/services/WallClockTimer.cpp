#include "app/services/WallClockTimer.h"

#include <QtCore/QSocketNotifier>

#include <cerrno>
#include <cmath>
#include <cstdint>

#include <sys/timerfd.h>
#include <unistd.h>

namespace zq::app {

namespace {
constexpr double NanosecondsPerSecond = 1e9;
} // namespace

WallClockTimer::WallClockTimer(std::function<void()> elapsed)
    : elapsed_(std::move(elapsed)),
      descriptor_(::timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK)) {
  if (descriptor_ < 0)
    return;
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [this] { take(); });
}

WallClockTimer::~WallClockTimer() {
  notifier_.reset();
  if (descriptor_ >= 0)
    ::close(descriptor_);
}

void WallClockTimer::startAt(const platform::Date& moment) {
  const double since1970 =
      moment.timeIntervalSinceReferenceDate() + platform::TimeIntervalSince1970;
  const double whole = std::floor(since1970);
  itimerspec timer{};
  timer.it_value.tv_sec = static_cast<time_t>(whole);
  timer.it_value.tv_nsec = static_cast<long>((since1970 - whole) * NanosecondsPerSecond);
  ::timerfd_settime(descriptor_, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &timer, nullptr);
}

void WallClockTimer::take() {
  std::uint64_t expirations = 0;
  // ECANCELED: the clock was set. Nothing to read: it was started again meanwhile.
  if (::read(descriptor_, &expirations, sizeof expirations) < 0 && errno != ECANCELED)
    return;
  elapsed_();
}

} // namespace zq::app
