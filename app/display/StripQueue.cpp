#include "app/display/StripQueue.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zq::app {

StripQueue::Line& StripQueue::lineOf(Entry::Place place) {
  if (place == Entry::Place::Fresh)
    return fresh_;
  return place == Entry::Place::Again ? again_ : returned_;
}

void StripQueue::setLimits(std::size_t droppableItems, std::size_t droppableCost) {
  itemLimit_ = droppableItems;
  costLimit_ = droppableCost;
  makeRoom();
}

bool StripQueue::FreshOrder::operator()(const Entry* a, const Entry* b) const {
  return a->level != b->level ? a->level > b->level : a->rank < b->rank;
}

// Rounds stay apart: what has been shown in this one comes behind what has not.
bool StripQueue::AgainOrder::operator()(const Entry* a, const Entry* b) const {
  return a->round != b->round ? a->round < b->round : a->rank < b->rank;
}

// The place behind the last fresh entry of this priority or a higher one.
StripQueue::Line::iterator StripQueue::endOfLevel(double level) {
  const auto lower = levels_.upper_bound(level);
  return lower == levels_.begin() ? fresh_.begin() : std::next(std::prev(lower)->second);
}

void StripQueue::link(const EntryRef& entry, Entry::Place place, Line::iterator before) {
  entry->place = place;
  entry->listPlace = lineOf(place).insert(before, entry);
  if (place == Entry::Place::Fresh && (before == fresh_.end() || (*before)->level != entry->level))
    levels_.insert_or_assign(entry->level, entry->listPlace);
  setArranged(*entry, true);
  ++revision_;
}

// The entry's line lets it go: somebody else must hold it.
void StripQueue::unlink(Entry& entry) {
  setArranged(entry, false);
  if (entry.place == Entry::Place::Resting) {
    resting_.erase(entry.restPlace);
  } else {
    leaveLevel(entry);
    lineOf(entry.place).erase(entry.listPlace);
  }
  entry.listPlace = {};
  entry.restPlace = {};
  entry.place = Entry::Place::None;
  ++revision_;
}

void StripQueue::leaveLevel(const Entry& entry) {
  if (entry.place != Entry::Place::Fresh)
    return;
  const auto level = levels_.find(entry.level);
  if (level->second != entry.listPlace)
    return;
  const bool isFirst = entry.listPlace == fresh_.begin();
  if (!isFirst && (*std::prev(entry.listPlace))->level == entry.level)
    --level->second;
  else
    levels_.erase(level);
}

void StripQueue::setArranged(Entry& entry, bool isIn) {
  if (entry.rank == 0)
    return;
  if (entry.place == Entry::Place::Fresh)
    isIn ? void(arrangedFresh_.insert(&entry)) : void(arrangedFresh_.erase(&entry));
  else if (entry.place == Entry::Place::Again)
    isIn ? void(arrangedAgain_.insert(&entry)) : void(arrangedAgain_.erase(&entry));
}

void StripQueue::settle(Entry& entry) {
  const bool isQueued = entry.isWaiting() || entry.onStrip > 0;
  if (isQueued == entry.isCounted)
    return;
  entry.isCounted = isQueued;
  entry.item->setQueued(isQueued);
  ++revision_;
}

void StripQueue::addFresh(const EntryRef& entry, double priority) {
  entry->level = std::isnan(priority) ? 0 : priority;
  if (entry->ticket == 0)
    entry->ticket = nextTicket_++;
  link(entry, Entry::Place::Fresh, endOfLevel(entry->level));
  settle(*entry);
}

StripQueue::EntryRef StripQueue::append(std::shared_ptr<StripItem> item, double priority) {
  const auto entry = std::make_shared<Entry>();
  entry->item = std::move(item);
  addFresh(entry, priority);
  return entry;
}

