// How long a page of a strip stands.
#pragma once

namespace zq::app {

// A page stands for as long as what it shows would take to pass at the strip's speed, so that the
// speed says how fast signs are read whether they move or not; and for LeastSeconds from the moment
// at which the last of it appeared: eight or nine words at the 160 to 180 words a minute of
// subtitles, and far from what flashes. Time in which nothing would pass, since the speed is 0,
// does not count.
//
// Times are seconds on one monotonic clock.
class PageReading {
 public:
  static constexpr double LeastSeconds = 3;

  // A page begins at `time`.
  PageReading(double pointsPerSecond, double time);

  double speed() const { return speed_; }
  // Negative and non-finite speeds count as 0.
  void setSpeed(double pointsPerSecond, double time);

  // Another page begins.
  void begin(double time);
  // More appears on the page.
  void add(double time);

  // When a page that shows `points` has stood long enough; infinity while nothing passes.
  double endOf(double points) const;

 private:
  void count(double time);

  double speed_;
  double since_;
  // Until then, of this page: points that have passed, seconds, and of these the one in which
  // something last appeared.
  double points_ = 0;
  double seconds_ = 0;
  double lastAdded_ = 0;
};

} // namespace zq::app
