#include "app/display/StripQueue.h"
#include "tests/app/FakeItem.h"

#include <gtest/gtest.h>

#include <string>

using zq::app::LoopRule;
using zq::app::StripItem;
using zq::app::StripQueue;
using zq::app::testing::fake;
using zq::app::testing::nameOf;

namespace {
void appendLines(StripQueue& queue, int first, int last) {
  for (int i = first; i <= last; ++i)
    queue.appendDroppable(fake(std::to_string(i), 10), 10);
}

StripQueue::EntryRef show(StripQueue& queue) {
  const StripQueue::EntryRef entry = queue.fresh();
  queue.take(entry);
  ++entry->showings;
  return entry;
}

std::string waiting(const StripQueue& queue) {
  std::string names;
  queue.forEachItem([&](const StripItem& item) { names += nameOf(item) + " "; });
  return names;
}
} // namespace

TEST(StripQueue, KeepsTheOrderOfArrival) {
  StripQueue queue;
  queue.append(fake("a", 1));
  queue.appendDroppable(fake("b", 1), 1);
  queue.append(fake("c", 1));
  EXPECT_EQ(waiting(queue), "a b c ");
  EXPECT_EQ(nameOf(*queue.fresh()->item), "a");
}

TEST(StripQueue, DropsTheOldestWaitingLineForANewOne) {
  StripQueue queue;
  queue.setLimits(3, 1000);
  appendLines(queue, 1, 5);
  EXPECT_EQ(waiting(queue), "3 4 5 ");
  EXPECT_EQ(queue.dropped(), 2u);
}

TEST(StripQueue, DropsTheLineShownLongestAgoBeforeAnyThatWaits) {
  StripQueue queue;
  queue.setLimits(4, 1000);
  appendLines(queue, 1, 4);
  const auto first = show(queue);
  const auto second = show(queue);
  queue.putAgain(first);
  queue.putAgain(second);
  appendLines(queue, 5, 5);
  EXPECT_EQ(waiting(queue), "3 4 5 2 ");
  appendLines(queue, 6, 6);
  EXPECT_EQ(waiting(queue), "3 4 5 6 ");
  appendLines(queue, 7, 7);
  EXPECT_EQ(waiting(queue), "4 5 6 7 ");
}

TEST(StripQueue, DropsRestingLinesToo) {
  StripQueue queue;
  queue.setLimits(2, 1000);
  appendLines(queue, 1, 2);
  const auto first = show(queue);
  queue.putAgain(first);
  queue.rest(first, 50);
  EXPECT_EQ(queue.restingUntil(), 50);
  appendLines(queue, 3, 3);
  EXPECT_EQ(waiting(queue), "2 3 ");
  EXPECT_EQ(queue.resting(), nullptr);
}

TEST(StripQueue, LeavesALineOnTheStripAlone) {
  StripQueue queue;
  queue.setLimits(2, 1000);
  appendLines(queue, 1, 2);
  const auto shown = show(queue);
  appendLines(queue, 3, 6);
  EXPECT_EQ(waiting(queue), "5 6 ");
  EXPECT_EQ(nameOf(*shown->item), "1");
}

TEST(StripQueue, NeverDropsWhatIsNoLine) {
  StripQueue queue;
  queue.setLimits(1, 1000);
  queue.append(fake("headline", 1));
  appendLines(queue, 1, 3);
  queue.append(fake("other", 1));
  EXPECT_EQ(waiting(queue), "headline 3 other ");
}

TEST(StripQueue, LimitsWhatLinesCostTogether) {
  StripQueue queue;
  queue.setLimits(100, 35);
  appendLines(queue, 1, 5);
  EXPECT_EQ(waiting(queue), "3 4 5 ");
  queue.appendDroppable(fake("huge", 1), 1000);
  EXPECT_EQ(waiting(queue), "huge ") << "the line added last stays";
  appendLines(queue, 6, 6);
  EXPECT_EQ(waiting(queue), "6 ");
}

TEST(StripQueue, WakesRestingItemsInTheOrderOfTheirTimes) {
  StripQueue queue;
  for (const char* name : {"a", "b", "c"})
    queue.append(fake(name, 1));
  for (const double time : {30.0, 10.0, 20.0}) {
    const auto entry = show(queue);
    queue.putAgain(entry);
    queue.rest(entry, time);
  }
  std::string order;
  while (queue.resting()) {
    queue.wakeFirst();
    order += nameOf(*queue.returned()->item);
    queue.take(queue.returned());
  }
  EXPECT_EQ(order, "bca");
  EXPECT_TRUE(queue.isEmpty());
}