StripQueue::EntryRef StripQueue::appendArranged(std::shared_ptr<StripItem> item, double priority) {
  // The turn of the last fresh entry of its priority, or of the one that would be next.
  const auto level = levels_.find(std::isnan(priority) ? 0 : priority);
  const EntryRef before = level == levels_.end() ? again() : *level->second;
  const auto entry = std::make_shared<Entry>();
  entry->item = std::move(item);
  entry->rank = nextRank_++;
  if (before)
    entry->ticket = before->ticket;
  addFresh(entry, priority);
  return entry;
}

void StripQueue::arrange(const std::vector<EntryRef>& order) {
  std::vector<Entry*> named;
  for (const EntryRef& entry : order)
    if (entry->rank != 0 && entry->isWaiting())
      named.push_back(entry.get());
  const auto isLower = [](const Entry* a, const Entry* b) { return a->rank < b->rank; };
  if (std::is_sorted(named.begin(), named.end(), isLower))
    return;
  const std::vector<Entry*> fresh(arrangedFresh_.begin(), arrangedFresh_.end());
  const std::vector<Entry*> again(arrangedAgain_.begin(), arrangedAgain_.end());
  arrangedFresh_.clear();
  arrangedAgain_.clear();
  // They exchange their ranks; one that is named twice takes its first place.
  std::vector<std::uint64_t> ranks;
  std::erase_if(named, [&](Entry* entry) {
    if (entry->rank == 0)
      return true;
    ranks.push_back(std::exchange(entry->rank, 0));
    return false;
  });
  std::sort(ranks.begin(), ranks.end());
  for (std::size_t i = 0; i < named.size(); ++i)
    named[i]->rank = ranks[i];
  putInOrder(arrangedFresh_, fresh);
  putInOrder(arrangedAgain_, again);
  ++revision_;
}

// Lets the entries of a line that had the order of `places` stand in these places in their new one.
template <class Arranged>
void StripQueue::putInOrder(Arranged& arranged, const std::vector<Entry*>& places) {
  std::vector<Line::iterator> stands;
  std::vector<std::uint64_t> tickets;
  std::vector<EntryRef> entries;
  for (Entry* entry : places) {
    stands.push_back(entry->listPlace);
    tickets.push_back(entry->ticket);
    entries.push_back(*entry->listPlace);
  }
  std::sort(entries.begin(), entries.end(), [&](const EntryRef& a, const EntryRef& b) {
    return arranged.key_comp()(a.get(), b.get());
  });
  for (std::size_t i = 0; i < entries.size(); ++i) {
    entries[i]->ticket = tickets[i];
    entries[i]->listPlace = stands[i];
    *stands[i] = entries[i];
    arranged.insert(arranged.end(), entries[i].get());
  }
}

void StripQueue::appendDroppable(std::shared_ptr<StripItem> item, std::size_t cost) {
  const auto entry = std::make_shared<Entry>();
  entry->item = std::move(item);
  entry->droppable = true;
  entry->cost = cost;
  addFresh(entry, 0);
  entry->dropPlace = freshDroppable_.insert(freshDroppable_.end(), entry.get());
  cost_ += cost;
  makeRoom();
}

void StripQueue::makeRoom() {
  while (droppableSize() > 1 && (droppableSize() > itemLimit_ || cost_ > costLimit_)) {
    Entry* victim = shownDroppable_.empty() ? freshDroppable_.front() : shownDroppable_.front();
    const EntryRef kept =
        victim->place == Entry::Place::Resting ? victim->restPlace->second : *victim->listPlace;
    detach(kept);
    settle(*kept);
    ++dropped_;
  }
}

double StripQueue::restingUntil() const {
  return resting_.empty() ? std::numeric_limits<double>::infinity() : resting_.begin()->first;
}

void StripQueue::detach(const EntryRef& entry) {
  if (entry->place == Entry::Place::None)
    return;
  if (entry->droppable) {
    (entry->showings == 0 ? freshDroppable_ : shownDroppable_).erase(entry->dropPlace);
    cost_ -= entry->cost;
  }
  unlink(*entry);
}

