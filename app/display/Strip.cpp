#include "app/display/Strip.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

namespace {
constexpr double Never = std::numeric_limits<double>::infinity();
constexpr double Touching = StripRuns::Touching;
// Points that make no step.
constexpr double ShortestStep = 1;
} // namespace

Strip::Strip(double extent, double pointsPerSecond, double startTime)
    : motion_(pointsPerSecond, startTime), extent_(extent), now_(startTime), roundEnd_(startTime) {}

void Strip::setExtent(double points, double time, Edge kept) {
  advanceTo(time);
  const double before = extent_;
  extent_ = std::isfinite(points) ? std::max(points, 0.0) : 0.0;
  // A page begins where it did. On a strip without extent nothing has been in sight.
  if (page_) {
    motion_.restartAt(travel() + extent_ - before, now_);
  } else if (kept == Edge::Leaving && before > 0) {
    const double shift = before - extent_;
    runs_.shift(shift);
    past_.shift(shift);
  }
  runs_.see(travel(), extent_);
  retire();
}

void Strip::setSpeed(double pointsPerSecond, double time) {
  advanceTo(time);
  if (page_)
    page_->setSpeed(pointsPerSecond, now_);
  else
    motion_.setSpeed(pointsPerSecond, now_);
}

void Strip::easeToSpeed(double pointsPerSecond, double time) {
  advanceTo(time);
  if (page_) {
    page_->setSpeed(pointsPerSecond, now_);
    return;
  }
  const double velocity = motion_.velocityAt(now_);
  const double seconds = std::max(motion_.endAt(now_) - now_, EaseSeconds);
  motion_.restartAt(travel(), now_);
  motion_.setSpeed(pointsPerSecond, now_);
  easeFrom(velocity, seconds);
}

// Passes from a velocity into the strip's own motion.
void Strip::easeFrom(double velocity, double seconds) {
  addWay((velocity - motion_.speed()) * seconds / 3, seconds);
}

void Strip::setPaged(bool paged, double time) {
  advanceTo(time);
  if (paged == isPaged())
    return;
  const double speed = this->speed();
  if (paged)
    page_.emplace(speed, now_);
  else
    page_.reset();
  double here = motion_.goalAt(now_);
  // Nothing has left yet: the page begins with the first start.
  if (paged && !runs_.isEmpty())
    here = std::max(here, runs_.front().start + extent_);
  motion_.restartAt(here, now_);
  motion_.setSpeed(paged ? 0 : speed, now_);
  retire();
}

void Strip::advanceTo(double time) {
  if (!(time >= now_) || !std::isfinite(time))
    return;
  runs_.see(farthestBack(time), extent_);
  for (;;) {
    letRest();
    const Event event = nextEvent();
    if (event.kind == Event::Kind::None || event.time > time)
      break;
    perform(event);
  }
  now_ = time;
  runs_.see(travel(), extent_);
  retire();
}

// The least travel up to `time`.
double Strip::farthestBack(double time) const {
  return motion_.travelAt(motion_.lowestBetween(now_, time));
}

double Strip::endOfRound(const StripQueue::Entry& next) const {
  const double travel = next.continuous ? runs_.lastEnd() : runs_.lastEndOfRound() + extent_;
  return std::max(now_, motion_.timeAt(travel));
}

// When what the page shows has been there long enough.
double Strip::endOfPage() const {
  if (!page_ || runs_.isEmpty())
    return Never;
  const double here = travel();
  const double begin = std::max(runs_.front().start, here - extent_);
  return std::max(now_, page_->endOf(std::min(runs_.lastEnd(), here) - begin));
}

bool Strip::hasRoomOnPage() const {
  return runs_.isEmpty() || runs_.lastEnd() < travel() - Touching;
}

// Brings the travel to `goal`: at once on a paged strip, else by a glide.
void Strip::moveTo(double goal) {
  if (!page_) {
    motion_.glideTo(goal, now_, StepSeconds);
    return;
  }
  motion_.restartAt(goal, now_);
  page_->begin(now_);
  retire();
}

