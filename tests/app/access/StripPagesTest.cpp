// A strip that changes page by page.
#include "app/display/Strip.h"
#include "tests/app/FakeItem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

using zq::app::LoopRule;
using zq::app::PageReading;
using zq::app::Strip;
using zq::app::testing::fake;
using zq::app::testing::FakeItem;
using zq::app::testing::nameOf;

namespace {
// Points per second and points: a full page stands for ten seconds.
constexpr double Speed = 10;
constexpr double Extent = 100;

class PagedStrip : public ::testing::Test {
 protected:
  PagedStrip() : strip(Extent, Speed) { strip.setPaged(true, 0); }

  std::shared_ptr<FakeItem> add(const std::string& name, double length, LoopRule rule = {}) {
    const auto item = fake(name, length, rule);
    strip.queue().append(item);
    return item;
  }
  // Everything in sight at `time`, as "a+0 b+30": what begins where, from the edge at which runs
  // leave; "a-20" where 20 points of it have gone by.
  std::string page(double time) {
    strip.advanceTo(time);
    std::string text;
    for (const Strip::Run& run : strip.runs()) {
      const long place = std::lround(Extent - (strip.travel() - run.start));
      if (place >= strip.extent() || place + run.length <= 0)
        continue;
      text += (text.empty() ? "" : " ") + nameOf(run.item()) + (place < 0 ? "-" : "+") +
              std::to_string(std::abs(place));
    }
    return text;
  }

  Strip strip;
};
} // namespace

TEST_F(PagedStrip, ShowsWhatFitsFromTheStartAtOnceAndStandsStill) {
  add("a", 30);
  add("b", 40);
  add("c", 50);
  EXPECT_EQ(page(0), "a+0 b+30 c+70");
  EXPECT_FALSE(strip.isMoving());
  EXPECT_DOUBLE_EQ(strip.nextEntryTime(), 10) << "nothing is to be done before";
  EXPECT_EQ(page(9.99), "a+0 b+30 c+70");
}

TEST_F(PagedStrip, GoesOnWithTheFirstThatWasNotShownToItsEnd) {
  add("a", 30);
  add("b", 40);
  add("c", 50);
  add("d", 20);
  EXPECT_EQ(page(10), "c+0 d+50");
  EXPECT_EQ(page(16.99), "c+0 d+50");
  EXPECT_EQ(page(17), "");
  EXPECT_TRUE(strip.isFinished());
}

TEST_F(PagedStrip, DoesNotShowASignAgainWhoseGapAloneDidNotFit) {
  add("a", 60);
  add("b", 50)->itsGap = 10;
  add("c", 50);
  EXPECT_EQ(page(0), "a+0 b+60");
  EXPECT_EQ(page(10), "c+0");
}

TEST_F(PagedStrip, LetsShortPagesStandForAWhile) {
  add("a", 10);
  EXPECT_EQ(page(PageReading::LeastSeconds - 0.01), "a+0");
  EXPECT_EQ(page(PageReading::LeastSeconds), "");
}

TEST_F(PagedStrip, ShowsALongSignInPagesThatOverlap) {
  add("a", 250);
  add("b", 30);
  EXPECT_EQ(page(0), "a+0");
  EXPECT_EQ(page(10), "a-90");
  EXPECT_EQ(page(20), "a-180 b+70");
  EXPECT_EQ(page(30), "");
}

TEST_F(PagedStrip, PutsWhatComesOntoThePageAndLeavesItThereForAWhile) {
  add("a", 30);
  EXPECT_EQ(page(2.5), "a+0");
  add("b", 20);
  EXPECT_EQ(page(2.5), "a+0 b+30");
  EXPECT_EQ(page(5.49), "a+0 b+30");
  EXPECT_EQ(page(5.5), "");
}

TEST_F(PagedStrip, BeginsAPageWhenSomethingComes) {
  strip.advanceTo(7);
  add("a", 30);
  EXPECT_EQ(page(7), "a+0");
  EXPECT_EQ(page(9.99), "a+0");
  EXPECT_EQ(page(10), "");
}

