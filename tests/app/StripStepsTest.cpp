// Steps forward and back on a strip.
#include "app/display/Strip.h"
#include "tests/app/FakeItem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using zq::app::Strip;
using zq::app::testing::fake;
using zq::app::testing::FakeItem;
using zq::app::testing::nameOf;

namespace {
// Points per second and points: a sign that enters at second t has its start at the far edge 10
// seconds later.
constexpr double Speed = 10;
constexpr double Extent = 100;
constexpr double Step = Strip::StepSeconds;

// The travel at which the last step back turned.
double turnOf(const Strip& strip) {
  return strip.motion().travelAt(strip.motion().lowestBetween(0, strip.time()));
}

// Endless signs that touch: of 30, 40 and 50 points, as a round of 120.
class SteppedStrip : public ::testing::Test {
 protected:
  SteppedStrip() : strip(Extent, Speed) {
    for (const auto& item : {a, b, c})
      strip.queue().append(item);
  }

  // What stands at a place, in points from the edge at which runs leave, as "a+5" for 5 points of
  // it gone by.
  std::string at(double place) const {
    for (const Strip::Run& run : strip.runs()) {
      const double lead = Extent - (strip.travel() - run.start);
      if (lead <= place + 1e-6 && place < lead + run.length - 1e-6)
        return nameOf(run.item()) + "+" +
               std::to_string(std::lround(std::floor(place - lead + 1e-6)));
    }
    return "";
  }

  const std::shared_ptr<FakeItem> a = fake("a", 30, {-1, 0, true});
  const std::shared_ptr<FakeItem> b = fake("b", 40, {-1, 0, true});
  const std::shared_ptr<FakeItem> c = fake("c", 50, {-1, 0, true});
  Strip strip;
};
} // namespace

TEST_F(SteppedStrip, GoesForwardToTheNextStart) {
  strip.advanceTo(11);
  ASSERT_EQ(at(0), "a+10");
  EXPECT_TRUE(strip.stepForward(11));
  EXPECT_EQ(at(0), "a+10") << "without a jump";
  strip.advanceTo(11 + Step);
  EXPECT_EQ(at(0), "b+0");
  strip.advanceTo(11 + Step + 1);
  EXPECT_EQ(at(0), "b+10") << "and moves on";
}

TEST_F(SteppedStrip, LetsSignsEnterOnTheWayForward) {
  strip.advanceTo(11);
  strip.stepForward(11);
  strip.advanceTo(11 + Step);
  // b at the far edge, c and the next a behind it without a gap.
  EXPECT_EQ(at(40), "c+0");
  EXPECT_EQ(at(90), "a+0");
  strip.advanceTo(12 + Step);
  EXPECT_EQ(at(99), "a+19");
}

TEST_F(SteppedStrip, BringsTheFirstSignToTheFarEdge) {
  strip.advanceTo(2);
  EXPECT_TRUE(strip.stepForward(2));
  strip.advanceTo(2 + Step);
  EXPECT_EQ(at(0), "a+0");
}

TEST_F(SteppedStrip, PassesASignThatIsAboutToArriveByItself) {
  // b arrives at 13.
  EXPECT_TRUE(strip.stepForward(12.9));
  strip.advanceTo(12.9 + Step);
  EXPECT_EQ(at(0), "c+0");
}

TEST_F(SteppedStrip, AddsUpStepsThatFollowQuickly) {
  strip.stepForward(11);
  strip.stepForward(11.1);
  strip.stepForward(11.2);
  strip.advanceTo(11.2 + Step);
  EXPECT_EQ(at(0), "a+0") << "the second round";
}

TEST_F(SteppedStrip, GoesBackToTheStartOfTheSignThatLeaves) {
  strip.advanceTo(19.5);
  ASSERT_EQ(at(0), "c+25");
  EXPECT_TRUE(strip.stepBack(19.5));
  EXPECT_EQ(at(0), "c+25") << "without a jump";
  strip.advanceTo(19.5 + Step);
  EXPECT_EQ(at(0), "c+0");
  strip.advanceTo(20.5 + Step);
  EXPECT_EQ(at(0), "c+10") << "and moves on";
}

