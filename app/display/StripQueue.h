// The items that wait for their turn on a strip.
#pragma once

#include "app/display/StripItem.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <vector>

namespace zq::app {

// Waiting items by kind of wait, in order. Every operation takes constant time, or logarithmic
// time in the number of resting items, whatever the length of the queue; but for `arrange`.
//
// An item arrives fresh; once shown, it waits again for its next round, or rests until its delay
// is over and has then returned.
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

   private:
    friend class StripQueue;
    enum class Place { None, Fresh, Again, Resting, Returned };
    Place place = Place::None;
    bool droppable = false;
    std::size_t cost = 0;
    std::uint64_t rank = 0; // in the order of the arranged entries, from 1 on; 0 for the others
    std::list<std::shared_ptr<Entry>>::iterator listPlace;
    std::multimap<double, std::shared_ptr<Entry>>::iterator restPlace;
    std::list<Entry*>::iterator dropPlace;
  };
  using EntryRef = std::shared_ptr<Entry>;
  using Line = std::list<EntryRef>;

  // The most droppable items that wait, and the most that they may cost together.
  void setLimits(std::size_t droppableItems, std::size_t droppableCost);

  // Adds an item that stays until it has been shown.
  EntryRef append(std::shared_ptr<StripItem> item);
  // The same for one that is last among the arranged ones. It is shown behind what is fresh,
  // before what waits again.
  EntryRef appendArranged(std::shared_ptr<StripItem> item);
  // Gives the arranged entries the order of `order`, which names all of them that wait. What waits
  // is put into that order; where others stand between, they keep their turns. Takes time in
  // proportion to the length of the queue.
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
  // Puts a shown entry behind all that wait now, an arranged one into its order among those of its
  // round.
  void putAgain(const EntryRef& entry);
  // Lets the entry rest until `time`.
  void rest(const EntryRef& entry, double time);
  // The first resting entry's delay is over.
  void wakeFirst();

  template <class Visit>
  void forEachItem(Visit visit) const {
    for (const Line* line : {&fresh_, &again_, &returned_})
      for (const EntryRef& entry : *line)
        visit(*entry->item);
    for (const auto& [time, entry] : resting_)
      visit(*entry->item);
  }

  bool isEmpty() const { return size() == 0; }
  std::size_t size() const {
    return fresh_.size() + again_.size() + returned_.size() + resting_.size();
  }
  std::size_t droppableSize() const { return freshDroppable_.size() + shownDroppable_.size(); }
  std::uint64_t dropped() const { return dropped_; }

 private:
  static EntryRef frontOf(const Line& line) { return line.empty() ? nullptr : line.front(); }
  Line& lineOf(Entry::Place place);
  void add(const EntryRef& entry);
  static void sortArranged(Line& line);
  void detach(const EntryRef& entry);
  void makeRoom();

  Line fresh_;
  Line again_;
  Line returned_;
  std::multimap<double, EntryRef> resting_;
  std::list<Entry*> freshDroppable_; // oldest first
  std::list<Entry*> shownDroppable_;
  std::size_t cost_ = 0;
  std::size_t itemLimit_ = std::numeric_limits<std::size_t>::max();
  std::size_t costLimit_ = std::numeric_limits<std::size_t>::max();
  std::uint64_t nextTicket_ = 1;
  std::uint64_t nextRank_ = 1;
  std::uint64_t dropped_ = 0;
};

} // namespace zq::app
