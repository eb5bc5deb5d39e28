#include "app/display/Strip.h"
#include "tests/app/FakeItem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

using zq::app::LoopRule;
using zq::app::Strip;
using zq::app::testing::fake;
using zq::app::testing::nameOf;

namespace {
constexpr double Never = std::numeric_limits<double>::infinity();
// Points per second and points: what enters at second t has left one strip and its own length
// later, 10 seconds for the strip.
constexpr double Speed = 10;
constexpr double Extent = 100;

// The starts of all runs up to `until`, as "name@seconds", read in steps.
std::string starts(Strip& strip, double until, double step) {
  std::string text;
  std::uint64_t seen = 0;
  for (double time = strip.time(); time <= until; time += step) {
    strip.advanceTo(time);
    for (const Strip::Run& run : strip.runs())
      if (run.number > seen) {
        seen = run.number;
        text += nameOf(run.item()) + "@" +
                std::to_string(static_cast<int>(std::lround(run.start / Speed))) + " ";
      }
  }
  return text;
}
} // namespace

TEST(Strip, LetsItemsFollowOneAnother) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20));
  strip.queue().append(fake("b", 30));
  strip.queue().append(fake("c", 10));
  EXPECT_EQ(starts(strip, 30, 0.5), "a@0 b@2 c@5 ");
}

TEST(Strip, BeginsAtTheEdge) {
  Strip strip(Extent, Speed, 7);
  strip.queue().append(fake("a", 20));
  strip.advanceTo(7);
  ASSERT_EQ(strip.runs().size(), 1u);
  EXPECT_DOUBLE_EQ(strip.travel() - strip.runs().front().start, 0);
}

TEST(Strip, ShowsALateItemWhenItArrives) {
  Strip strip(Extent, Speed);
  strip.advanceTo(50);
  strip.queue().append(fake("late", 20));
  strip.advanceTo(51);
  ASSERT_EQ(strip.runs().size(), 1u);
  EXPECT_DOUBLE_EQ(strip.travel() - strip.runs().front().start, 10) << "on its way for 1 s";
}

TEST(Strip, LetsAnItemLeaveAfterItsLengthAndTheStrips) {
  Strip strip(Extent, Speed);
  const auto item = fake("a", 20);
  strip.queue().append(item);
  strip.advanceTo(11.9);
  EXPECT_EQ(strip.runs().size(), 1u);
  EXPECT_EQ(item->left, 0);
  strip.advanceTo(12);
  EXPECT_EQ(strip.runs().size(), 0u);
  EXPECT_EQ(item->left, 1);
  EXPECT_TRUE(strip.isFinished());
}

TEST(Strip, ShowsOnceForCountsZeroAndOne) {
  for (const int count : {0, 1}) {
    Strip strip(Extent, Speed);
    strip.queue().append(fake("a", 20, {count}));
    EXPECT_EQ(starts(strip, 200, 1), "a@0 ") << count;
    EXPECT_TRUE(strip.isFinished());
  }
}

TEST(Strip, ShowsAsOftenAsCounted) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {3}));
  EXPECT_EQ(starts(strip, 200, 1), "a@0 a@12 a@24 ");
  EXPECT_TRUE(strip.isFinished());
}

TEST(Strip, ShowsWithoutEndForNegativeCounts) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {-1}));
  starts(strip, 12'000, 1);
  EXPECT_EQ(strip.runs().front().number, 1001u);
  EXPECT_FALSE(strip.isFinished());
}

TEST(Strip, RunsEmptyBetweenRounds) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {2}));
  strip.queue().append(fake("b", 30, {2}));
  EXPECT_EQ(starts(strip, 100, 0.5), "a@0 b@2 a@15 b@17 ") << "b leaves at 15";
}

TEST(Strip, LetsTheNextRoundFollowWhereItScrollsContinuously) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {3, 0, true}));
  strip.queue().append(fake("b", 30, {2, 0, true}));
  EXPECT_EQ(starts(strip, 100, 0.5), "a@0 b@2 a@5 b@7 a@10 ");
}

