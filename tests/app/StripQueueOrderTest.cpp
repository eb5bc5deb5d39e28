// Priorities, moves, and what is queued: the order of what waits, beside a vector.
#include "app/display/Strip.h"
#include "tests/app/FakeItem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using zq::app::LoopRule;
using zq::app::Strip;
using zq::app::StripQueue;
using zq::app::testing::fake;
using zq::app::testing::nameOf;

namespace {
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double Speed = 10;
constexpr double Extent = 100;
const LoopRule Endless{-1, 0, true};

std::string inOrder(const StripQueue& queue, std::uint64_t round = 0) {
  std::string names;
  queue.forEachInOrder(
      round, [&](const StripQueue::EntryRef& entry) { names += nameOf(*entry->item) + " "; });
  return names;
}

std::string inOrder(const Strip& strip) {
  std::string names;
  strip.forEachInOrder([](const Strip::Run&) {},
                       [&](const Strip::Entry& entry) { names += nameOf(*entry->item) + " "; });
  return names;
}

// The names of the runs up to `until`, from the first that is not on the strip yet.
std::string shownUntil(Strip& strip, double until) {
  std::string names;
  std::uint64_t seen = strip.runs().empty() ? 0 : strip.runs().back().number;
  for (double time = strip.time(); time <= until; time += 0.25) {
    strip.advanceTo(time);
    for (const Strip::Run& run : strip.runs())
      if (run.number > seen) {
        seen = run.number;
        names += nameOf(run.item()) + " ";
      }
  }
  return names;
}
} // namespace

TEST(StripQueueOrder, PutsTheHigherPriorityFirstAndEqualOnesAsTheyCome) {
  StripQueue queue;
  queue.append(fake("a", 1));
  queue.append(fake("low", 1), -1);
  queue.append(fake("high", 1), 5);
  queue.append(fake("b", 1));
  queue.append(fake("higher", 1), 5.5);
  queue.append(fake("high2", 1), 5);
  EXPECT_EQ(inOrder(queue), "higher high high2 a b low ");
}

TEST(StripQueueOrder, KnowsTheEndOfAPriorityWhoseLastEntryHasGone) {
  StripQueue queue;
  queue.append(fake("a", 1), 2);
  const auto b = queue.append(fake("b", 1), 2);
  const auto low = queue.append(fake("low", 1), 1);
  queue.take(b);
  queue.append(fake("c", 1), 2);
  queue.take(low);
  queue.append(fake("low2", 1), 1);
  queue.append(fake("d", 1), 2);
  EXPECT_EQ(inOrder(queue), "a c d low2 ");
}

TEST(StripQueueOrder, TakesInfinitePrioritiesAndCountsNotANumberAsZero) {
  StripQueue queue;
  queue.append(fake("last", 1), -Infinity);
  queue.append(fake("zero", 1), std::nan(""));
  queue.append(fake("first", 1), Infinity);
  queue.append(fake("minus zero", 1), -0.0);
  queue.append(fake("line", 1));
  EXPECT_EQ(inOrder(queue), "first zero minus zero line last ");
}

TEST(StripQueueOrder, DropsTheOldestLineWhereverPrioritiesPutIt) {
  StripQueue queue;
  queue.setLimits(2, 1000);
  queue.append(fake("low", 1), -1);
  queue.appendDroppable(fake("1", 1), 1);
  queue.appendDroppable(fake("2", 1), 1);
  queue.append(fake("high", 1), 1);
  queue.appendDroppable(fake("3", 1), 1);
  EXPECT_EQ(inOrder(queue), "high 2 3 low ");
}

TEST(StripQueueOrder, LetsAPriorityAboveZeroPassWhatWaitsAgain) {
  Strip strip(Extent, Speed);
  for (const char* name : {"a", "b", "c"})
    strip.queue().append(fake(name, 40, Endless));
  strip.advanceTo(13); // round 2: a has entered
  strip.queue().append(fake("plain", 40));
  strip.queue().append(fake("low", 40), -1);
  strip.queue().append(fake("urgent", 40), 1);
  EXPECT_EQ(inOrder(strip), "urgent b c a plain low ");
  EXPECT_EQ(shownUntil(strip, 37), "urgent b c a plain low ");
}

TEST(StripQueueOrder, LetsAPriorityAboveZeroPassWhatHasReturned) {
  StripQueue queue;
  const auto a = queue.append(fake("a", 1));
  queue.take(a);
  queue.putAgain(a);
  queue.rest(a, 5);
  queue.wakeFirst();
  queue.append(fake("plain", 1));
  queue.append(fake("urgent", 1), 1);
  EXPECT_EQ(inOrder(queue), "urgent a plain ");
}

TEST(StripQueueOrder, NeverPassesWhatIsOnTheStrip) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 40));
  strip.queue().append(fake("b", 40));
  strip.advanceTo(1);
  strip.queue().append(fake("urgent", 40), Infinity);
  strip.advanceTo(4.1);
  ASSERT_EQ(strip.runs().size(), 2u);
  EXPECT_EQ(nameOf(strip.runs()[0].item()), "a");
  EXPECT_DOUBLE_EQ(strip.runs()[0].start, 0);
  EXPECT_EQ(nameOf(strip.runs()[1].item()), "urgent");
  EXPECT_DOUBLE_EQ(strip.runs()[1].start, 40);
}

TEST(StripQueueOrder, ShowsWhatItHasForetold) {
  Strip strip(Extent, Speed);
  for (const char* name : {"a", "b", "c", "d"})
    strip.queue().append(fake(name, 40, Endless));
  strip.advanceTo(17);
  strip.queue().append(fake("e", 40));
  strip.queue().append(fake("f", 40), -2);
  const std::string foretold = inOrder(strip);
  EXPECT_EQ(shownUntil(strip, 41), foretold);
}

