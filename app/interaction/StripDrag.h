// A strip that is dragged.
#pragma once

#include <deque>

namespace zq::app {

// Follows a hand along the strip: what was under it when it took hold stays there, to the pixel.
// Places and travels are points, in the direction in which the strip goes forward; times seconds of
// the strip's clock.
class StripDrag {
 public:
  // How long before its end a drag must have moved to be a throw, and over what time its speed is
  // measured.
  static constexpr double ThrowWithinSeconds = 0.1;
  // A faster hand throws no faster.
  static constexpr double FastestThrow = 6000;

  // The hand takes hold at `place` of a strip that has gone to `travel`.
  StripDrag(double place, double travel) : start_(travel - place) {}

  // The travel at which what is held stands at `place`.
  double travelAt(double place) const { return start_ + place; }
  // Notes where the hand was.
  void moveTo(double place, double time);
  // Points per second at which a hand that lets go now throws the strip; 0 where it held it still.
  double speedAt(double time) const;

 private:
  struct Sample {
    double place;
    double time;
  };

  double start_;
  std::deque<Sample> samples_;
};

} // namespace zq::app