TEST(Strip, WaitsTheDelayBetweenRounds) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {2, 5}));
  strip.queue().append(fake("b", 30, {2, 5}));
  EXPECT_EQ(starts(strip, 100, 0.5), "a@0 b@2 a@20 b@22 ") << "empty at 15, then 5 s";
}

TEST(Strip, WaitsTheDelayAlsoWhereItScrollsContinuously) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {2, 3, true}));
  EXPECT_EQ(starts(strip, 100, 0.5), "a@0 a@5 ") << "entered wholly at 2, then 3 s";
}

TEST(Strip, EndsNoRoundBeforeAllOfItsItemsHaveBeenShown) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {-1, 5, true}));
  strip.queue().append(fake("b", 20, {-1, 5, true}));
  strip.queue().append(fake("c", 20, {-1, 5, true}));
  EXPECT_EQ(starts(strip, 16, 0.5), "a@0 b@2 c@4 a@11 b@13 c@15 ");
}

TEST(Strip, LetsOthersPassAnItemThatRests) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("slow", 20, {2, 30}));
  strip.queue().append(fake("quick", 20, {3}));
  // Empty at 14: quick starts its second round at once; slow comes at 44, between quick's rounds.
  EXPECT_EQ(starts(strip, 100, 0.5), "slow@0 quick@2 quick@14 quick@26 slow@44 ");
}

TEST(Strip, ShowsANewItemWhileARoundIsEnding) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {2}));
  strip.advanceTo(6);
  strip.queue().append(fake("new", 20));
  EXPECT_EQ(starts(strip, 100, 0.5), "a@0 new@6 a@18 ") << "new is of the same round";
}

TEST(Strip, DoesNotWaitForAStreamOfLines) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {-1}));
  const auto addLines = [&](int count) {
    for (int i = 0; i < count; ++i)
      strip.queue().appendDroppable(fake("l", 20), 1);
  };
  addLines(5);
  EXPECT_EQ(starts(strip, 11, 0.5), "a@0 l@2 l@4 l@6 l@8 l@10 ");
  addLines(5);
  // The item has left at 12 and waited longer than the lines that came at 11.
  strip.advanceTo(12.5);
  EXPECT_EQ(nameOf(strip.runs().back().item()), "a");
  EXPECT_DOUBLE_EQ(strip.runs().back().start, 120);
}

TEST(Strip, ShowsWhatWaitedLongerFirst) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20, {-1, 0, true}));
  for (int i = 0; i < 3; ++i)
    strip.queue().appendDroppable(fake("l", 20), 1);
  EXPECT_EQ(starts(strip, 11, 0.5), "a@0 l@2 l@4 l@6 a@8 a@10 ");
}

TEST(Strip, DropsItemsWithoutLength) {
  for (const double length : {0.0, -3.0, Never, std::nan("")}) {
    Strip strip(Extent, Speed);
    const auto item = fake("nothing", length, {-1, 0, true});
    strip.queue().append(item);
    strip.queue().append(fake("a", 20));
    EXPECT_EQ(starts(strip, 5, 0.5), "a@0 ") << length;
    EXPECT_EQ(item->entered, 1);
    EXPECT_EQ(item->left, 1);
  }
}

TEST(Strip, BoundsTheNumberOfRunsOfTinyItems) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("tiny", 1e-9, {-1, 0, true}));
  strip.advanceTo(1000);
  EXPECT_LE(strip.runs().size(), 102u);
}

TEST(Strip, IsTheSameHoweverTimeIsCut) {
  const auto fill = [](Strip& strip) {
    strip.queue().append(fake("a", 17.3, {-1, 1.7}));
    strip.queue().append(fake("b", 250, {4}));
    strip.queue().append(fake("c", 3.1, {-1, 0, true}));
    strip.queue().append(fake("d", 40));
  };
  std::vector<double> expected;
  for (const double step : {1.0 / 144, 1.0 / 60, 1.0 / 24, 0.7, 500.0}) {
    Strip strip(Extent, Speed);
    fill(strip);
    for (double time = 0; time < 500; time += step)
      strip.advanceTo(time);
    strip.advanceTo(500);
    std::vector<double> starts;
    for (const Strip::Run& run : strip.runs())
      starts.push_back(run.start);
    ASSERT_FALSE(starts.empty());
    if (expected.empty())
      expected = starts;
    ASSERT_EQ(starts.size(), expected.size()) << step;
    for (std::size_t i = 0; i < starts.size(); ++i)
      EXPECT_NEAR(starts[i], expected[i], 1e-6) << step;
  }
}

