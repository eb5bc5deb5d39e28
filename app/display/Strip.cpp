#include "app/display/Strip.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

namespace {
constexpr double Never = std::numeric_limits<double>::infinity();
// No run is shorter, so that the number of runs on a strip is bounded by its extent.
constexpr double ShortestRun = 1;
// Places closer than this, in points, are the same place: one run follows another without the
// clock's rounding between them.
constexpr double Touching = 1e-6;
} // namespace

Strip::Strip(double extent, double pointsPerSecond, double startTime)
    : motion_(pointsPerSecond, startTime), extent_(extent), now_(startTime), lastEnd_(-Never),
      roundTravel_(-Never), roundEnd_(startTime) {}

void Strip::setExtent(double points, double time) {
  advanceTo(time);
  extent_ = std::isfinite(points) ? std::max(points, 0.0) : 0.0;
  retire();
}

void Strip::setSpeed(double pointsPerSecond, double time) {
  advanceTo(time);
  motion_.setSpeed(pointsPerSecond, now_);
}

void Strip::advanceTo(double time) {
  if (!(time >= now_) || !std::isfinite(time))
    return;
  for (;;) {
    letRest();
    const Event event = nextEvent();
    if (event.kind == Event::Kind::None || event.time > time)
      break;
    perform(event);
  }
  now_ = time;
  retire();
}

double Strip::endOfRound(const StripQueue::Entry& next) const {
  const double travel = next.continuous ? lastEnd_ : roundTravel_ + extent_;
  return std::max(now_, motion_.timeAt(travel));
}

Strip::Event Strip::nextEvent() const {
  Event event;
  const double clear = std::max(now_, motion_.timeAt(lastEnd_));
  const Entry fresh = queue_.fresh();
  const Entry again = queue_.again();
  const bool againIsFirst = again && (!fresh || again->ticket < fresh->ticket);
  if (const Entry returned = queue_.returned()) {
    event = {Event::Kind::Start, clear, returned};
  } else if (againIsFirst && again->round == round_ && (!fresh || endOfRound(*again) <= clear)) {
    event = {Event::Kind::EndOfRound, endOfRound(*again), again};
  } else if (againIsFirst && again->round != round_) {
    event = {Event::Kind::Start, clear, again};
  } else if (fresh) {
    event = {Event::Kind::Start, clear, fresh};
  }
  if (event.time == Never)
    event = {};
  if (queue_.restingUntil() < event.time)
    event = {Event::Kind::Wake, std::max(now_, queue_.restingUntil()), queue_.resting()};
  return event;
}

// An item whose turn has come before its delay is over steps aside.
void Strip::letRest() {
  for (Entry next = queue_.again(); next && next->round != round_ && next->delay > 0;
       next = queue_.again())
    queue_.rest(next, roundEnd_ + next->delay);
}

void Strip::perform(const Event& event) {
  now_ = event.time;
  switch (event.kind) {
  case Event::Kind::None:
    return;
  case Event::Kind::Wake:
    queue_.wakeFirst();
    return;
  case Event::Kind::EndOfRound:
    ++round_;
    roundEnd_ = now_;
    return;
  case Event::Kind::Start:
    start(event.entry);
    retire();
    return;
  }
}

void Strip::start(const Entry& entry) {
  queue_.take(entry);
  const LoopRule rule = entry->item->loopRule();
  const double length = entry->item->enter();
  if (!(length > 0) || !std::isfinite(length)) {
    entry->item->leave();
    return;
  }
  const double here = travel();
  Run run{entry, here - lastEnd_ < Touching ? lastEnd_ : here, std::max(length, ShortestRun),
          nextNumber_++};
  lastEnd_ = run.end();
  if (rule.isRepeating() || !entry->isDroppable())
    roundTravel_ = lastEnd_;
  runs_.push_back(std::move(run));
  ++entry->onStrip;
  ++entry->showings;
  entry->round = round_;
  entry->delay = std::isfinite(rule.delay) ? std::max(rule.delay, 0.0) : 0.0;
  entry->continuous = rule.continuous;
  if (!rule.isOverAfter(entry->showings))
    queue_.putAgain(entry);
}

void Strip::retire() {
  const double gone = travel() - extent_;
  while (!runs_.empty() && runs_.front().end() <= gone) {
    const Entry entry = runs_.front().entry;
    runs_.pop_front();
    if (--entry->onStrip == 0)
      entry->item->leave();
  }
}

double Strip::nextEntryTime() {
  letRest();
  return nextEvent().time;
}

} // namespace zq::app
