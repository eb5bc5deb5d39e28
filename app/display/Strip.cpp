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
// Points that make no step.
constexpr double ShortestStep = 1;
} // namespace

Strip::Strip(double extent, double pointsPerSecond, double startTime)
    : motion_(pointsPerSecond, startTime), extent_(extent), now_(startTime), lastEnd_(-Never),
      roundTravel_(-Never), roundEnd_(startTime) {}

bool Strip::Run::isSeen() const {
  return unseenAtStart <= Touching && unseenAtEnd <= Touching;
}

void Strip::setExtent(double points, double time, Edge kept) {
  advanceTo(time);
  const double before = extent_;
  extent_ = std::isfinite(points) ? std::max(points, 0.0) : 0.0;
  // A page begins where it did. On a strip without extent nothing has been in sight.
  if (page_) {
    motion_.restartAt(travel() + extent_ - before, now_);
  } else if (kept == Edge::Leaving && before > 0) {
    const double shift = before - extent_;
    for (std::deque<Run>* runs : {&runs_, &past_})
      for (Run& run : *runs)
        run.start += shift;
    lastEnd_ += shift;
    roundTravel_ += shift;
  }
  see(travel());
  retire();
}

void Strip::setSpeed(double pointsPerSecond, double time) {
  advanceTo(time);
  if (page_)
    page_->setSpeed(pointsPerSecond, now_);
  else
    motion_.setSpeed(pointsPerSecond, now_);
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
  if (paged && !runs_.empty())
    here = std::max(here, runs_.front().start + extent_);
  motion_.restartAt(here, now_);
  motion_.setSpeed(paged ? 0 : speed, now_);
  retire();
}

void Strip::advanceTo(double time) {
  if (!(time >= now_) || !std::isfinite(time))
    return;
  see(farthestBack(time));
  for (;;) {
    letRest();
    const Event event = nextEvent();
    if (event.kind == Event::Kind::None || event.time > time)
      break;
    perform(event);
  }
  now_ = time;
  see(travel());
  retire();
}

// The least travel up to `time`.
double Strip::farthestBack(double time) const {
  const double then = motion_.travelAt(time);
  const bool isEndPassed = motion_.isGlidingAt(now_) && !motion_.isGlidingAt(time);
  return std::min({travel(), then, isEndPassed ? motion_.goalAt(now_) : then});
}

// Notes what has come into sight when the strip has gone to `travel`, in one go from where it was
// when it was called last.
void Strip::see(double travel) {
  for (Run& run : runs_) {
    if (run.isSeen())
      continue;
    const double entered = std::clamp(travel - run.start, 0.0, run.shown);
    const double gone = std::clamp(travel - run.start - extent_, 0.0, run.shown);
    run.unseenAtEnd = std::min(run.unseenAtEnd, run.shown - entered);
    run.unseenAtStart = std::min(run.unseenAtStart, gone);
  }
}

double Strip::endOfRound(const StripQueue::Entry& next) const {
  const double travel = next.continuous ? lastEnd_ : roundTravel_ + extent_;
  return std::max(now_, motion_.timeAt(travel));
}

// When what the page shows has been there long enough.
double Strip::endOfPage() const {
  if (!page_ || runs_.empty())
    return Never;
  const double here = travel();
  const double begin = std::max(runs_.front().start, here - extent_);
  return std::max(now_, page_->endOf(std::min(lastEnd_, here) - begin));
}

bool Strip::hasRoomOnPage() const {
  return runs_.empty() || lastEnd_ < travel() - Touching;
}

double Strip::nextPage() const {
  const double here = travel();
  for (const Run& run : runs_) {
    if (run.shownEnd() <= here + Touching)
      continue;
    if (run.start > here - extent_ + Touching)
      return run.start + extent_;
    return here + std::max(extent_ * (1 - PageOverlap), ShortestStep);
  }
  return lastEnd_ + extent_;
}

// Brings the travel to `goal`: at once on a paged strip, else by a glide.
void Strip::moveTo(double goal, double seconds) {
  if (!page_) {
    motion_.glideTo(goal, now_, seconds);
    return;
  }
  motion_.restartAt(goal, now_);
  page_->begin(now_);
  retire();
}

