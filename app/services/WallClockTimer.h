// Waiting for a time of day.
#pragma once

#include "zqticker/platform/calendar/Date.h"

#include <functional>
#include <memory>

class QSocketNotifier;

namespace zq::app {

// Tells once when the system's clock has reached a moment. It tells at once when the clock is set
// meanwhile, and when the machine has slept past the moment.
//
// Thread: main.
class WallClockTimer {
 public:
  explicit WallClockTimer(std::function<void()> elapsed);
  ~WallClockTimer();
  WallClockTimer(const WallClockTimer&) = delete;
  WallClockTimer& operator=(const WallClockTimer&) = delete;

  // Waits for `moment`, and for no earlier one any more. Called from the event loop then. Does
  // nothing where the kernel gives no timer.
  void startAt(const platform::Date& moment);

 private:
  void take();

  std::function<void()> elapsed_;
  int descriptor_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace zq::app
