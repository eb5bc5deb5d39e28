#include "app/display/StripQueue.h"

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

void StripQueue::append(std::shared_ptr<StripItem> item) {
  const auto entry = std::make_shared<Entry>();
  entry->item = std::move(item);
  add(entry);
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

void StripQueue::putAgain(const EntryRef& entry) {
  entry->ticket = nextTicket_++;
  entry->place = Entry::Place::Again;
  entry->listPlace = again_.insert(again_.end(), entry);
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
