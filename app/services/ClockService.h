// The clock of the program: its text, as often as it changes.
#pragma once

#include "app/services/ClockText.h"
#include "app/services/WallClockTimer.h"

#include <functional>

namespace zq::app {

// Gives out a clock's text each time that it has become another one. Between two moments at which
// that can happen it sleeps.
//
// Thread: main.
class ClockService {
 public:
  // Takes the text; false ends the service.
  using Receiver = std::function<bool(const QString& text)>;
  using Now = std::function<platform::Date()>;

  ClockService(const ClockText& text, Receiver receiver, Now now = platform::Date::date);

  // Begins; the present text counts as given out.
  void start();

 private:
  void look();

  ClockText text_;
  Receiver receiver_;
  Now now_;
  QString last_;
  WallClockTimer timer_;
};

} // namespace zq::app
