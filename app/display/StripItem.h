// What a strip moves, without knowing what it shows.
#pragma once

#include <cstdint>

namespace zq::app {

// How often an item is shown.
struct LoopRule {
  // 0 or 1: once; n: n times; negative: without end.
  std::int64_t count = 1;
  // Seconds between the end of a round and the item's next showing.
  double delay = 0;
  // Whether the next round follows directly. Otherwise the strip runs empty between two rounds.
  bool continuous = false;

  bool isRepeating() const { return count < 0 || count > 1; }
  bool isOverAfter(std::int64_t showings) const {
    return count >= 0 && showings >= (count > 1 ? count : 1);
  }
};

// One thing that runs over a strip, from its arrival until its last round has left.
class StripItem {
 public:
  virtual ~StripItem();

  // Whether enter() takes next to no time; an item that does not is held up at its turn, and what
  // comes behind it. By default it does.
  virtual bool isReady();
  // Makes the item ready to be shown, each time that it is about to enter. Its length along the
  // strip in points, the gap after it included; zero, negative or not a number for an item that
  // cannot be shown, which is then dropped.
  virtual double enter() = 0;
  // Points at the end of a place of `length` points that it leaves empty, as it is now. 0 by
  // default.
  virtual double gap(double length) const;
  // The item is not on the strip any more; it may enter again.
  virtual void leave() = 0;
  // Read when the item is about to enter.
  virtual LoopRule loopRule() const = 0;
  // Whether nothing of it is to be seen, so that nobody needs to go to it. It is not by default.
  virtual bool isBlank() const;
  // The item is queued from now on, or no longer: it waits or is on the strip. Nothing by default.
  virtual void setQueued(bool isQueued);
};

} // namespace zq::app
