// The items that wait for their turn on a strip.
#pragma once

#include "app/display/StripItem.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace zq::app {

// Waiting items by kind of wait, in order. Every operation takes constant time, or logarithmic
// time in the length of the queue; but for `arrange` and the visits.
//
// An item arrives fresh; once shown, it waits again for its next round, or rests until its delay
// is over and has then returned.
//
// Fresh items have a priority: the higher one goes first, equal ones go in the order of arrival.
// One above 0 also passes all that waits for another showing; 0 and below keep the turn that their
// arrival gave them among those. What has been shown waits in its turn, whatever its priority was.
// A flood of items above 0 therefore holds up all others for as long as it lasts, one of items at
// 0 those below: whoever takes items from strangers limits them beforehand.
//
// Some items are arranged: they have an order among themselves, which every round follows. A new
// one is shown soon, in the round that is under way, and keeps to the order from the next round on.
class StripQueue {
 public:
  struct Entry {
    std::shared_ptr<StripItem> item;
    std::int64_t showings = 0;
    std::uint64_t round = 0;  // in which it was shown last
    std::uint64_t ticket = 0; // order among fresh and again waiting entries
    int onStrip = 0;          // showings that have not left the strip yet
    double delay = 0;         // of its loop rule when it was shown last
    bool continuous = false;
    bool isWithdrawn = false; // not to be shown again, however it was to be

    bool isDroppable() const { return droppable; }
    // What it costs while it waits; 0 for one that is not droppable.
    std::size_t waitingCost() const { return cost; }
    bool isWaiting() const { return place != Place::None; }
    // By which it is ordered while it is fresh.
    double priority() const { return level; }

   private:
    friend class StripQueue;
    enum class Place { None, Fresh, Again, Resting, Returned };
    Place place = Place::None;
    bool droppable = false;
    bool isCounted = false; // whether its item knows that it is queued
    bool isReplaced = false;
    std::weak_ptr<Entry> successor; // that has replaced it
    std::size_t cost = 0;
    double level = 0;       // its priority, or that of the place to which it was moved
    std::uint64_t rank = 0; // in the order of the arranged entries, from 1 on; 0 for the others
    std::list<std::shared_ptr<Entry>>::iterator listPlace;
    std::multimap<double, std::shared_ptr<Entry>>::iterator restPlace;
    std::list<Entry*>::iterator dropPlace;
  };
  using EntryRef = std::shared_ptr<Entry>;
  using Line = std::list<EntryRef>;

  // The most droppable items that wait, and the most that they may cost together.
  void setLimits(std::size_t droppableItems, std::size_t droppableCost);

  // Adds an item that stays until it has been shown, behind all fresh ones of its priority; a
  // priority that is not a number is 0.
  EntryRef append(std::shared_ptr<StripItem> item, double priority = 0);
  // The same for one that is last among the arranged ones. It is shown behind what is fresh,
  // before what waits again.
  EntryRef appendArranged(std::shared_ptr<StripItem> item, double priority = 0);
  // Lets the entries of `order` that are arranged and wait change places among themselves, so that
  // they stand in that order: others, arranged or not, keep their turns. A fresh one stays among
  // those of its priority. Takes time in proportion to `order` where it is so already, else to the
  // number of arranged entries and its logarithm.
  void arrange(const std::vector<EntryRef>& order);
  // Adds an item that makes room when a limit is passed: the longest shown droppable item goes
  // first, then the oldest waiting one. An item never goes while it is on the strip for the first
  // time; one that waits for another round loses only its further rounds. The item added last
  // stays, whatever it costs.
  void appendDroppable(std::shared_ptr<StripItem> item, std::size_t cost);

  // The first fresh, again waiting, returned or resting entry; null where there is none.
  EntryRef fresh() const { return frontOf(fresh_); }
  EntryRef again() const { return frontOf(again_); }
  EntryRef returned() const { return frontOf(returned_); }
  EntryRef resting() const { return resting_.empty() ? nullptr : resting_.begin()->second; }
  // When the first resting entry is ready; infinity where none rests.
  double restingUntil() const;

  // Takes an entry out, to be shown or for good.
  void take(const EntryRef& entry);
  // Puts `item` into the place of a waiting entry, which is taken out: with its turn, its order and
  // the showings it has had. What is on the strip stays there. Null where the entry does not wait.
  EntryRef replace(const EntryRef& entry, std::shared_ptr<StripItem> item);
  // Puts a waiting entry directly before `before`, whose wait, turn and priority it shares from now
  // on: it goes where `forEachInOrder` shows it, whatever its own were. Null is the end of those
  // that do not rest, and so is one that rests: these come when their delays are over. An entry
  // that rested or was arranged does so no more. False, and nothing changes, where either does not
  // wait, where both are the same, and for a resting one that would come to the end.
  bool move(const EntryRef& entry, const EntryRef& before);
  // Puts a shown entry behind all that wait now, an arranged one into its order among those of its
  // round.
  void putAgain(const EntryRef& entry);
  // Lets the entry be shown before all others but fresh ones of a priority above 0, since its last
  // showing was broken off: that one counts no longer. Where it was replaced while it waited, this
  // goes for its successor. False, and nothing changes, where that waits no longer, or the entry
  // was withdrawn.
  bool putBack(const EntryRef& entry);
  // Lets the entry rest until `time`.
  void rest(const EntryRef& entry, double time);
  // The first resting entry's delay is over.
  void wakeFirst();