Strip::Event Strip::nextEvent() const {
  Event event;
  const double clear =
      page_ ? (hasRoomOnPage() ? now_ : Never) : std::max(now_, motion_.timeAt(runs_.lastEnd()));
  const Entry fresh = queue_.fresh();
  const Entry again = queue_.again();
  const bool isUrgent = fresh && fresh->priority() > 0;
  const bool againIsFirst = again && !isUrgent && (!fresh || again->ticket < fresh->ticket);
  const Entry returned = queue_.returned();
  if (returned && !isUrgent) {
    event = {Event::Kind::Start, clear, returned};
  } else if (againIsFirst && again->round == round_ && (!fresh || endOfRound(*again) <= clear)) {
    event = {Event::Kind::EndOfRound, endOfRound(*again), again};
  } else if (againIsFirst && again->round != round_) {
    event = {Event::Kind::Start, clear, again};
  } else if (fresh) {
    event = {Event::Kind::Start, clear, fresh};
  }
  if (event.time == Never || (event.kind == Event::Kind::Start && !event.entry->item->isReady()))
    event = {};
  if (queue_.restingUntil() < event.time)
    event = {Event::Kind::Wake, std::max(now_, queue_.restingUntil()), queue_.resting()};
  // What comes at the same time comes onto the page first.
  if (const double end = endOfPage(); end < event.time)
    event = {Event::Kind::Turn, end, nullptr};
  // What is to be shown again waits from the moment at which it has left.
  if (!runs_.isEmpty() && runs_.front().unseenAtStart > Touching) {
    const double left = std::max(now_, motion_.timeAt(runs_.front().end() + extent_));
    if (left < event.time)
      event = {Event::Kind::Leave, left, runs_.front().entry};
  }
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
    ++revision_;
    roundEnd_ = now_;
    return;
  case Event::Kind::Start:
    start(event.entry);
    retire();
    return;
  case Event::Kind::Turn:
    moveTo(runs_.pageAfter(travel(), extent_));
    return;
  case Event::Kind::Leave:
    retireFirst();
    return;
  }
}

void Strip::start(const Entry& entry) {
  queue_.take(entry);
  const LoopRule rule = entry->item->loopRule();
  const double length = entry->item->enter();
  if (!(length > 0) || !std::isfinite(length)) {
    entry->item->leave();
    queue_.settle(*entry);
    return;
  }
  // Where a run enters at the earliest: at the edge, or at the beginning of the page.
  const double edge = travel() - (page_ ? extent_ : 0);
  Run run{entry, edge - runs_.lastEnd() < Touching ? runs_.lastEnd() : edge, 0, nextNumber_++};
  run.setLength(length);
  if (page_)
    page_->add(now_);
  run.unseenAtEnd = run.shown;
  run.isOfRound = rule.isRepeating() || !entry->isDroppable();
  runs_.append(std::move(run));
  ++entry->onStrip;
  ++entry->showings;
  entry->round = round_;
  entry->delay = std::isfinite(rule.delay) ? std::max(rule.delay, 0.0) : 0.0;
  entry->continuous = rule.continuous;
  if (!rule.isOverAfter(entry->showings))
    queue_.putAgain(entry);
}

void Strip::retire() {
  // On the way back what comes into sight again stays.
  const double gone = farthestBack(Never) - extent_;
  while (!runs_.isEmpty() && runs_.front().end() <= gone)
    retireFirst();
}

void Strip::retireFirst() {
  Run run = runs_.takeFirst();
  ++revision_;
  // All of it has entered, but for what had not at a reversal.
  const bool isPutBack = run.unseenAtStart > Touching && queue_.putBack(run.entry);
  if (--run.entry->onStrip == 0) {
    run.item().leave();
    queue_.settle(*run.entry);
  }
  if (!isPutBack && !run.entry->isWithdrawn)
    past_.add(std::move(run));
}

void Strip::reverse(double time) {
  advanceTo(time);
  const double here = travel();
  const double goal = motion_.isGlidingToGoalAt(now_) ? motion_.goalAt(now_) : here;
  // Of these nothing but the gap has been left.
  while (!runs_.isEmpty() && runs_.front().shownEnd() <= here - extent_ + Touching)
    retireFirst();
  motion_.restartAt(extent_ - here, now_);
  const double left = travel() - extent_;
  runs_.mirror(left);
  // What has left stands beyond the edge at which runs leave now.
  past_.placeBefore(runs_.isEmpty() ? left : std::min(left, runs_.front().start));
  ++revision_;
  retire();
  if (goal > here)
    stepForward(now_);
  else if (goal < here)
    stepBack(now_);
}

// Puts the run that left last onto the strip again. False, and nothing is known any more, where it
// cannot be shown again.
bool Strip::bringBack() {
  Run run = past_.takeLast();
  // What came behind it may have become longer.
  const double end = runs_.isEmpty() ? run.end() : std::min(run.end(), runs_.front().start);
  if (run.entry->onStrip == 0) {
    const double length = run.item().enter();
    if (!(length > 0) || !std::isfinite(length)) {
      run.item().leave();
      past_.forgetAll();
      return false;
    }
    run.setLength(length);
  }
  run.start = end - run.length;
  ++run.entry->onStrip;
  ++revision_;
  queue_.settle(*run.entry);
  runs_.prepend(std::move(run));
  return true;
}

void Strip::withdraw(const Entry& entry) {
  const Entry kept = entry;
  queue_.take(kept);
  kept->isWithdrawn = true;
  queue_.settle(*kept);
  past_.forget(kept);
}

