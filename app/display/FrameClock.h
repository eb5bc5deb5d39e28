// When frames are due.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>

namespace zq::app {

// Ticks at the screen's refresh rate while it runs, and gives the time. What moves is computed
// from the time, so that a late or a missing tick changes no position.
//
// Thread: the one that made it.
class FrameClock : public QObject {
  Q_OBJECT

 public:
  explicit FrameClock(QObject* parent = nullptr);
  ~FrameClock() override;

  // Seconds on the monotonic clock of the process; the same clock for all.
  static double now();

  // Ticks per second; 60 for a rate that is not between 1 and 1000.
  void setRate(double ticksPerSecond);
  double rate() const { return 1 / period_; }

  void start();
  void stop();
  bool isRunning() const { return timer_.isActive(); }

  Q_SIGNAL void tick(double time);

 private:
  void schedule(double time);

  QTimer timer_;
  double period_;
  double due_ = 0;
};

} // namespace zq::app