TEST_F(SteppedStrip, GoesBackToASignThatHasLeft) {
  // c's start has left 1.5 s ago, b has left when it came.
  strip.advanceTo(18.5);
  ASSERT_EQ(at(0), "c+15");
  EXPECT_TRUE(strip.stepBack(18.5));
  strip.advanceTo(18.5 + Step);
  EXPECT_EQ(at(0), "b+0");
  EXPECT_EQ(at(40), "c+0");
}

TEST_F(SteppedStrip, GoesBackSignBySign) {
  double time = 33.5; // c+45 in the second round
  for (const char* expected : {"c+0", "b+0", "a+0", "c+0", "b+0", "a+0"}) {
    ASSERT_TRUE(strip.stepBack(time)) << expected;
    strip.advanceTo(time += Step);
    EXPECT_EQ(at(0), expected);
  }
}

TEST_F(SteppedStrip, AddsUpStepsBackThatFollowQuickly) {
  strip.stepBack(33.5);
  strip.stepBack(33.6);
  strip.stepBack(33.7);
  strip.advanceTo(33.7 + Step);
  EXPECT_EQ(at(0), "a+0");
  EXPECT_NEAR(turnOf(strip), 220, 1e-6) << "that of the second round";
}

TEST_F(SteppedStrip, ShowsAgainWhatWasPushedOut) {
  strip.advanceTo(19.5);
  const std::string before = at(99);
  strip.stepBack(19.5);
  strip.advanceTo(19.5 + Step);
  // 25 points back; the strip is there again 2.5 s later.
  strip.advanceTo(19.5 + Step + 2.5);
  EXPECT_EQ(at(0), "c+25");
  EXPECT_EQ(at(99), before);
}

TEST_F(SteppedStrip, GoesNoFurtherBackThanToTheFirstSign) {
  strip.advanceTo(15);
  double time = 15;
  while (strip.stepBack(time))
    strip.advanceTo(time += Step);
  EXPECT_EQ(at(0), "a+0");
}

TEST_F(SteppedStrip, StepsBothWaysWhileItStands) {
  strip.setSpeed(0, 15);
  ASSERT_EQ(at(0), "b+20");
  EXPECT_TRUE(strip.stepForward(15));
  EXPECT_TRUE(strip.isMoving());
  strip.advanceTo(15 + Step);
  EXPECT_EQ(at(0), "c+0");
  EXPECT_FALSE(strip.isMoving());
  strip.advanceTo(20);
  EXPECT_EQ(at(0), "c+0") << "stands again";
  EXPECT_TRUE(strip.stepBack(20));
  strip.advanceTo(20 + Step);
  EXPECT_EQ(at(0), "b+0") << "a start that stands at the edge has left";
}

TEST_F(SteppedStrip, TurnsRoundOnTheWay) {
  strip.stepBack(33.5);    // to c+0
  strip.stepForward(33.6); // to the next a
  strip.advanceTo(33.6 + Step);
  EXPECT_EQ(at(0), "a+0");
  strip.stepForward(34.1);
  strip.stepBack(34.2);
  strip.advanceTo(34.2 + Step);
  EXPECT_EQ(at(0), "a+0");
}

TEST_F(SteppedStrip, KeepsSignsTogether) {
  double time = 0;
  for (int i = 0; i < 200; ++i) {
    i % 3 == 2 ? strip.stepForward(time) : strip.stepBack(time);
    strip.advanceTo(time += 0.7 + 0.013 * i);
    for (std::size_t run = 1; run < strip.runs().size(); ++run) {
      ASSERT_DOUBLE_EQ(strip.runs()[run].start, strip.runs()[run - 1].end()) << i;
      ASSERT_EQ(strip.runs()[run].number, strip.runs()[run - 1].number + 1) << i;
    }
    ASSERT_TRUE(strip.runs().empty() || time < 11 || !at(0).empty()) << i;
  }
}

TEST_F(SteppedStrip, ForgetsWhatHasLeftWhenLengthsChange) {
  strip.advanceTo(18);
  ASSERT_EQ(at(0), "c+10");
  strip.remeasure(Extent / 2, [](const Strip::Run& run) { return run.length; });
  EXPECT_TRUE(strip.stepBack(18)) << "to the start of the oldest one";
  strip.advanceTo(18 + Step);
  EXPECT_EQ(at(0), "c+0");
  EXPECT_FALSE(strip.stepBack(18 + Step));
}

