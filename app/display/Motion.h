// How far a strip has moved, as a function of the clock.
#pragma once

namespace zq::app {

// The travel of a strip: points moved since the beginning, growing at `speed` points per second;
// but for glides, which go a way, also back, within a short time. Times are seconds on one
// monotonic clock; nothing counts frames, so that the motion is the same at every frame rate and
// with dropped frames.
class Motion {
 public:
  // No strip is faster: nothing can be seen of it any more, and as many short signs as pass in a
  // frame can still be counted.
  static constexpr double MostPointsPerSecond = 1e6;

  Motion() = default;
  explicit Motion(double pointsPerSecond, double startTime = 0);

  // Points moved until `time`. Times before the last change count as that change.
  double travelAt(double time) const;
  // From when on the strip has moved at least `travel` points; infinity where it never will. A
  // travel already done gives the time of the last change or later.
  double timeAt(double travel) const;

  double speed() const { return speed_; }
  // Changes the speed at `time`, without a jump; during a glide, that of what follows it. Negative
  // and non-finite speeds count as 0.
  void setSpeed(double pointsPerSecond, double time);

  // Counts from `travel` on at `time`; a glide that is under way ends. Both must be finite.
  void restartAt(double travel, double time);

  // Moves to `travel` within `seconds` from `time` on, fast at first and ever slower, and goes on
  // at its speed from there. Takes over from a glide that is under way. Does nothing where an
  // argument is no finite number or the time is none.
  void glideTo(double travel, double time, double seconds);
  bool isGlidingAt(double time) const { return glideStart_ < since_ && time < since_; }
  // The travel at the end of the glide that is under way at `time`; without one travelAt(time).
  double goalAt(double time) const { return isGlidingAt(time) ? travelThen_ : travelAt(time); }

  // Whether both are the same function of time, with the same past.
  bool operator==(const Motion&) const = default;

 private:
  double speed_ = 0;
  // Travel grows at the speed from here on.
  double since_ = 0;
  double travelThen_ = 0;
  // The glide up to there; without one it starts where it ends.
  double glideStart_ = 0;
  double glideFrom_ = 0;
};

} // namespace zq::app
