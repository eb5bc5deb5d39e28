// The order and the places of items on a moving strip.
#pragma once

#include "app/access/PageReading.h"
#include "app/display/Motion.h"
#include "app/display/PastRuns.h"
#include "app/display/StripQueue.h"
#include "app/display/StripRuns.h"

#include <deque>
#include <limits>
#include <optional>

namespace zq::app {

// Moves items over a strip of a given extent along its direction, one behind the other.
//
// All places are travels, see Motion: an item's leading edge stands `travel - start` points behind
// the edge at which items enter, and the item has left when `travel - end` reaches the extent. An
// item that is on the strip moves with it and with nothing else: what is added, dropped or changed
// behind it does not move it.
//
// Order: as added, new items of a higher priority first, see StripQueue. A round is over when the
// first waiting item has already been shown in it. The next round begins when all items of this one
// have left the strip, or, if that first item scrolls continuously, when the last item has entered
// wholly; each item's own delay counts from there. Items that have not been shown yet pass
// meanwhile, and droppable items that are shown once are not waited for: a stream of them does not
// keep the next round away.
//
// A reversal lets everything go the other way, without moving anything that can be seen: runs are
// mirrored, and the one that entered last leaves next. What had begun to leave comes back into
// sight, and behind it comes what waits. A run of which a part has not been in sight when it has
// left, because it was still entering at a reversal, counts as not shown: its entry waits for that
// showing again, before the others, see StripQueue::putBack. A step that is under way becomes one
// in the new direction.
//
// Steps forward and back move everything together, as far as it takes to bring the start of the
// next or of the one before to the edge at which runs leave; those of blank items are passed over,
// also by pages. Runs that have left are kept for that:
// the last MostPast of them, as many as together cost no more than MostPastCost in the queue, those
// that were withdrawn excepted; and none from before the last remeasure.
//
// A paged strip does not move: it shows a page, see setPaged(), for as long as PageReading says,
// and then at once the next one. All else holds there as well: where a moving strip lets an item
// enter when there is room for it at the edge, a paged one puts it onto the page as long as that
// has room behind the last one, or onto the next page; steps are made at once.
//
// Times never run backwards; a time before the last one is ignored. What happens is the same
// however the time is cut into steps, but for items that are not ready when their turn has come:
// they enter as soon as they are.
class Strip {
 public:
  using Entry = StripQueue::EntryRef;

  using Run = StripRun;

  static constexpr std::size_t MostPast = 50;
  static constexpr std::size_t MostPastCost = 1'000'000;
  // What a step takes.
  static constexpr double StepSeconds = 0.4;
  static constexpr double ThrowSeconds = 0.9;
  // What it takes to come from a stand to the strip's speed.
  static constexpr double EaseSeconds = 0.3;
  static constexpr double LongestMove = 20'000;
  // A run whose start left at most so long ago counts as left at its start: a step back goes to
  // the one before.
  static constexpr double RecentSeconds = 2;

  explicit Strip(double extent = 0, double pointsPerSecond = 0, double startTime = 0);

  // An edge of the strip.
  enum class Edge { Entering, Leaving };

  double extent() const { return extent_; }
  // Runs keep their places from the edge `kept`, on a paged strip from the one at which they leave.
  // What stands beyond the one at which runs enter then, enters again.
  void setExtent(double points, double time, Edge kept = Edge::Entering);
  double speed() const { return page_ ? page_->speed() : motion_.speed(); }
  void setSpeed(double pointsPerSecond, double time);
  // The same, but the strip comes to that speed smoothly from the one that it has, by EaseSeconds
  // later or when what is under way ends; a step is no longer bound to its end.
  void easeToSpeed(double pointsPerSecond, double time);

  // Lets everything go the other way from `time` on, see above.
  void reverse(double time);

  // Whether the strip changes page by page, without motion. A page begins with the start of a run,
  // the first one that the page before did not show to its end, at the edge at which runs leave; or
  // within a run that is longer than the extent. What is on the strip at the change stays there, at
  // its place where a start has already left, and nothing is shown twice or left out.
  bool isPaged() const { return page_.has_value(); }
  void setPaged(bool paged, double time);

  StripQueue& queue() { return queue_; }
  const StripQueue& queue() const { return queue_; }

  // Lets everything happen that is due at `time`.
  void advanceTo(double time);

  // Goes to the next run whose start has not been at the edge at which runs leave, or to the end of
  // the last one. A further step during the way goes on from its end. False where there is nothing
  // to go to: an empty strip has no next run.
  bool stepForward(double time);
  // Goes to the start of the run that is leaving, or, when that is there or has just left, to the
  // start of the run before. What was on the strip may stand beyond the edge at which it entered
  // then, and enters again. False where no start has left that is still known.
  bool stepBack(double time);

