// The time of a strip.
#pragma once

#include "app/display/FrameClock.h"
#include "app/display/TickerDisplay.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

namespace zq::app {

// A frame of a strip, as it was moved to and shown. Times are seconds on the monotonic clock.
struct PlayedFrame {
  double time = 0;         // when it was expected on the screen
  double drawn = 0;        // when it had been drawn
  std::uint64_t blank = 0; // the source's count of the blank at that time, see FrameClock
  bool isTick = false;     // it was due to the motion, and not to a change
  bool isFirst = false;    // nothing moved before
  bool lostTime = false;   // the process was kept from running before it; that time is left out
};

// Sees every frame that is due, also one that looks as the one before.
class FrameObserver {
 public:
  virtual ~FrameObserver() = default;
  // After the frame has been drawn.
  virtual void framePlayed(const PlayedFrame& frame) = 0;
};

// Moves a display: ticks while something moves in sight, sleeps until something is due while
// nothing moves, and does nothing at all while nobody sees it. Signs that take long to lay out it
// prepares between the frames, in slices that keep none of them waiting.
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

  // Out of sight at first. `display` must outlive the player. `now` gives the monotonic clock's
  // time.
  explicit StripPlayer(TickerDisplay& display, FrameClock::Now now = &FrameClock::now,
                       QObject* parent = nullptr);
  ~StripPlayer() override;

  // Seconds on the strip's own clock: the monotonic clock without the time in which the strip was
  // out of sight or this process was kept from running, so that nothing jumps afterwards. While
  // something moves it does not pass the frame that was shown last: only frames take it further.
  double time() const { return clockTime() - lost_; }

  bool isInSight() const { return isInSight_; }
  void setInSight(bool isInSight);

  void setPaused(Pause reason, bool paused);
  bool isPaused(Pause reason) const;

  // The display was changed, or something was added to it.
  void displayChanged();

  FrameClock& clock() { return clock_; }

  // Null for none; must outlive the player, or be taken back.
  void setObserver(FrameObserver* observer) { observer_ = observer; }

  // The display's frame is another one than before: it must be shown now.
  Q_SIGNAL void frameDue();
  // The display has shown everything; once, until there is more.
  Q_SIGNAL void finished();

 private:
  double clockTime() const;
  void playFrame(double time);
  void wake();
  void advance(double clockTime);
  bool show(double clockTime);
  void observe(PlayedFrame frame);
  void schedule();
  void prepare();
  double longestGap() const;

  TickerDisplay& display_;
  FrameClock::Now now_;
  FrameClock clock_;
  FrameObserver* observer_ = nullptr;
  QTimer wakeTimer_;
  QTimer prepareTimer_; // runs while signs are prepared, in between all other events
  // Times on the monotonic clock.
  bool isInSight_ = false;
  double outSince_;  // while it is out of sight
  double wakeTime_;  // until when nothing happens, while nothing moves; infinity for no end
  double frame_ = 0; // of the last frame, while the clock ticks
  bool isFirstFrame_ = false;
  double lost_ = 0;     // seconds that the strip's clock has missed
  unsigned pauses_ = 0; // of Pause
  bool isFinished_ = false;
};

} // namespace zq::app