TEST_F(PagedStrip, KeepsRoundsDelaysAndCounts) {
  const auto a = add("a", 50, {2, 4, false});
  EXPECT_EQ(page(4.99), "a+0");
  EXPECT_EQ(page(5), "") << "the delay";
  EXPECT_DOUBLE_EQ(strip.nextEntryTime(), 9);
  EXPECT_EQ(page(9), "a+0");
  EXPECT_EQ(page(14), "");
  EXPECT_TRUE(strip.isFinished());
  EXPECT_EQ(a->entered, 2);
}

TEST_F(PagedStrip, BeginsTheNextRoundOnAPageOfItsOwn) {
  add("a", 30, {-1, 0, false});
  add("b", 20);
  EXPECT_EQ(page(0), "a+0 b+30");
  EXPECT_EQ(page(5), "a+0");
  EXPECT_EQ(page(8), "a+0");
}

TEST_F(PagedStrip, FillsAPageWithContinuousRounds) {
  add("a", 40, {-1, 0, true});
  EXPECT_EQ(page(0), "a+0 a+40 a+80");
  EXPECT_EQ(page(10), "a+0 a+40 a+80");
}

TEST_F(PagedStrip, LetsHigherPrioritiesPassWhatWaits) {
  add("a", 100);
  add("b", 100);
  strip.advanceTo(1);
  strip.queue().append(fake("c", 100), 1);
  EXPECT_EQ(page(10), "c+0");
  EXPECT_EQ(page(20), "b+0");
}

TEST_F(PagedStrip, TakesOutAndReplacesWhatWaits) {
  add("a", 100);
  const auto b = strip.queue().append(fake("b", 100));
  const auto c = strip.queue().append(fake("c", 100));
  strip.advanceTo(1);
  strip.withdraw(b);
  strip.queue().replace(c, fake("d", 100));
  EXPECT_EQ(page(10), "d+0");
}

TEST_F(PagedStrip, StandsLongerByATimeInWhichItIsPaused) {
  add("a", 100);
  add("b", 100);
  strip.advanceTo(4);
  strip.setSpeed(0, 4);
  EXPECT_EQ(page(1000), "a+0");
  EXPECT_TRUE(std::isinf(strip.nextEntryTime()));
  strip.setSpeed(Speed, 1000);
  EXPECT_EQ(page(1005.99), "a+0");
  EXPECT_EQ(page(1006), "b+0");
}

TEST_F(PagedStrip, StepsAtOnce) {
  add("a", 60);
  add("b", 60);
  add("c", 60);
  EXPECT_EQ(page(1), "a+0 b+60");
  EXPECT_TRUE(strip.stepForward(1));
  EXPECT_EQ(page(1), "b+0 c+60");
  EXPECT_FALSE(strip.isMoving());
  EXPECT_EQ(page(10.99), "b+0 c+60") << "and the page stands as long as any other";
  EXPECT_EQ(page(11), "c+0");
  EXPECT_TRUE(strip.stepBack(12));
  EXPECT_EQ(page(12), "b+0 c+60");
  EXPECT_TRUE(strip.stepBack(12));
  EXPECT_EQ(page(12), "a+0 b+60");
  EXPECT_FALSE(strip.stepBack(12));
}

TEST_F(PagedStrip, FollowsAHandAndDoesNotGlideAfterIt) {
  add("a", 60);
  add("b", 60);
  add("c", 60);
  ASSERT_EQ(page(4), "a+0 b+60");
  strip.moveBy(30, 4);
  EXPECT_EQ(page(4), "a-30 b+30 c+90");
  strip.throwBy(500, 4);
  EXPECT_EQ(page(5), "a-30 b+30 c+90");
  strip.glideBy(30, 0.5, 5);
  EXPECT_EQ(page(5), "b+0 c+60") << "at once";
  EXPECT_EQ(page(14.9), "b+0 c+60");
  EXPECT_EQ(page(15), "c+0");
}

TEST_F(PagedStrip, GoesBackToTheStartOfALongSign) {
  add("a", 250);
  EXPECT_EQ(page(10), "a-90");
  EXPECT_TRUE(strip.stepBack(11));
  EXPECT_EQ(page(11), "a+0");
}

