#include "app/display/Strip.h"
#include "app/interaction/StripDrag.h"

#include "tests/app/FakeItem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

using namespace zq::app;
using zq::app::testing::fake;
using zq::app::testing::nameOf;

namespace {
// A strip of 100 points at 10 points a second, with runs of 30 points without end: a, b, c, a, …
class MovedStrip : public ::testing::Test {
 protected:
  MovedStrip() {
    for (const char* name : {"a", "b", "c"})
      strip.queue().append(fake(name, 30, {-1, 0, true}));
    strip.advanceTo(20); // travel 200
  }
  void expectTogether() {
    for (std::size_t run = 1; run < strip.runs().size(); ++run)
      EXPECT_DOUBLE_EQ(strip.runs()[run].start, strip.runs()[run - 1].end());
  }

  Strip strip{100, 10};
};
} // namespace

TEST_F(MovedStrip, FollowsAHandAtOnce) {
  ASSERT_DOUBLE_EQ(strip.travel(), 200);
  strip.moveBy(17, 20);
  EXPECT_DOUBLE_EQ(strip.travel(), 217);
  strip.moveBy(-30, 20);
  EXPECT_DOUBLE_EQ(strip.travel(), 187);
  strip.advanceTo(21);
  EXPECT_DOUBLE_EQ(strip.travel(), 197) << "and goes on from there";
}

TEST_F(MovedStrip, BringsInWhatWaitsWithoutGaps) {
  strip.moveBy(1000, 20);
  EXPECT_DOUBLE_EQ(strip.travel(), 1200);
  ASSERT_GE(strip.runs().size(), 4u);
  EXPECT_GE(strip.runs().back().end(), 1200);
  expectTogether();
}

TEST_F(MovedStrip, BringsBackWhatHasLeft) {
  strip.moveBy(-100, 20);
  EXPECT_DOUBLE_EQ(strip.travel(), 100);
  EXPECT_EQ(nameOf(strip.runs().front().item()), "a");
  EXPECT_EQ(strip.runs().front().number, 1u);
  expectTogether();
}

TEST_F(MovedStrip, ComesBackToTheSamePlace) {
  const auto front = strip.runs().front().number;
  strip.moveBy(-55, 20);
  strip.moveBy(55, 20);
  EXPECT_DOUBLE_EQ(strip.travel(), 200);
  EXPECT_EQ(strip.runs().front().number, front);
  expectTogether();
}

TEST_F(MovedStrip, GoesNoFartherBackThanIsKnown) {
  strip.moveBy(-1e9, 20);
  EXPECT_EQ(strip.runs().front().number, 1u);
  EXPECT_DOUBLE_EQ(strip.travel(), 30) << "the first one has just entered";
}

TEST_F(MovedStrip, StopsForAHandWhateverItWasDoing) {
  strip.stepForward(20);
  strip.moveBy(0, 20.1);
  const double there = strip.travel();
  strip.setSpeed(0, 20.1);
  strip.advanceTo(30);
  EXPECT_DOUBLE_EQ(strip.travel(), there);
}

TEST_F(MovedStrip, RunsOutWhenItIsThrown) {
  strip.throwBy(600, 20);
  EXPECT_DOUBLE_EQ(strip.travel(), 200) << "no jump";
  strip.advanceTo(20.001);
  EXPECT_NEAR(strip.travel(), 200.6, 0.01) << "the speed of the hand";
  strip.advanceTo(20 + Strip::ThrowSeconds);
  const double there = strip.travel();
  EXPECT_NEAR(there, 200 + 10 * Strip::ThrowSeconds + 590 * Strip::ThrowSeconds / 3, 1e-6);
  EXPECT_EQ(strip.motion().velocityAt(strip.time()), 10);
  EXPECT_FALSE(strip.isGliding());
  expectTogether();
  strip.advanceTo(21 + Strip::ThrowSeconds);
  EXPECT_NEAR(strip.travel(), there + 10, 1e-6) << "the old speed";
  strip.throwBy(-600, 22);
  strip.advanceTo(24);
  EXPECT_EQ(strip.runs().front().start + 100 > strip.travel() - 30, true);
  expectTogether();
}

TEST_F(MovedStrip, ComesToItsSpeedSmoothlyFromAStand) {
  strip.moveBy(0, 20);
  strip.setSpeed(0, 20);
  strip.advanceTo(25);
  strip.easeToSpeed(10, 25);
  double before = 0;
  for (int frame = 0; frame <= 60; ++frame) {
    strip.advanceTo(25 + frame / 60.0);
    const double velocity = strip.motion().velocityAt(strip.time());
    EXPECT_LE(velocity - before, 2 * 10 / Strip::EaseSeconds / 60 + 1e-9);
    EXPECT_GE(velocity, before - 1e-9);
    before = velocity;
  }
  EXPECT_EQ(before, 10);
  EXPECT_NEAR(strip.travel(), 210 - 10 * Strip::EaseSeconds / 3, 1e-6);
}