  // Tells the entry's item whether it is queued, where that has changed: waits or is on the strip.
  // Whoever changes `onStrip` calls it afterwards.
  void settle(Entry& entry);

  // Visits those that may be shown next: the first `count` of each kind that does not rest.
  template <class Visit>
  void forEachNext(std::size_t count, Visit visit) const {
    for (const Line* line : {&returned_, &fresh_, &again_}) {
      auto left = count;
      for (auto entry = line->begin(); entry != line->end() && left > 0; ++entry, --left)
        visit(**entry);
    }
  }
  template <class Visit>
  void forEachItem(Visit visit) const {
    for (const Line* line : {&fresh_, &again_, &returned_})
      for (const EntryRef& entry : *line)
        visit(*entry->item);
    for (const auto& [time, entry] : resting_)
      visit(*entry->item);
  }
  // Visits all waiting entries in the order in which they will be shown, `round` being the one that
  // is under way; as far as that can be told without their lengths: those that rest come last.
  template <class Visit>
  void forEachInOrder(std::uint64_t round, Visit visit) const;

  bool isEmpty() const { return size() == 0; }
  std::size_t size() const {
    return fresh_.size() + again_.size() + returned_.size() + resting_.size();
  }
  std::size_t droppableSize() const { return freshDroppable_.size() + shownDroppable_.size(); }
  std::uint64_t dropped() const { return dropped_; }
  // Grows with every change of what waits, of its order, and of what is queued.
  std::uint64_t revision() const { return revision_; }

 private:
  // Entries of one line in its order, as far as they are arranged.
  struct FreshOrder {
    bool operator()(const Entry* a, const Entry* b) const;
  };
  struct AgainOrder {
    bool operator()(const Entry* a, const Entry* b) const;
  };

  static EntryRef frontOf(const Line& line) { return line.empty() ? nullptr : line.front(); }
  Line& lineOf(Entry::Place place);
  void addFresh(const EntryRef& entry, double priority);
  Line::iterator endOfLevel(double level);
  void link(const EntryRef& entry, Entry::Place place, Line::iterator before);
  void unlink(Entry& entry);
  void leaveLevel(const Entry& entry);
  void setArranged(Entry& entry, bool isIn);
  template <class Arranged>
  static void putInOrder(Arranged& arranged, const std::vector<Entry*>& places);
  void detach(const EntryRef& entry);
  void makeRoom();

  Line fresh_;
  Line again_;
  Line returned_;
  std::multimap<double, EntryRef> resting_;
  // The last fresh entry of each priority, the highest first.
  std::map<double, Line::iterator, std::greater<>> levels_;
  std::set<Entry*, FreshOrder> arrangedFresh_;
  std::set<Entry*, AgainOrder> arrangedAgain_;
  std::list<Entry*> freshDroppable_; // oldest first
  std::list<Entry*> shownDroppable_;
  std::size_t cost_ = 0;
  std::size_t itemLimit_ = std::numeric_limits<std::size_t>::max();
  std::size_t costLimit_ = std::numeric_limits<std::size_t>::max();
  std::uint64_t nextTicket_ = 1;
  std::uint64_t nextRank_ = 1;
  std::uint64_t dropped_ = 0;
  std::uint64_t revision_ = 0;
};

template <class Visit>
void StripQueue::forEachInOrder(std::uint64_t round, Visit visit) const {
  auto fresh = fresh_.begin();
  for (; fresh != fresh_.end() && (*fresh)->level > 0; ++fresh)
    visit(*fresh);
  for (const EntryRef& entry : returned_)
    visit(entry);
  for (auto again = again_.begin(); again != again_.end();) {
    // What has not been shown passes while the strip runs empty between two rounds.
    const bool waitsForRound = (*again)->round == round && !(*again)->continuous;
    const bool isFresh =
        fresh != fresh_.end() && (waitsForRound || (*fresh)->ticket <= (*again)->ticket);
    visit(isFresh ? *fresh++ : *again++);
  }
  for (; fresh != fresh_.end(); ++fresh)
    visit(*fresh);
  for (const auto& [time, entry] : resting_)
    visit(entry);
}

} // namespace zq::app
