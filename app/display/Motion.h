// How far a strip has moved, as a function of the clock.
#pragma once

namespace zq::app {

// The travel of a strip: points moved since the beginning, growing at `speed` points per second.
// Times are seconds on one monotonic clock; nothing counts frames, so that the motion is the same
// at every frame rate and with dropped frames.
class Motion {
 public:
  Motion() = default;
  explicit Motion(double pointsPerSecond, double startTime = 0);

  // Points moved until `time`. Times before the last change of speed count as that change.
  double travelAt(double time) const;
  // When the strip will have moved `travel` points; infinity where it never will. A travel already
  // done gives the time of the last change of speed or later.
  double timeAt(double travel) const;

  double speed() const { return speed_; }
  // Changes the speed at `time`, without a jump. Negative and non-finite speeds count as 0.
  void setSpeed(double pointsPerSecond, double time);

 private:
  double speed_ = 0;
  double since_ = 0;
  double travelThen_ = 0;
};

} // namespace zq::app
