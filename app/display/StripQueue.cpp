#include "app/display/StripQueue.h"

#include <algorithm>

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

void StripQueue::add(const EntryRef& entry) {
  entry->ticket = nextTicket_++;
  entry->place = Entry::Place::Fresh;
  entry->listPlace = fresh_.insert(fresh_.end(), entry);
}

StripQueue::EntryRef StripQueue::append(std::shared_ptr<StripItem> item) {
  const auto entry = std::make_shared<Entry>();
  entry->item = std::move(item);
  add(entry);
  return entry;
}

StripQueue::EntryRef StripQueue::appendArranged(std::shared_ptr<StripItem> item) {
  // The turn of the last fresh entry, or of the one that would be next.
  const EntryRef before = fresh_.empty() ? again() : fresh_.back();
  const EntryRef entry = append(std::move(item));
  if (before)
    entry->ticket = before->ticket;
  entry->rank = nextRank_++;
  return entry;
}

void StripQueue::arrange(const std::vector<EntryRef>& order) {
  nextRank_ = 1;
  for (const EntryRef& entry : order)
    entry->rank = nextRank_++;
  sortArranged(fresh_);
  sortArranged(again_);
}

// The arranged entries change places among themselves. Rounds stay apart: what has been shown in
// this one comes behind what has not.
void StripQueue::sortArranged(Line& line) {
  std::vector<Line::iterator> places;
  std::vector<EntryRef> entries;
  for (auto place = line.begin(); place != line.end(); ++place)
    if ((*place)->rank != 0) {
      places.push_back(place);
      entries.push_back(*place);
    }
  std::vector<std::uint64_t> tickets;
  for (const EntryRef& entry : entries)
    tickets.push_back(entry->ticket);
  std::stable_sort(entries.begin(), entries.end(), [](const EntryRef& a, const EntryRef& b) {
    return a->round != b->round ? a->round < b->round : a->rank < b->rank;
  });
  for (std::size_t i = 0; i < places.size(); ++i) {
    entries[i]->ticket = tickets[i];
    entries[i]->listPlace = places[i];
    *places[i] = entries[i];
  }
}

void StripQueue::appendDroppable(std::shared_ptr<StripItem> item, std::size_t cost) {
  const auto entry = std::make_shared<Entry>();
  entry->item = std::move(item);
  entry->droppable = true;
  entry->cost = cost;
  add(entry);
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
  if (entry->place == Entry::Place::Resting)
    resting_.erase(entry->restPlace);
  else
    lineOf(entry->place).erase(entry->listPlace);
  entry->place = Entry::Place::None;
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
  if (old->place == Entry::Place::Resting)
    old->restPlace->second = successor;
  else
    *old->listPlace = successor;
  if (old->droppable)
    *old->dropPlace = successor.get();
  old->place = Entry::Place::None;
  return successor;
}

void StripQueue::putAgain(const EntryRef& entry) {
  entry->ticket = nextTicket_++;
  entry->place = Entry::Place::Again;
  auto behind = again_.end();
  for (auto place = again_.end(); entry->rank != 0 && place != again_.begin();) {
    const Entry& other = **--place;
    if (other.round != entry->round || (other.rank != 0 && other.rank < entry->rank))
      break;
    if (other.rank != 0)
      behind = place;
  }
  if (behind != again_.end())
    entry->ticket = (*behind)->ticket;
  entry->listPlace = again_.insert(behind, entry);
  if (!entry->droppable)
    return;
  entry->dropPlace = shownDroppable_.insert(shownDroppable_.end(), entry.get());
  cost_ += entry->cost;
  makeRoom();
}

void StripQueue::rest(const EntryRef& entry, double time) {
  const EntryRef kept = entry;
  lineOf(kept->place).erase(kept->listPlace);
  kept->place = Entry::Place::Resting;
  kept->restPlace = resting_.emplace(time, kept);
}

void StripQueue::wakeFirst() {
  const EntryRef entry = resting_.begin()->second;
  resting_.erase(resting_.begin());
  entry->place = Entry::Place::Returned;
  entry->listPlace = returned_.insert(returned_.end(), entry);
}

} // namespace zq::app