TEST(StripQueueOrder, ForetellsThatNewItemsPassBetweenTwoRounds) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 40, {2}));
  strip.queue().append(fake("b", 40, {2}));
  strip.advanceTo(9);
  strip.queue().append(fake("new", 40));
  EXPECT_EQ(inOrder(strip), "new a b ");
  EXPECT_EQ(shownUntil(strip, 40), "new a b ");
}

TEST(StripQueueOrder, MovesAnEntryBeforeAnotherWhateverTheirPriorities) {
  StripQueue queue;
  const auto high = queue.append(fake("high", 1), 5);
  const auto a = queue.append(fake("a", 1));
  const auto b = queue.append(fake("b", 1));
  const auto low = queue.append(fake("low", 1), -5);
  EXPECT_TRUE(queue.move(low, a));
  EXPECT_EQ(inOrder(queue), "high low a b ");
  EXPECT_TRUE(queue.move(high, b));
  EXPECT_EQ(inOrder(queue), "low a high b ");
  EXPECT_TRUE(queue.move(low, nullptr));
  EXPECT_EQ(inOrder(queue), "a high b low ");
  queue.append(fake("c", 1));
  EXPECT_EQ(inOrder(queue), "a high b low c ") << "they have the priority of their neighbours";
}

TEST(StripQueueOrder, MovesNewOnesAmongThoseThatWaitAgainAndBack) {
  Strip strip(Extent, Speed);
  std::vector<Strip::Entry> again;
  for (const char* name : {"a", "b", "c"})
    again.push_back(strip.queue().append(fake(name, 40, Endless)));
  strip.advanceTo(13); // round 2: a has entered
  const auto x = strip.queue().append(fake("x", 40));
  const auto y = strip.queue().append(fake("y", 40));
  ASSERT_EQ(inOrder(strip), "b c a x y ");
  EXPECT_TRUE(strip.queue().move(y, again[2]));
  EXPECT_EQ(inOrder(strip), "b y c a x ");
  EXPECT_TRUE(strip.queue().move(again[1], x));
  EXPECT_EQ(inOrder(strip), "y c a b x ");
  EXPECT_TRUE(strip.queue().move(x, again[0]));
  EXPECT_EQ(inOrder(strip), "y c x a b ");
  EXPECT_TRUE(strip.queue().move(y, nullptr));
  EXPECT_EQ(inOrder(strip), "c x a b y ");
  EXPECT_EQ(shownUntil(strip, 33), "c x a b y ");
}

TEST(StripQueueOrder, KeepsTheEndOfTheQueueBeforeThoseThatRest) {
  StripQueue queue;
  const auto resting = queue.append(fake("resting", 1));
  const auto a = queue.append(fake("a", 1));
  queue.append(fake("b", 1));
  queue.take(resting);
  queue.putAgain(resting);
  queue.rest(resting, 50);
  EXPECT_TRUE(queue.move(a, resting));
  EXPECT_EQ(inOrder(queue), "b a resting ");
  EXPECT_FALSE(queue.move(resting, nullptr));
  EXPECT_TRUE(queue.move(resting, a));
  EXPECT_EQ(inOrder(queue), "b resting a ");
  EXPECT_EQ(queue.resting(), nullptr) << "its delay counts as over";
}

TEST(StripQueueOrder, MovesNothingThatDoesNotWait) {
  StripQueue queue;
  const auto a = queue.append(fake("a", 1));
  const auto b = queue.append(fake("b", 1));
  const auto gone = queue.append(fake("gone", 1));
  queue.take(gone);
  const std::uint64_t revision = queue.revision();
  EXPECT_FALSE(queue.move(gone, a));
  EXPECT_FALSE(queue.move(b, gone));
  EXPECT_FALSE(queue.move(a, a));
  EXPECT_EQ(inOrder(queue), "a b ");
  EXPECT_EQ(queue.revision(), revision);
}

TEST(StripQueueOrder, ArrangesTheNamedOnesAmongThemselves) {
  StripQueue queue;
  const auto a = queue.appendArranged(fake("a", 1));
  const auto b = queue.appendArranged(fake("b", 1));
  const auto plain = queue.append(fake("plain", 1));
  const auto c = queue.appendArranged(fake("c", 1));
  queue.appendArranged(fake("d", 1));
  queue.arrange({c, plain, a, c});
  EXPECT_EQ(inOrder(queue), "c b plain a d ");
  queue.arrange({b, c});
  EXPECT_EQ(inOrder(queue), "b c plain a d ");
}

TEST(StripQueueOrder, ArrangesWithinPriorities) {
  StripQueue queue;
  const auto a = queue.appendArranged(fake("a", 1));
  const auto high = queue.appendArranged(fake("high", 1), 1);
  const auto b = queue.appendArranged(fake("b", 1));
  queue.arrange({b, a, high});
  EXPECT_EQ(inOrder(queue), "high b a ");
}

TEST(StripQueueOrder, LeavesWhatIsInOrderAlone) {
  StripQueue queue;
  const auto a = queue.appendArranged(fake("a", 1));
  const auto b = queue.appendArranged(fake("b", 1));
  const std::uint64_t revision = queue.revision();
  queue.arrange({a, b});
  EXPECT_EQ(queue.revision(), revision);
}

TEST(StripQueueOrder, ArrangesNoMoreWhatWasMoved) {
  StripQueue queue;
  const auto a = queue.appendArranged(fake("a", 1));
  const auto b = queue.appendArranged(fake("b", 1));
  const auto c = queue.appendArranged(fake("c", 1));
  ASSERT_TRUE(queue.move(c, a));
  queue.arrange({b, a, c});
  EXPECT_EQ(inOrder(queue), "c b a ");
}