Strip::Event Strip::nextEvent() const {
  Event event;
  const double clear =
      page_ ? (hasRoomOnPage() ? now_ : Never) : std::max(now_, motion_.timeAt(lastEnd_));
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
  if (!runs_.empty() && runs_.front().unseenAtStart > Touching) {
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
    moveTo(nextPage());
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
  Run run{entry, edge - lastEnd_ < Touching ? lastEnd_ : edge, 0, nextNumber_++};
  setLength(run, length);
  if (page_)
    page_->add(now_);
  run.unseenAtEnd = run.shown;
  run.isOfRound = rule.isRepeating() || !entry->isDroppable();
  lastEnd_ = run.end();
  if (run.isOfRound)
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
  // On the way back what comes into sight again stays.
  const double gone = std::min(travel(), motion_.goalAt(now_)) - extent_;
  while (!runs_.empty() && runs_.front().end() <= gone)
    retireFirst();
}

void Strip::retireFirst() {
  Run run = std::move(runs_.front());
  runs_.pop_front();
  ++revision_;
  // All of it has entered, but for what had not at a reversal.
  const bool isPutBack = run.unseenAtStart > Touching && queue_.putBack(run.entry);
  if (--run.entry->onStrip == 0) {
    run.item().leave();
    queue_.settle(*run.entry);
  }
  if (!isPutBack && !run.entry->isWithdrawn)
    keepPast(std::move(run));
}

void Strip::setLength(Run& run, double length) {
  run.length = std::max(length, ShortestRun);
  run.gap = std::clamp(run.item().gap(run.length), 0.0, run.length);
  run.shown = run.length - run.gap;
}

// The last run that begins before a place, or the oldest one.
std::size_t Strip::runAt(double place) const {
  std::size_t after = 0;
  while (after < runs_.size() && runs_[after].start <= place)
    ++after;
  return after > 0 ? after - 1 : 0;
}

void Strip::finishRemeasuring() {
  for (Run& run : runs_) {
    if (run.unseenAtStart > 0)
      run.unseenAtStart = run.shown;
    if (run.unseenAtEnd > 0)
      run.unseenAtEnd = run.shown;
  }
  see(travel());
  updateEnds();
}

// After the runs were moved relatively to each other.
void Strip::updateEnds() {
  if (runs_.empty())
    return;
  lastEnd_ = runs_.back().end();
  const auto last =
      std::find_if(runs_.rbegin(), runs_.rend(), [](const Run& run) { return run.isOfRound; });
  roundTravel_ = last != runs_.rend() ? last->end() : travel() - extent_;
}

void Strip::updateShown(const Entry& entry) {
  for (Run& run : runs_)
    if (run.entry == entry)
      run.shown = run.length - std::clamp(run.item().gap(run.length), 0.0, run.length);
}

void Strip::reverse(double time) {
  advanceTo(time);
  const double here = travel();
  const double goal = motion_.goalAt(now_);
  // Of these nothing but the gap has been left.
  while (!runs_.empty() && runs_.front().shownEnd() <= here - extent_ + Touching)
    retireFirst();
  mirrorRuns();
  motion_.restartAt(extent_ - here, now_);
  lastEnd_ = roundTravel_ = travel() - extent_;
  updateEnds();
  // What has left stands beyond the edge at which runs leave now.
  double edge = travel() - extent_;
  if (!runs_.empty())
    edge = std::min(edge, runs_.front().start);
  for (auto run = past_.rbegin(); run != past_.rend(); ++run)
    edge = run->start = edge - run->length;
  ++revision_;
  retire();
  if (goal > here)
    stepForward(now_);
  else if (goal < here)
    stepBack(now_);
}

// A place p becomes extent - p. The gap between two runs stays, which is the other one's now.
void Strip::mirrorRuns() {
  std::reverse(runs_.begin(), runs_.end());
  for (std::size_t i = 0; i < runs_.size(); ++i) {
    Run& run = runs_[i];
    const double room =
        i + 1 < runs_.size() ? std::max(run.start - runs_[i + 1].shownEnd(), 0.0) : run.gap;
    run.length = run.shown + std::min(run.gap, room);
    run.start = -run.shownEnd();
    std::swap(run.unseenAtStart, run.unseenAtEnd);
  }
}

void Strip::keepPast(Run run) {
  pastCost_ += run.entry->waitingCost();
  past_.push_back(std::move(run));
  while (past_.size() > MostPast || (past_.size() > 1 && pastCost_ > MostPastCost)) {
    pastCost_ -= past_.front().entry->waitingCost();
    past_.pop_front();
  }
}

// Puts the run that left last onto the strip again. False, and nothing is known any more, where it
// cannot be shown again.
bool Strip::bringBack() {
  Run run = std::move(past_.back());
  past_.pop_back();
  pastCost_ -= run.entry->waitingCost();
  // What came behind it may have become longer.
  const double end = runs_.empty() ? run.end() : std::min(run.end(), runs_.front().start);
  if (run.entry->onStrip == 0) {
    const double length = run.item().enter();
    if (!(length > 0) || !std::isfinite(length)) {
      run.item().leave();
      past_.clear();
      pastCost_ = 0;
      return false;
    }
    setLength(run, length);
  }
  run.start = end - run.length;
  ++run.entry->onStrip;
  ++revision_;
  queue_.settle(*run.entry);
  runs_.push_front(std::move(run));
  return true;
}

void Strip::withdraw(const Entry& entry) {
  const Entry kept = entry;
  queue_.take(kept);
  kept->isWithdrawn = true;
  queue_.settle(*kept);
  std::erase_if(past_, [&](const Run& run) {
    if (run.entry != kept)
      return false;
    pastCost_ -= kept->waitingCost();
    return true;
  });
}

bool Strip::stepForward(double time) {
  advanceTo(time);
  if (runs_.empty())
    return false;
  const double here = motion_.goalAt(now_);
  // What is as near as that comes by itself.
  const double near =
      here + (motion_.isGlidingAt(now_) ? ShortestStep
                                        : std::max(motion_.speed() * StepSeconds, ShortestStep));
  const auto next = std::find_if(runs_.begin(), runs_.end(),
                                 [&](const Run& run) { return run.start + extent_ >= near; });
  const double goal = (next != runs_.end() ? next->start : lastEnd_) + extent_;
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
  bool isBefore = false; // whether the run before the one that is leaving is looked for
  if (onStrip > 0 && here - (runs_[onStrip - 1].start + extent_) < recent) {
    --onStrip;
    isBefore = true;
  }
  if (onStrip == 0 && !past_.empty()) {
    const bool isRecent = here - (past_.back().start + extent_) < recent;
    if (bringBack()) {
      onStrip = 1;
      if (!isBefore && isRecent && !past_.empty())
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
  while (left > 0 && !runs_.empty()) {
    const double here = travel();
    double step = lastEnd_ - here;
    if (step <= Touching)
      step = roundTravel_ + extent_ - here;
    if (step <= Touching)
      step = lastEnd_ + extent_ - here;
    step = std::min(left, std::max(step, Touching));
    motion_.restartAt(here + step, now_);
    left -= step;
    advanceTo(now_);
  }
}

// The travel nearest to `goal` to which the strip can go back. What comes into sight there is
// brought back.
double Strip::reachableBack(double goal) {
  while (!past_.empty() && (runs_.empty() || runs_.front().start + extent_ > goal))
    if (!bringBack())
      break;
  return runs_.empty()
             ? travel()
             : std::max(goal, runs_.front().start + std::min(extent_, runs_.front().length));
}

void Strip::glideBy(double points, double seconds, double time) {
  advanceTo(time);
  if (std::isnan(points) || points == 0)
    return;
  const double way = std::clamp(points, -LongestMove, LongestMove);
  const double from = motion_.goalAt(now_);
  const double end = runs_.empty() ? from : std::max(lastEnd_ + extent_, from);
  const double goal = way < 0            ? std::min(reachableBack(from + way), from)
                      : queue_.isEmpty() ? std::min(from + way, end)
                                         : from + way;
  if (goal != from)
    moveTo(goal, seconds);
}

void Strip::throwBy(double pointsPerSecond, double time) {
  // A glide, which slows down with the cube of its time, goes a third of what its first speed
  // would.
  moveBy(0, time);
  if (!page_)
    glideBy(pointsPerSecond * ThrowSeconds / 3, ThrowSeconds, time);
}

double Strip::nextEntryTime() {
  letRest();
  return nextEvent().time;
}

} // namespace zq::app
