// The time of a strip.
#pragma once

#include "app/display/FrameClock.h"
#include "app/display/TickerDisplay.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

namespace zq::app {

// Moves a display: ticks while something moves in sight, sleeps until something is due while
// nothing moves, and does nothing at all while nobody sees it.
//
// Thread: main.
class StripPlayer : public QObject {
  Q_OBJECT

 public:
  // Why a strip stands still; it does for as long as there is any reason.
  enum class Pause : unsigned {
    Asked = 1,   // by the user, until further notice
    Pointer = 2, // while the pointer rests on it
    Hand = 4,    // while it is moved by hand
  };

  // Out of sight at first. `display` must outlive the player.
  explicit StripPlayer(TickerDisplay& display, QObject* parent = nullptr);
  ~StripPlayer() override;

  // Seconds on the strip's own clock: the monotonic clock without the time in which the strip was
  // out of sight or this process was kept from running, so that nothing jumps afterwards.
  double time() const;

  bool isInSight() const { return isInSight_; }
  void setInSight(bool isInSight);

  void setPaused(Pause reason, bool paused);
  bool isPaused(Pause reason) const;

  // The display was changed, or something was added to it.
  void displayChanged();

  FrameClock& clock() { return clock_; }

  // The display's frame is another one than before: it must be shown now.
  Q_SIGNAL void frameDue();
  // The display has shown everything; once, until there is more.
  Q_SIGNAL void finished();

 private:
  void advance(double clockTime);
  void schedule();

  TickerDisplay& display_;
  FrameClock clock_;
  QTimer wake_;
  bool isInSight_ = false;
  double outSince_;     // on the monotonic clock; while it is out of sight
  double lost_ = 0;     // seconds that the strip's clock has missed
  double lastTick_ = 0; // on the monotonic clock; while the clock ticks
  unsigned pauses_ = 0; // of Pause
  bool isFinished_ = false;
};

} // namespace zq::app