TEST_F(MovedStrip, StopsExactlyWhereItIsThrownWhileItStands) {
  strip.setSpeed(0, 20);
  strip.throwBy(300, 20);
  EXPECT_TRUE(strip.isMoving());
  strip.advanceTo(20 + Strip::ThrowSeconds);
  EXPECT_FALSE(strip.isMoving());
  EXPECT_NEAR(strip.travel(), 290, 1e-6);
  strip.easeToSpeed(10, 30);
  EXPECT_NEAR(strip.motion().velocityAt(30), 0, 1e-9);
  strip.advanceTo(32);
  EXPECT_EQ(strip.motion().velocityAt(32), 10);
}

TEST_F(MovedStrip, GoesOnFromItsVelocityWhereItIsLetGoDuringAThrow) {
  strip.setSpeed(0, 20);
  strip.throwBy(-300, 20);
  strip.advanceTo(20.3);
  const double velocity = strip.motion().velocityAt(20.3);
  EXPECT_LT(velocity, -50);
  const double place = strip.travel();
  strip.easeToSpeed(10, 20.3);
  EXPECT_NEAR(strip.travel(), place, 1e-9);
  EXPECT_NEAR(strip.motion().velocityAt(20.3), velocity, 1e-9);
  strip.advanceTo(22);
  EXPECT_EQ(strip.motion().velocityAt(22), 10);
  expectTogether();
}

TEST_F(MovedStrip, IsThrownBackNoFartherThanIsKnown) {
  strip.throwBy(-6000, 20);
  double lowest = 200;
  for (int frame = 0; frame < 100; ++frame) {
    strip.advanceTo(20 + frame / 60.0);
    lowest = std::min(lowest, strip.travel());
    ASSERT_FALSE(strip.runs().empty());
  }
  EXPECT_EQ(strip.runs().front().number, 1u);
  EXPECT_NEAR(lowest, 30, 3);
  expectTogether();
}

TEST_F(MovedStrip, AddsStepsOfAWheel) {
  strip.setSpeed(0, 20);
  strip.glideBy(60, 0.2, 20);
  strip.glideBy(60, 0.2, 20.1);
  strip.advanceTo(21);
  EXPECT_DOUBLE_EQ(strip.travel(), 320);
  strip.glideBy(-60, 0.2, 21);
  strip.advanceTo(22);
  EXPECT_DOUBLE_EQ(strip.travel(), 260);
}

TEST_F(MovedStrip, IgnoresWhatIsNoWay) {
  const double nothing = std::numeric_limits<double>::quiet_NaN();
  strip.moveBy(nothing, 20);
  strip.glideBy(nothing, 0.2, 20);
  strip.throwBy(nothing, 20);
  EXPECT_DOUBLE_EQ(strip.travel(), 200);
  strip.moveBy(std::numeric_limits<double>::infinity(), 20);
  EXPECT_DOUBLE_EQ(strip.travel(), 200 + Strip::LongestMove);
}

TEST(StripMoves, EndWhereNothingIsOnTheStrip) {
  Strip strip(100, 10);
  strip.queue().append(fake("once", 30));
  strip.advanceTo(5);
  strip.moveBy(1000, 5);
  EXPECT_TRUE(strip.isFinished());
  strip.moveBy(-1, 5);
  ASSERT_EQ(strip.runs().size(), 1u) << "it comes back";
  EXPECT_NEAR(strip.travel(), strip.runs().front().end() + 99, 1e-3);
}

TEST(StripMoves, DoNothingOnAnEmptyStrip) {
  Strip strip(100, 10);
  strip.moveBy(50, 1);
  strip.moveBy(-50, 1);
  strip.throwBy(500, 1);
  EXPECT_TRUE(strip.runs().empty());
  EXPECT_FALSE(strip.isMoving());
}

TEST(StripDrag, HoldsWhatIsUnderTheHand) {
  const StripDrag drag(40, 200);
  EXPECT_EQ(drag.travelAt(40), 200);
  EXPECT_EQ(drag.travelAt(15.5), 175.5);
}

TEST(StripDrag, ThrowsWithTheSpeedOfTheHand) {
  StripDrag drag(0, 0);
  for (int i = 0; i <= 10; ++i)
    drag.moveTo(i * 5, i * 0.01);
  EXPECT_NEAR(drag.speedAt(0.1), 500, 1e-6);
  EXPECT_EQ(drag.speedAt(0.3), 0) << "held still before it let go";
  drag.moveTo(50, 0.4);
  EXPECT_LT(drag.speedAt(0.4), 1) << "turned slow";
}

TEST(StripDrag, ThrowsNoFasterThanThat) {
  StripDrag drag(0, 0);
  drag.moveTo(0, 1);
  EXPECT_EQ(drag.speedAt(1), 0) << "no move, no speed";
  drag.moveTo(-10'000, 1);
  EXPECT_EQ(drag.speedAt(1), -StripDrag::FastestThrow);
}
