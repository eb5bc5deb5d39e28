// One press of a button.
#pragma once

#include "zqticker/platform/controls/TrackingSession.h"

#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <memory>

namespace zq::platform {

class Button;

// From the left button going down over the button until it comes up again: while the pointer is
// inside, the cell is highlighted and tracks; in between, the press waits.
//
// Held by std::shared_ptr; whatever it calls may destroy the button. What callbacks raise is
// logged.
class ButtonPress : public std::enable_shared_from_this<ButtonPress> {
 public:
  explicit ButtonPress(Button* button);
  ~ButtonPress();

  // The press itself, then what the left button does until isOver.
  void begin(const Event& event);
  void feed(const Event& event);
  // Ends the press without a click.
  void cancel();
  // The same while the button is being destroyed, which is told nothing any more.
  void abandon();

  bool isOver() const { return isOver_; }
  // An action was sent; clicked follows when the present pass is through.
  void countAction() { ++actions_; }

 private:
  void track(const Event& event);
  void settle();
  void reachDeadline();
  void restartTimer();
  void endTracking();

  QPointer<Button> button_;
  std::shared_ptr<TrackingSession> session_;
  QTimer deadline_;
  int actions_ = 0;
  bool isTracking_ = false;
  bool isUp_ = false;
  bool isOver_ = false;
};

} // namespace zq::platform