TEST(StripSteps, ReadyTheirSignsAgain) {
  Strip strip(Extent, Speed);
  const auto once = fake("once", 30);
  strip.queue().append(once);
  strip.queue().append(fake("long", 1000));
  strip.advanceTo(20);
  ASSERT_EQ(once->left, 1);
  EXPECT_TRUE(strip.stepBack(20)); // to the start of the long one
  EXPECT_EQ(once->entered, 1);
  strip.advanceTo(20.4);
  EXPECT_TRUE(strip.stepBack(20.4));
  EXPECT_EQ(once->entered, 2);
  strip.advanceTo(20.8);
  EXPECT_EQ(nameOf(strip.runs().front().item()), "once");
  EXPECT_EQ(once->left, 1) << "not put away on the way";
  strip.advanceTo(30);
  EXPECT_EQ(once->left, 2);
  EXPECT_EQ(once->entered, 2) << "shown once, apart from the step";
}

TEST(StripSteps, BringBackTheLastSignOfAnEmptyStrip) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("once", 30));
  strip.advanceTo(500);
  ASSERT_TRUE(strip.isFinished());
  EXPECT_FALSE(strip.stepForward(500));
  EXPECT_TRUE(strip.stepBack(500));
  EXPECT_FALSE(strip.isFinished());
  EXPECT_TRUE(strip.isMoving());
  strip.advanceTo(500 + Step);
  ASSERT_EQ(strip.runs().size(), 1u);
  EXPECT_NEAR(turnOf(strip), Extent, 1e-6) << "its start at the far edge";
  strip.advanceTo(504);
  EXPECT_TRUE(strip.isFinished());
}

TEST(StripSteps, ShowWhatIsAddedAfterThem) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("once", 30));
  strip.advanceTo(500);
  strip.stepBack(500);
  strip.advanceTo(501 + Step);
  strip.queue().append(fake("new", 30));
  strip.advanceTo(503 + Step);
  ASSERT_EQ(strip.runs().size(), 1u);
  EXPECT_EQ(nameOf(strip.runs().front().item()), "new");
  EXPECT_DOUBLE_EQ(strip.travel() - strip.runs().front().start, 20) << "on its way for 2 s";
}

TEST(StripSteps, EndARoundThatDoesNotScrollContinuously) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 30, {-1}));
  strip.advanceTo(11);
  EXPECT_TRUE(strip.stepForward(11));
  strip.advanceTo(11 + Step);
  ASSERT_EQ(strip.runs().size(), 1u);
  EXPECT_NEAR(strip.travel() - strip.runs().front().start, 0, 1e-6) << "the next round begins";
  EXPECT_EQ(strip.runs().front().number, 2u);
}

TEST(StripSteps, WaitForARoundThatWasPushedBack) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 30, {-1}));
  strip.advanceTo(12.5);
  EXPECT_TRUE(strip.stepBack(12.5));
  strip.advanceTo(12.5 + Step);
  // It leaves when the strip has gone 130 points again, not at 13.
  const double left = 12.5 + Step + (130 - strip.travel()) / Speed;
  EXPECT_GT(left, 15.5);
  strip.advanceTo(left - 0.01);
  EXPECT_EQ(strip.runs().back().number, 1u);
  strip.advanceTo(left + 0.01);
  EXPECT_EQ(strip.runs().back().number, 2u);
}

TEST(StripSteps, RememberSoManySignsAndNoMore) {
  Strip strip(Extent, Speed);
  std::vector<std::weak_ptr<FakeItem>> items;
  for (int i = 0; i < 200; ++i) {
    const auto item = fake(std::to_string(i), 10);
    items.push_back(item);
    strip.queue().append(item);
  }
  strip.advanceTo(1000);
  std::size_t known = 0;
  for (const auto& item : items)
    known += !item.expired();
  EXPECT_EQ(known, Strip::MostPast);
  double time = 1000;
  while (strip.stepBack(time))
    strip.advanceTo(time += Step);
  EXPECT_EQ(nameOf(strip.runs().front().item()), std::to_string(200 - Strip::MostPast));
}

