// What has left a strip and may come back.
#pragma once

#include "app/display/StripRuns.h"

#include <deque>

namespace zq::app {

// The last runs that have left a strip, at most `most` of them, and as many as together cost no
// more than `mostCost` in the queue; of these the last one is always kept. They are known in the
// order in which they left.
class PastRuns {
 public:
  PastRuns(std::size_t most, std::size_t mostCost) : most_(most), mostCost_(mostCost) {}

  bool isEmpty() const { return runs_.empty(); }
  // The one that left last.
  const StripRun& last() const { return runs_.back(); }

  void add(StripRun run);
  StripRun takeLast();
  void forgetAll();
  void forget(const StripQueue::EntryRef& entry);

  void shift(double points);
  // Puts them one behind the other before `place`, the last one nearest to it.
  void placeBefore(double place);

 private:
  std::size_t most_;
  std::size_t mostCost_;
  std::deque<StripRun> runs_;
  std::size_t cost_ = 0;
};

} // namespace zq::app