TEST_F(PagedStrip, KeepsThePlaceOfAPageWhoseExtentChanges) {
  add("a", 60);
  add("b", 60);
  add("c", 60);
  EXPECT_EQ(page(10), "b+0 c+60");
  strip.setExtent(50, 10);
  strip.setExtent(200, 10);
  EXPECT_DOUBLE_EQ(strip.extent() - (strip.travel() - strip.runs().front().start), 0);
}

TEST_F(PagedStrip, PassesAStripWithoutExtentAndWithoutSpeed) {
  strip.setExtent(0, 0);
  add("a", 2);
  strip.advanceTo(100);
  EXPECT_TRUE(strip.isFinished());
  strip.setSpeed(0, 100);
  add("b", 2);
  strip.advanceTo(1e9);
  EXPECT_FALSE(strip.isFinished());
}

TEST_F(PagedStrip, KeepsWhatIsReadWhenPagingBeginsAndEnds) {
  strip.setPaged(false, 0);
  for (const char* name : {"a", "b", "c", "d"})
    add(name, 60);
  ASSERT_EQ(page(13), "a-30 b+30 c+90");
  strip.setPaged(true, 13);
  EXPECT_EQ(page(13), "a-30 b+30 c+90");
  EXPECT_EQ(page(22.9), "a-30 b+30 c+90");
  EXPECT_EQ(page(23), "c+0 d+60");
  strip.setPaged(false, 24);
  EXPECT_EQ(page(24), "c+0 d+60");
  EXPECT_EQ(page(25), "c-10 d+50") << "and moves on";
  EXPECT_TRUE(strip.isMoving());
}

TEST_F(PagedStrip, BeginsWithTheFirstStartWhereNothingHasLeftYet) {
  strip.setPaged(false, 0);
  add("a", 60);
  add("b", 60);
  ASSERT_EQ(page(2), "a+80");
  strip.setPaged(true, 2);
  EXPECT_EQ(page(2), "a+0 b+60");
  EXPECT_EQ(page(12), "b+0");
}

TEST_F(PagedStrip, EndsAStepThatIsUnderWayAtOnce) {
  strip.setPaged(false, 0);
  add("a", 60);
  add("b", 60);
  strip.advanceTo(12);
  ASSERT_TRUE(strip.stepForward(12));
  strip.setPaged(true, 12.1);
  EXPECT_EQ(page(12.1), "b+0");
}

TEST_F(PagedStrip, ShowsEverySignOnceHoweverOftenPagingBeginsAndEnds) {
  std::vector<std::shared_ptr<FakeItem>> items;
  for (int i = 0; i < 30; ++i)
    items.push_back(add(std::to_string(i), 10 + 7 * i % 90));
  std::mt19937 random(1);
  std::uniform_real_distribution<double> step(0, 9);
  double time = 0;
  for (int i = 0; i < 2000 && !strip.isFinished(); ++i) {
    time += step(random);
    strip.setPaged(i % 2 == 0, time);
  }
  EXPECT_TRUE(strip.isFinished());
  for (const auto& item : items)
    EXPECT_EQ(item->entered, 1) << item->name;
}

TEST_F(PagedStrip, IsTheSameHoweverTimeIsCut) {
  const auto record = [](double step) {
    Strip cut(Extent, Speed);
    cut.setPaged(true, 0);
    cut.queue().append(fake("a", 35, {-1, 2, false}));
    cut.queue().append(fake("b", 250, {3, 0, true}));
    cut.queue().append(fake("c", 80, {-1, 30, true}));
    std::string log;
    int next = 1;
    for (int tenths = 0; tenths <= 4000; ++tenths) {
      const double time = tenths / 10.0;
      if (time < next * step && tenths % 500 != 0)
        continue;
      next = static_cast<int>(time / step) + 1;
      cut.advanceTo(time);
      if (tenths % 500 != 0)
        continue;
      if (tenths == 1000)
        cut.queue().append(fake("d", 20), 1);
      log += std::to_string(cut.travel()) + ":";
      for (const Strip::Run& run : cut.runs())
        log += nameOf(run.item()) + std::to_string(run.start) + " ";
    }
    return log;
  };
  EXPECT_EQ(record(0.1), record(1.7));
  EXPECT_EQ(record(0.1), record(50));
}
