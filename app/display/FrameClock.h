// When frames are due.
#pragma once

#include "app/display/BlankEstimate.h"
#include "app/display/BlankSource.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>
#include <memory>

namespace zq::app {

// Ticks once for each refresh of the screen while it runs, and tells for when the frame is that is
// drawn now. What moves is computed from that time, so that a late or a missing tick changes no
// position: after missed blanks the next step is larger, and nothing is made up for.
//
// Times are those of the blanks, one period apart, and not those at which the process happened to
// wake, see BlankEstimate. They never run backwards.
//
// Blanks come from a source; without one, and while it does not answer, from a timer at the
// screen's rate.
//
// Thread: the one that made it.
class FrameClock : public QObject {
  Q_OBJECT

 public:
  using Now = std::function<double()>;

  // `now` gives the monotonic clock's time.
  explicit FrameClock(QObject* parent = nullptr, Now now = &FrameClock::now);
  ~FrameClock() override;

  // Seconds on the monotonic clock of the process; the same clock for all.
  static double now();

  // Refreshes per second by the screen's word; 60 for a rate that is not between 1 and 1000.
  void setRate(double ticksPerSecond);
  double rate() const { return 1 / estimate_.period(); }
  // Seconds from one blank to the next, as far as they were observed.
  double period() const { return estimate_.period(); }

  // Null for none. A running clock goes on.
  void setSource(std::unique_ptr<BlankSource> source);
  // Whether ticks come from a source, and not from the timer.
  bool hasAnsweringSource() const { return source_ && answers_; }

  void start();
  void stop();
  bool isRunning() const { return isRunning_; }

  // The source's count of the blank for which the frame of the last tick is.
  std::uint64_t blank() const { return blank_; }

  // A frame is due. `time` is when it is expected on the screen: that of the coming blank, on the
  // monotonic clock, at most one period ahead but for reports of blanks that come early.
  Q_SIGNAL void tick(double time);

 private:
  void receive(quint64 count, double time);
  void wake();
  void ask();
  void emitTick();

  Now now_;
  BlankEstimate estimate_;
  double givenPeriod_;
  std::unique_ptr<BlankSource> source_;
  QTimer timer_; // for the next tick, or for the source's silence
  bool isRunning_ = false;
  bool isAsked_ = false; // the source owes a report
  bool isFirst_ = false; // nothing was reported since the start
  bool answers_ = true;
  bool hasReport_ = false; // the source has reported, and the estimate is of its blanks
  std::uint64_t blank_ = 0;
  double time_ = 0; // of the last tick
};

} // namespace zq::app
