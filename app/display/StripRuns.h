// What stands on a strip, one behind the other.
#pragma once

#include "app/display/StripQueue.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <limits>
#include <utility>
#include <vector>

namespace zq::app {

// One showing of an item, at its place on a strip. Places are travels, in points, see Strip.
struct StripRun {
  StripQueue::EntryRef entry;
  double start = 0;
  double length = 0;
  std::uint64_t number = 0; // counts from 1, never used twice
  double shown = 0;         // of its length, from its start: the rest shows nothing
  double gap = 0;           // what it leaves empty behind it, where another run does not do so
  // Points of what it shows, at both ends, that have not been in sight yet.
  double unseenAtStart = 0;
  double unseenAtEnd = 0;
  bool isOfRound = false; // whether the end of the round waits for it

  StripItem& item() const { return *entry->item; }
  double end() const { return start + length; }
  double shownEnd() const { return start + shown; }
  bool isSeen() const;
  // At least ShortestRun; reads its gap from the item.
  void setLength(double points);
};

// The runs on a strip in the order of entering, and how far they have been in sight. Their places
// grow from one to the next; nothing but what is said here moves them.
class StripRuns {
 public:
  // Places closer than this, in points, are the same place: one run follows another without the
  // clock's rounding between them.
  static constexpr double Touching = 1e-6;
  // No run is shorter, so that the number of runs on a strip is bounded by its extent.
  static constexpr double ShortestRun = 1;
  // What of the extent a page repeats of the one before, where a run is longer than the extent: a
  // word or two, by which the eye finds the place again.
  static constexpr double PageOverlap = 0.1;

  const std::deque<StripRun>& all() const { return runs_; }
  bool isEmpty() const { return runs_.empty(); }
  std::size_t size() const { return runs_.size(); }
  const StripRun& front() const { return runs_.front(); }
  const StripRun& operator[](std::size_t index) const { return runs_[index]; }

  // The end of the last run, and of the last one that a round consists of, also when these have
  // left; minus infinity before the first.
  double lastEnd() const { return lastEnd_; }
  double lastEndOfRound() const { return lastEndOfRound_; }

  void append(StripRun run);
  // Puts one that has left back in front of the others; it changes no end.
  void prepend(StripRun run) { runs_.push_front(std::move(run)); }
  StripRun takeFirst();
  void shift(double points);

  // Notes what has come into sight when the strip has gone to `travel`, in one go from where it was
  // when it was called last.
  void see(double travel, double extent);
  // A place p becomes -p, and the first run the last. The gap between two runs stays, which is the
  // other one's now. `left` is the mirrored edge at which runs leave: what is no more ended there.
  void mirror(double left);
  // Gives the runs new lengths, read by `lengthOf`, with what is between them; what stands at
  // `there` stays. All that was not wholly seen counts as unseen, but for what is in sight at
  // `travel`.
  template <class Measure>
  void remeasure(double there, Measure lengthOf, double travel, double extent);
  // The entry's item shows more or less of its place from now on.
  void updateShown(const StripQueue::EntryRef& entry);
  // The travel at which the page behind that at `travel` begins.
  double pageAfter(double travel, double extent) const;

 private:
  std::size_t indexAt(double place) const;
  void finishRemeasuring(double travel, double extent);
  void updateEnds(double left);

  std::deque<StripRun> runs_;
  double lastEnd_ = -std::numeric_limits<double>::infinity();
  double lastEndOfRound_ = -std::numeric_limits<double>::infinity();
};

template <class Measure>
void StripRuns::remeasure(double there, Measure lengthOf, double travel, double extent) {
  if (runs_.empty())
    return;
  const std::size_t anchor = indexAt(there);
  const StripRun& kept = runs_[anchor];
  const double part = std::clamp((there - kept.start) / kept.length, 0.0, 1.0);
  const double fixed = kept.start + part * kept.length;
  // The empty room before each run.
  std::vector<double> rooms(runs_.size(), 0.0);
  for (std::size_t i = 1; i < runs_.size(); ++i)
    rooms[i] = runs_[i].start - runs_[i - 1].end();
  for (StripRun& run : runs_) {
    const double measured = lengthOf(run);
    if (measured > 0 && measured < std::numeric_limits<double>::infinity())
      run.setLength(measured);
  }
  runs_[anchor].start = fixed - part * runs_[anchor].length;
  for (std::size_t i = anchor + 1; i < runs_.size(); ++i)
    runs_[i].start = runs_[i - 1].end() + rooms[i];
  for (std::size_t i = anchor; i > 0; --i)
    runs_[i - 1].start = runs_[i].start - rooms[i] - runs_[i - 1].length;
  finishRemeasuring(travel, extent);
}

} // namespace zq::app
