// How far a strip has moved, as a function of the clock.
#pragma once

namespace zq::app {

// The travel of a strip: points moved since the beginning, growing at `speed` points per second;
// but for glides, which add a way to that, also back, within a short time. Times are seconds on one
// monotonic clock; nothing counts frames, so that the motion is the same at every frame rate and
// with dropped frames.
//
// A glide begins fast and becomes ever slower: what is left of its way shrinks with the cube of the
// time that is left, so that it passes into the strip's own motion without a step in speed, at one
// moment, behind which nothing is left of it.
class Motion {
 public:
  // No strip is faster: nothing can be seen of it any more, and as many short signs as pass in a
  // frame can still be counted.
  static constexpr double MostPointsPerSecond = 1e6;

  Motion() = default;
  explicit Motion(double pointsPerSecond, double startTime = 0);

  // Points moved until `time`. Times before the last change count as that change.
  double travelAt(double time) const;
  // Points per second at which it moves then; negative for back.
  double velocityAt(double time) const;
  // From when on the strip has moved at least `travel` points, for good; infinity where it never
  // will. A travel already done gives the time of the last change or later.
  double timeAt(double travel) const;
  // When within these times the travel is least.
  double lowestBetween(double begin, double end) const;

  double speed() const { return speed_; }
  // Changes the speed at `time`, without a jump in place; a glide to a place ends there at the same
  // time as before, another one goes on from its velocity. Negative and non-finite speeds count
  // as 0.
  void setSpeed(double pointsPerSecond, double time);

  // Counts from `travel` on at `time`, at the strip's speed; a glide that is under way ends. Both
  // must be finite.
  void restartAt(double travel, double time);

  // Moves to `travel` within `seconds` from `time` on. Forward it passes that at the strip's speed;
  // earlier where it would be there by itself. Back it turns there, and has the strip's speed again
  // when the time is over. Takes over from a glide that is under way. Does nothing where an
  // argument is no finite number or the time is none.
  void glideTo(double travel, double time, double seconds);
  // Moves by so many points, negative for back, more than the strip does by itself within
  // `seconds` from `time` on; what is left of a glide that is under way is added. The velocity
  // grows by three times the way a second at first, so that a third of a difference in speed makes
  // that difference pass smoothly. Does nothing as above.
  void glideBy(double points, double time, double seconds);
  bool isGlidingAt(double time) const { return glideStart_ < since_ && time < since_; }
  // Whether that is on its way to a place, by glideTo.
  bool isGlidingToGoalAt(double time) const { return isGlidingAt(time) && hasGoal_; }
  // The place of the glide that is under way at `time`, or where it ends that has none; without a
  // glide travelAt(time).
  double goalAt(double time) const;
  // When that ends; without one `time`.
  double endAt(double time) const { return isGlidingAt(time) ? since_ : time; }

  // Whether both are the same function of time, with the same past.
  bool operator==(const Motion&) const = default;

 private:
  // Of a glide's time, what is left at `time`: from 1 to 0.
  double partLeftAt(double time) const;
  // The same when the travel is least.
  double partAtLowest() const;
  // The way that is left then.
  double wayLeft(double part) const;

  double speed_ = 0;
  // Travel grows at the speed from here on.
  double since_ = 0;
  double travelThen_ = 0;
  // The glide up to there; without one it starts where it ends.
  double glideStart_ = 0;
  double way_ = 0; // which it adds
  bool hasGoal_ = false;
  double goal_ = 0;
};

} // namespace zq::app