void StripQueue::take(const EntryRef& entry) {
  const EntryRef kept = entry;
  detach(kept);
}

StripQueue::EntryRef StripQueue::replace(const EntryRef& entry, std::shared_ptr<StripItem> item) {
  if (!entry->isWaiting())
    return nullptr;
  const EntryRef old = entry;
  const auto successor = std::make_shared<Entry>(*old);
  successor->item = std::move(item);
  successor->onStrip = 0;
  successor->isCounted = false;
  old->isReplaced = true;
  old->successor = successor;
  setArranged(*old, false);
  if (old->place == Entry::Place::Resting)
    old->restPlace->second = successor;
  else
    *old->listPlace = successor;
  if (old->droppable)
    *old->dropPlace = successor.get();
  old->place = Entry::Place::None;
  setArranged(*successor, true);
  settle(*successor);
  settle(*old);
  ++revision_;
  return successor;
}

bool StripQueue::move(const EntryRef& entry, const EntryRef& before) {
  if (!entry->isWaiting() || entry == before || (before && !before->isWaiting()))
    return false;
  const bool isLast = !before || before->place == Entry::Place::Resting;
  if (isLast && entry->place == Entry::Place::Resting)
    return false;
  const EntryRef kept = entry;
  // Its delay is over, or counts as over.
  if (kept->place == Entry::Place::Resting || kept->place == Entry::Place::Returned)
    kept->delay = 0;
  unlink(*kept);
  kept->rank = 0;
  if (isLast && again_.empty()) {
    if (!fresh_.empty())
      kept->level = std::min(kept->level, fresh_.back()->level);
    kept->ticket = nextTicket_++;
    link(kept, Entry::Place::Fresh, fresh_.end());
    return true;
  }
  const Entry& neighbour = isLast ? *again_.back() : *before;
  kept->ticket = isLast ? nextTicket_++ : neighbour.ticket;
  kept->level = neighbour.level;
  if (neighbour.place == Entry::Place::Again) {
    kept->round = neighbour.round;
    kept->continuous = neighbour.continuous;
  }
  link(kept, neighbour.place, isLast ? again_.end() : neighbour.listPlace);
  return true;
}

void StripQueue::putAgain(const EntryRef& entry) {
  entry->ticket = nextTicket_++;
  auto behind = again_.end();
  if (entry->rank != 0)
    if (const auto next = arrangedAgain_.lower_bound(entry.get());
        next != arrangedAgain_.end() && (*next)->round == entry->round) {
      behind = (*next)->listPlace;
      entry->ticket = (*next)->ticket;
    }
  link(entry, Entry::Place::Again, behind);
  if (!entry->droppable)
    return;
  entry->dropPlace = shownDroppable_.insert(shownDroppable_.end(), entry.get());
  cost_ += entry->cost;
  makeRoom();
}

bool StripQueue::putBack(const EntryRef& entry) {
  EntryRef next = entry;
  while (next && next->isReplaced)
    next = next->successor.lock();
  if (!next || next->isWithdrawn || (next != entry && !next->isWaiting()))
    return false;
  detach(next);
  --next->showings;
  next->delay = 0;
  link(next, Entry::Place::Returned, returned_.begin());
  if (next->droppable) {
    // The last one to go.
    auto& droppable = next->showings == 0 ? freshDroppable_ : shownDroppable_;
    next->dropPlace = droppable.insert(droppable.end(), next.get());
    cost_ += next->cost;
    makeRoom();
  }
  return true;
}

void StripQueue::rest(const EntryRef& entry, double time) {
  const EntryRef kept = entry;
  unlink(*kept);
  kept->place = Entry::Place::Resting;
  kept->restPlace = resting_.emplace(time, kept);
}

void StripQueue::wakeFirst() {
  const EntryRef entry = resting_.begin()->second;
  unlink(*entry);
  link(entry, Entry::Place::Returned, returned_.end());
}

} // namespace zq::app