  // Moves everything at once, forward or back, as a hand does; ends a step that is under way, also
  // by 0 points. Forward brings in what waits, up to where nothing is on the strip any more; back
  // what has left, as far as it is known, and then the oldest run up to where it has just entered.
  // At most LongestMove points.
  void moveBy(double points, double time);
  // Moves by so many points more than the strip does by itself within `seconds`, fast at first and
  // ever slower until that is over; adds to what is under way so. On a paged strip at once.
  void glideBy(double points, double seconds, double time);
  // Lets everything run out from a speed, negative for back, into the strip's own within
  // ThrowSeconds, or from a stand within EaseSeconds: without a step in speed where there is
  // something to show all the way. A paged strip stays where it is: nothing slides there.
  void throwBy(double pointsPerSecond, double time);

  // Takes an entry out for good: it does not enter again, a step back does not bring it back.
  void withdraw(const Entry& entry);

  // The time to which the strip has advanced, and its travel then.
  double time() const { return now_; }
  double travel() const { return motion_.travelAt(now_); }
  // The motion as it was changed last, and whether it is on the way of a glide.
  const Motion& motion() const { return motion_; }
  bool isGliding() const { return motion_.isGlidingAt(now_); }
  // What is on the strip, in the order of entering; after a step back also what enters again.
  const std::deque<Run>& runs() const { return runs_.all(); }
  // Gives the runs new lengths, read by `lengthOf`; what is between them stays. So does what stands
  // `place` points from the edge at which runs leave: of a run that is there, the same part of it;
  // else the run before it, or the oldest one. Those that have left are forgotten.
  template <class Measure>
  void remeasure(double place, Measure lengthOf);
  // The entry's item shows more or less of its place on the strip from now on.
  void updateShown(const Entry& entry) { runs_.updateShown(entry); }
  // The number of the run that entered last; 0 for none.
  std::uint64_t lastRun() const { return nextNumber_ - 1; }
  // Calls `visit` for every item that waits or is on the strip; more than once for one that does
  // both.
  template <class Visit>
  void forEachItem(Visit visit) const;
  // Calls `visit` with every run on the strip and then with every entry that waits, both in the
  // order of showing, see StripQueue.
  template <class VisitRun, class VisitWaiting>
  void forEachInOrder(VisitRun visitRun, VisitWaiting visitWaiting) const;
  // Grows with every change of what these visit and of its order.
  std::uint64_t revision() const { return queue_.revision() + revision_; }

  // Whether something is on the strip and moves.
  bool isMoving() const {
    return !runs_.isEmpty() && (motion_.speed() > 0 || motion_.isGlidingAt(now_));
  }
  // Whether nothing is on the strip, and nothing will be unless it is added.
  bool isFinished() const { return runs_.isEmpty() && queue_.isEmpty(); }
  // When something next happens on a strip that does not move; infinity for never.
  double nextEntryTime();

 private:
  struct Event {
    enum class Kind { None, Wake, EndOfRound, Start, Turn, Leave };
    Kind kind = Kind::None;
    double time = std::numeric_limits<double>::infinity();
    Entry entry;
  };

  Event nextEvent() const;
  void letRest();
  void perform(const Event& event);
  void start(const Entry& entry);
  void retire();
  double farthestBack(double time) const;
  void easeFrom(double velocity, double seconds);
  void addWay(double points, double seconds);
  void retireFirst();
  bool bringBack();
  void moveForward(double points);
  double reachableBack(double goal);
  double endOfRound(const StripQueue::Entry& next) const;
  double endOfPage() const;
  bool hasRoomOnPage() const;
  void moveTo(double goal);

  Motion motion_;                   // stands still, but for jumps, where there are pages
  std::optional<PageReading> page_; // the one on a paged strip
  double extent_;
  double now_;
  StripQueue queue_;
  StripRuns runs_;
  PastRuns past_{MostPast, MostPastCost};
  std::uint64_t round_ = 1;
  double roundEnd_; // when the round before this one ended
  std::uint64_t nextNumber_ = 1;
  std::uint64_t revision_ = 0; // changes that the queue does not know of
};

template <class Visit>
void Strip::forEachItem(Visit visit) const {
  for (const Run& run : runs_.all())
    visit(run.item());
  queue_.forEachItem(visit);
}

template <class VisitRun, class VisitWaiting>
void Strip::forEachInOrder(VisitRun visitRun, VisitWaiting visitWaiting) const {
  for (const Run& run : runs_.all())
    visitRun(run);
  queue_.forEachInOrder(round_, visitWaiting);
}

template <class Measure>
void Strip::remeasure(double place, Measure lengthOf) {
  past_.forgetAll();
  runs_.remeasure(travel() - extent_ + place, lengthOf, travel(), extent_);
}

} // namespace zq::app