bool Strip::stepForward(double time) {
  advanceTo(time);
  if (runs_.isEmpty())
    return false;
  const double here = motion_.goalAt(now_);
  // What is as near as that comes by itself.
  const double near =
      here + (motion_.isGlidingAt(now_) ? ShortestStep
                                        : std::max(motion_.speed() * StepSeconds, ShortestStep));
  const auto next = std::find_if(runs().begin(), runs().end(), [&](const Run& run) {
    return run.start + extent_ >= near && !run.item().isBlank();
  });
  const double goal = (next != runs().end() ? next->start : runs_.lastEnd()) + extent_;
  if (goal < near)
    return false;
  moveTo(goal);
  return true;
}

bool Strip::stepBack(double time) {
  advanceTo(time);
  const double here = motion_.goalAt(now_);
  const double recent = motion_.isGlidingAt(now_)
                            ? ShortestStep
                            : std::max(motion_.speed() * RecentSeconds, ShortestStep);
  // The runs whose starts have left, the last one first: first those on the strip.
  std::size_t onStrip = runs_.size();
  while (onStrip > 0 && runs_[onStrip - 1].start + extent_ > here + Touching)
    --onStrip;
  const auto skipBlank = [&] {
    while (onStrip > 0 && runs_[onStrip - 1].item().isBlank())
      --onStrip;
  };
  skipBlank();
  bool isBefore = false; // whether the run before the one that is leaving is looked for
  if (onStrip > 0 && here - (runs_[onStrip - 1].start + extent_) < recent) {
    --onStrip;
    skipBlank();
    isBefore = true;
  }
  if (onStrip == 0 && !past_.isEmpty()) {
    const bool isRecent = here - (past_.last().start + extent_) < recent;
    if (bringBack()) {
      onStrip = 1;
      if (!isBefore && isRecent && !past_.isEmpty())
        bringBack();
    }
  }
  if (onStrip == 0 && !isBefore)
    return false;
  const double goal = runs_[onStrip > 0 ? onStrip - 1 : 0].start + extent_;
  if (here - goal < ShortestStep)
    return false;
  moveTo(goal);
  return true;
}

void Strip::moveBy(double points, double time) {
  advanceTo(time);
  if (std::isnan(points))
    return;
  const double way = std::clamp(points, -LongestMove, LongestMove);
  const double here = travel();
  motion_.restartAt(way < 0 ? std::min(reachableBack(here + way), here) : here, now_);
  if (way > 0)
    moveForward(way);
  if (page_)
    page_->begin(now_);
  advanceTo(now_);
}

// Stops wherever the next run may enter, so that it follows the one before without a gap.
void Strip::moveForward(double points) {
  double left = points;
  while (left > 0 && !runs_.isEmpty()) {
    const double here = travel();
    double step = runs_.lastEnd() - here;
    if (step <= Touching)
      step = runs_.lastEndOfRound() + extent_ - here;
    if (step <= Touching)
      step = runs_.lastEnd() + extent_ - here;
    step = std::min(left, std::max(step, Touching));
    motion_.restartAt(here + step, now_);
    left -= step;
    advanceTo(now_);
  }
}

// The travel nearest to `goal` to which the strip can go back. What comes into sight there is
// brought back.
double Strip::reachableBack(double goal) {
  while (!past_.isEmpty() && (runs_.isEmpty() || runs_.front().start + extent_ > goal))
    if (!bringBack())
      break;
  return runs_.isEmpty()
             ? travel()
             : std::max(goal, runs_.front().start + std::min(extent_, runs_.front().length));
}

void Strip::glideBy(double points, double seconds, double time) {
  advanceTo(time);
  if (std::isnan(points) || points == 0)
    return;
  const double way = std::clamp(points, -LongestMove, LongestMove);
  if (!page_) {
    addWay(way, seconds);
    return;
  }
  const double here = travel();
  const double goal = way < 0 ? std::min(reachableBack(here + way), here) : here + way;
  if (goal != here)
    moveTo(goal);
}

// Adds a glide to what moves, as far as there is something to show on its way.
void Strip::addWay(double points, double seconds) {
  Motion longest = motion_;
  longest.glideBy(points, now_, seconds);
  const double lowest = longest.travelAt(longest.lowestBetween(now_, Never));
  double way = points;
  if (lowest < travel() - Touching)
    way += std::max(std::min(reachableBack(lowest), travel()) - lowest, 0.0);
  else if (points > 0 && queue_.isEmpty())
    way -= std::clamp(longest.goalAt(now_) - std::max(runs_.lastEnd() + extent_, travel()), 0.0,
                      points);
  motion_.glideBy(way, now_, seconds);
}

void Strip::throwBy(double pointsPerSecond, double time) {
  moveBy(0, time);
  if (!page_ && !std::isnan(pointsPerSecond))
    easeFrom(pointsPerSecond, pointsPerSecond != 0 ? ThrowSeconds : EaseSeconds);
}

double Strip::nextEntryTime() {
  letRest();
  return nextEvent().time;
}

} // namespace zq::app
