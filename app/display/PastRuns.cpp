#include "app/display/PastRuns.h"

namespace zq::app {

void PastRuns::add(StripRun run) {
  cost_ += run.entry->waitingCost();
  runs_.push_back(std::move(run));
  while (runs_.size() > most_ || (runs_.size() > 1 && cost_ > mostCost_)) {
    cost_ -= runs_.front().entry->waitingCost();
    runs_.pop_front();
  }
}

StripRun PastRuns::takeLast() {
  StripRun run = std::move(runs_.back());
  runs_.pop_back();
  cost_ -= run.entry->waitingCost();
  return run;
}

void PastRuns::forgetAll() {
  runs_.clear();
  cost_ = 0;
}

void PastRuns::forget(const StripQueue::EntryRef& entry) {
  std::erase_if(runs_, [&](const StripRun& run) {
    if (run.entry != entry)
      return false;
    cost_ -= entry->waitingCost();
    return true;
  });
}

void PastRuns::shift(double points) {
  for (StripRun& run : runs_)
    run.start += points;
}

void PastRuns::placeBefore(double place) {
  for (auto run = runs_.rbegin(); run != runs_.rend(); ++run)
    place = run->start = place - run->length;
}

} // namespace zq::app