namespace {
// Shows the next entry as in round `round`, and puts it again.
void showAgain(StripQueue& queue, std::uint64_t round) {
  const StripQueue::EntryRef entry = queue.fresh() ? queue.fresh() : queue.again();
  queue.take(entry);
  ++entry->showings;
  entry->round = round;
  queue.putAgain(entry);
}
} // namespace

TEST(StripQueue, TakesArrangedItemsAsTheyCome) {
  StripQueue queue;
  queue.append(fake("headline", 1));
  queue.appendArranged(fake("a", 1));
  queue.appendArranged(fake("b", 1));
  queue.append(fake("other", 1));
  EXPECT_EQ(waiting(queue), "headline a b other ");
}

TEST(StripQueue, PutsArrangedItemsIntoTheirOrderAndLeavesOthersTheirTurns) {
  StripQueue queue;
  const auto a = queue.appendArranged(fake("a", 1));
  queue.append(fake("headline", 1));
  const auto b = queue.appendArranged(fake("b", 1));
  const auto c = queue.appendArranged(fake("c", 1));
  queue.arrange({c, a, b});
  EXPECT_EQ(waiting(queue), "c headline a b ");
  queue.take(a);
  EXPECT_EQ(waiting(queue), "c headline b ") << "each entry knows its new turn";
  queue.arrange({b, c});
  EXPECT_EQ(waiting(queue), "b headline c ");
}

TEST(StripQueue, LetsWhatWasShownInARoundComeBehindWhatWasNot) {
  StripQueue queue;
  const auto a = queue.appendArranged(fake("a", 1));
  const auto b = queue.appendArranged(fake("b", 1));
  const auto c = queue.appendArranged(fake("c", 1));
  for (int i = 0; i < 3; ++i)
    showAgain(queue, 1);
  showAgain(queue, 2); // a
  queue.arrange({c, b, a});
  EXPECT_EQ(waiting(queue), "c b a ");
  queue.arrange({a, b, c});
  EXPECT_EQ(waiting(queue), "b c a ");
}

TEST(StripQueue, ShowsANewArrangedItemSoonAndThenInItsOrder) {
  StripQueue queue;
  queue.append(fake("headline", 1));
  const auto a = queue.appendArranged(fake("a", 1));
  const auto b = queue.appendArranged(fake("b", 1));
  const auto c = queue.appendArranged(fake("c", 1));
  for (int i = 0; i < 4; ++i)
    showAgain(queue, 1);
  for (int i = 0; i < 3; ++i)
    showAgain(queue, 2); // headline, a, b
  const auto fresh = queue.appendArranged(fake("new", 1));
  queue.arrange({fresh, a, b, c});
  EXPECT_LE(queue.fresh()->ticket, queue.again()->ticket) << "before c";
  showAgain(queue, 2);
  EXPECT_EQ(waiting(queue), "c headline new a b ");
  showAgain(queue, 2);
  EXPECT_EQ(waiting(queue), "headline new a b c ");
}

TEST(StripQueue, LetsANewItemTakeAPlaceOver) {
  StripQueue queue;
  queue.appendArranged(fake("a", 1));
  const auto b = queue.appendArranged(fake("b", 1));
  queue.appendArranged(fake("c", 1));
  const auto edited = queue.replace(b, fake("B", 1));
  EXPECT_EQ(waiting(queue), "a B c ");
  EXPECT_FALSE(b->isWaiting());
  for (int i = 0; i < 3; ++i)
    showAgain(queue, 1);
  EXPECT_EQ(edited->showings, 1);
  ++edited->onStrip;
  const auto again = queue.replace(edited, fake("B2", 1));
  EXPECT_EQ(waiting(queue), "a B2 c ");
  EXPECT_EQ(again->showings, 1) << "counts on";
  EXPECT_EQ(again->onStrip, 0) << "the one on the strip is the old one";
  EXPECT_EQ(queue.replace(edited, fake("late", 1)), nullptr) << "it does not wait any more";
}

TEST(StripQueue, LetsANewItemTakeTheRestOfAnotherOver) {
  StripQueue queue;
  queue.append(fake("a", 1));
  const auto entry = show(queue);
  queue.putAgain(entry);
  queue.rest(entry, 50);
  queue.replace(entry, fake("A", 1));
  EXPECT_EQ(queue.restingUntil(), 50);
  queue.wakeFirst();
  EXPECT_EQ(waiting(queue), "A ");
}

TEST(StripQueue, LimitsALineThatTookAPlaceOver) {
  StripQueue queue;
  queue.setLimits(2, 1000);
  appendLines(queue, 1, 2);
  queue.replace(queue.fresh(), fake("one", 10));
  appendLines(queue, 3, 3);
  EXPECT_EQ(waiting(queue), "2 3 ");
}
