#include "app/display/StripRuns.h"

namespace zq::app {

namespace {
// A page goes on by at least so many points.
constexpr double ShortestPage = 1;
} // namespace

bool StripRun::isSeen() const {
  return unseenAtStart <= StripRuns::Touching && unseenAtEnd <= StripRuns::Touching;
}

void StripRun::setLength(double points) {
  length = std::max(points, StripRuns::ShortestRun);
  gap = std::clamp(item().gap(length), 0.0, length);
  shown = length - gap;
}

void StripRuns::append(StripRun run) {
  lastEnd_ = run.end();
  if (run.isOfRound)
    lastEndOfRound_ = lastEnd_;
  runs_.push_back(std::move(run));
}

StripRun StripRuns::takeFirst() {
  StripRun run = std::move(runs_.front());
  runs_.pop_front();
  return run;
}

void StripRuns::shift(double points) {
  for (StripRun& run : runs_)
    run.start += points;
  lastEnd_ += points;
  lastEndOfRound_ += points;
}

void StripRuns::see(double travel, double extent) {
  for (StripRun& run : runs_) {
    if (run.isSeen())
      continue;
    const double entered = std::clamp(travel - run.start, 0.0, run.shown);
    const double gone = std::clamp(travel - run.start - extent, 0.0, run.shown);
    run.unseenAtEnd = std::min(run.unseenAtEnd, run.shown - entered);
    run.unseenAtStart = std::min(run.unseenAtStart, gone);
  }
}

void StripRuns::mirror(double left) {
  std::reverse(runs_.begin(), runs_.end());
  for (std::size_t i = 0; i < runs_.size(); ++i) {
    StripRun& run = runs_[i];
    const double room =
        i + 1 < runs_.size() ? std::max(run.start - runs_[i + 1].shownEnd(), 0.0) : run.gap;
    run.length = run.shown + std::min(run.gap, room);
    run.start = -run.shownEnd();
    std::swap(run.unseenAtStart, run.unseenAtEnd);
  }
  updateEnds(left);
}

// After the runs were moved relatively to each other.
void StripRuns::updateEnds(double left) {
  lastEnd_ = runs_.empty() ? left : runs_.back().end();
  const auto last =
      std::find_if(runs_.rbegin(), runs_.rend(), [](const StripRun& run) { return run.isOfRound; });
  lastEndOfRound_ = last != runs_.rend() ? last->end() : left;
}

// The last run that begins before a place, or the oldest one.
std::size_t StripRuns::indexAt(double place) const {
  std::size_t after = 0;
  while (after < runs_.size() && runs_[after].start <= place)
    ++after;
  return after > 0 ? after - 1 : 0;
}

void StripRuns::finishRemeasuring(double travel, double extent) {
  for (StripRun& run : runs_) {
    if (run.unseenAtStart > 0)
      run.unseenAtStart = run.shown;
    if (run.unseenAtEnd > 0)
      run.unseenAtEnd = run.shown;
  }
  see(travel, extent);
  updateEnds(travel - extent);
}

void StripRuns::updateShown(const StripQueue::EntryRef& entry) {
  for (StripRun& run : runs_)
    if (run.entry == entry)
      run.shown = run.length - std::clamp(run.item().gap(run.length), 0.0, run.length);
}

double StripRuns::pageAfter(double travel, double extent) const {
  for (const StripRun& run : runs_) {
    if (run.shownEnd() <= travel + Touching || run.item().isBlank())
      continue;
    if (run.start > travel - extent + Touching)
      return run.start + extent;
    return travel + std::max(extent * (1 - PageOverlap), ShortestPage);
  }
  return lastEnd_ + extent;
}

} // namespace zq::app