TEST(Strip, TouchesWithoutAGapAfterALongTime) {
  Strip strip(Extent, 61.7);
  strip.queue().append(fake("a", 17.3, {-1, 0, true}));
  for (double time = 0; time < 3600; time += 0.37)
    strip.advanceTo(time);
  for (std::size_t i = 1; i < strip.runs().size(); ++i)
    EXPECT_EQ(strip.runs()[i].start, strip.runs()[i - 1].end());
}

TEST(Strip, ChangesSpeedWithoutMovingAnything) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20));
  strip.advanceTo(3);
  strip.setSpeed(1000, 4);
  EXPECT_DOUBLE_EQ(strip.travel() - strip.runs().front().start, 40);
  strip.setSpeed(0, 4);
  strip.advanceTo(1e6);
  EXPECT_DOUBLE_EQ(strip.travel() - strip.runs().front().start, 40);
  EXPECT_FALSE(strip.isMoving());
}

TEST(Strip, LetsNothingEnterWhileItStands) {
  Strip strip(Extent, 0);
  strip.queue().append(fake("a", 20));
  strip.queue().append(fake("b", 20, {-1}));
  strip.advanceTo(1000);
  EXPECT_EQ(strip.runs().size(), 1u);
  strip.setSpeed(Speed, 1000);
  EXPECT_EQ(starts(strip, 1010, 0.5), "a@0 b@2 ");
}

TEST(Strip, IgnoresTimesThatRunBackwardsOrAreNone) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 20));
  strip.advanceTo(5);
  for (const double time : {4.0, -1.0, std::nan(""), Never})
    strip.advanceTo(time);
  EXPECT_EQ(strip.time(), 5);
}

TEST(Strip, SaysWhenSomethingHappensNextWhileItIsEmpty) {
  Strip strip(Extent, Speed);
  EXPECT_EQ(strip.nextEntryTime(), Never);
  strip.queue().append(fake("a", 20, {2, 5}));
  EXPECT_EQ(strip.nextEntryTime(), 0);
  strip.advanceTo(12);
  EXPECT_TRUE(strip.runs().empty());
  EXPECT_DOUBLE_EQ(strip.nextEntryTime(), 17);
  strip.advanceTo(40);
  EXPECT_EQ(strip.nextEntryTime(), Never);
}

TEST(Strip, KeepsTheOldestRunInPlaceWhenLengthsChange) {
  Strip strip(Extent, Speed);
  for (const char* name : {"a", "b", "c"})
    strip.queue().append(fake(name, 20));
  strip.advanceTo(5);
  strip.remeasure(Extent / 2, [](const Strip::Run&) { return 30.0; });
  ASSERT_EQ(strip.runs().size(), 3u);
  EXPECT_EQ(strip.runs()[0].start, 0);
  EXPECT_EQ(strip.runs()[1].start, 30);
  EXPECT_EQ(strip.runs()[2].start, 60);
  strip.queue().append(fake("d", 20));
  EXPECT_NE(starts(strip, 20, 0.5).find("d@9 "), std::string::npos);
}

TEST(Strip, CostsTheSameWithALongQueue) {
  // Steps of the queue that a frame takes, counted by what the items see.
  Strip strip(Extent, Speed);
  std::vector<std::shared_ptr<zq::app::testing::FakeItem>> items;
  for (int i = 0; i < 100'000; ++i) {
    items.push_back(fake("x", 20));
    strip.queue().append(items.back());
  }
  for (int frame = 0; frame < 600; ++frame)
    strip.advanceTo(frame / 60.0);
  int touched = 0;
  for (const auto& item : items)
    touched += item->entered;
  EXPECT_EQ(touched, 5);
}