TEST(StripSteps, RememberNoMoreThanCostsSoMuch) {
  Strip strip(Extent, Speed);
  std::vector<std::weak_ptr<FakeItem>> items;
  for (int i = 0; i < 10; ++i) {
    const auto item = fake(std::to_string(i), 10);
    items.push_back(item);
    strip.queue().appendDroppable(item, Strip::MostPastCost / 4);
  }
  strip.queue().appendDroppable(fake("huge", 10), 10 * Strip::MostPastCost);
  strip.advanceTo(20);
  EXPECT_TRUE(items[5].expired());
  EXPECT_FALSE(items[6].expired());
  strip.advanceTo(100);
  EXPECT_TRUE(items[9].expired());
  EXPECT_TRUE(strip.stepBack(100)) << "to the one that left last, whatever it costs";
}

TEST(StripSteps, DoNotBringBackWhatWasWithdrawn) {
  Strip strip(Extent, Speed);
  const auto gone = strip.queue().append(fake("gone", 30, {-1, 0, true}));
  strip.queue().append(fake("b", 30, {-1, 0, true}));
  strip.advanceTo(13.5); // gone has left, and is on the strip again
  strip.withdraw(gone);
  EXPECT_TRUE(strip.stepBack(13.5)) << "to the start of b, although that has just left";
  strip.advanceTo(13.5 + Step);
  EXPECT_NEAR(turnOf(strip), 130, 1e-6);
  strip.moveBy(130 - strip.travel(), 13.5 + Step);
  EXPECT_FALSE(strip.stepBack(13.5 + Step));
  strip.advanceTo(100);
  double time = 100;
  for (int i = 0; i < 10; ++i) {
    strip.stepBack(time);
    strip.advanceTo(time += Step);
    for (const Strip::Run& run : strip.runs())
      EXPECT_EQ(nameOf(run.item()), "b");
  }
}

TEST(StripSteps, MakeRoomForASignThatHasBecomeLonger) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("a", 30));
  const auto clock = fake("clock", 30);
  strip.queue().append(clock);
  strip.queue().append(fake("long", 1000));
  strip.advanceTo(20);
  clock->length = 50;
  double time = 20;
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(strip.stepBack(time)) << i;
    strip.advanceTo(time += Step);
  }
  ASSERT_EQ(strip.runs().size(), 3u);
  EXPECT_DOUBLE_EQ(strip.runs()[2].start, 60) << "stays";
  EXPECT_DOUBLE_EQ(strip.runs()[1].start, 10);
  EXPECT_DOUBLE_EQ(strip.runs()[0].start, -20);
  EXPECT_NEAR(turnOf(strip), 80, 1e-6);
}

TEST(StripSteps, StopAtASignThatCannotBeShownAgain) {
  Strip strip(Extent, Speed);
  const auto broken = fake("broken", 30);
  strip.queue().append(broken);
  strip.queue().append(fake("b", 30));
  strip.advanceTo(14);
  broken->length = 0;
  EXPECT_TRUE(strip.stepBack(14)) << "to the start of b";
  strip.advanceTo(14 + Step);
  EXPECT_NEAR(turnOf(strip), 130, 1e-6);
  EXPECT_EQ(broken->left, 2);
  EXPECT_FALSE(strip.stepBack(14 + Step));
}

TEST(StripSteps, AreTheSameHoweverTimeIsCut) {
  std::vector<double> expected;
  for (const double step : {1.0 / 144, 1.0 / 24, 0.7, 500.0}) {
    Strip strip(Extent, Speed);
    strip.queue().append(fake("a", 17.3, {-1, 1.7}));
    strip.queue().append(fake("b", 250, {4}));
    strip.queue().append(fake("c", 3.1, {-1, 0, true}));
    const auto advanceTo = [&](double end) {
      while (strip.time() + step < end)
        strip.advanceTo(strip.time() + step);
      strip.advanceTo(end);
    };
    for (const double time : {20.0, 20.3, 41.0, 80.0, 80.2, 80.4}) {
      advanceTo(time);
      strip.stepForward(time);
      advanceTo(time + 0.15);
      if (time > 40)
        strip.stepBack(time + 0.15);
    }
    advanceTo(200);
    std::vector<double> starts;
    for (const Strip::Run& run : strip.runs())
      starts.push_back(strip.travel() - run.start);
    ASSERT_FALSE(starts.empty());
    if (expected.empty())
      expected = starts;
    ASSERT_EQ(starts.size(), expected.size()) << step;
    for (std::size_t i = 0; i < starts.size(); ++i)
      EXPECT_NEAR(starts[i], expected[i], 1e-5) << step;
  }
}
