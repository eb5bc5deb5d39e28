#include "app/display/Motion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using zq::app::Motion;

namespace {
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();
} // namespace

TEST(Motion, TravelsAtItsSpeedFromItsStart) {
  const Motion motion(50, 100);
  EXPECT_DOUBLE_EQ(motion.travelAt(100), 0);
  EXPECT_DOUBLE_EQ(motion.travelAt(102.5), 125);
  EXPECT_DOUBLE_EQ(motion.travelAt(99), 0) << "before the start";
}

TEST(Motion, IsTheSameHoweverOftenItIsAsked) {
  const Motion motion(33.3);
  const double once = motion.travelAt(1000);
  for (int i = 0; i < 1000; ++i)
    motion.travelAt(i);
  EXPECT_EQ(motion.travelAt(1000), once);
}

TEST(Motion, ChangesItsSpeedWithoutAJump) {
  Motion motion(50);
  motion.setSpeed(10, 4);
  EXPECT_DOUBLE_EQ(motion.travelAt(4), 200);
  EXPECT_DOUBLE_EQ(motion.travelAt(5), 210);
  motion.setSpeed(100, 5);
  EXPECT_DOUBLE_EQ(motion.travelAt(5), 210);
  EXPECT_DOUBLE_EQ(motion.travelAt(6), 310);
}

TEST(Motion, KnowsWhenATravelIsReached) {
  Motion motion(50, 10);
  EXPECT_DOUBLE_EQ(motion.timeAt(100), 12);
  motion.setSpeed(25, 12);
  EXPECT_DOUBLE_EQ(motion.timeAt(150), 14);
  EXPECT_DOUBLE_EQ(motion.timeAt(100), 12);
  EXPECT_DOUBLE_EQ(motion.timeAt(20), 12) << "already done";
}

TEST(Motion, GlidesToAPlaceAndGoesOnFromThereAtItsSpeed) {
  Motion motion(50);
  motion.glideTo(1000, 4, 0.5);
  EXPECT_DOUBLE_EQ(motion.travelAt(4), 200) << "no jump";
  // A cube of what is left of the time: 1/8 of the way is left after half of it.
  EXPECT_DOUBLE_EQ(motion.travelAt(4.25), 900);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.5), 1000);
  EXPECT_DOUBLE_EQ(motion.travelAt(5.5), 1050);
  EXPECT_TRUE(motion.isGlidingAt(4.4));
  EXPECT_FALSE(motion.isGlidingAt(4.5));
  EXPECT_DOUBLE_EQ(motion.goalAt(4.1), 1000);
  EXPECT_DOUBLE_EQ(motion.goalAt(5.5), 1050);
}

TEST(Motion, GlidesBack) {
  Motion motion(50);
  motion.glideTo(120, 4, 0.5);
  EXPECT_DOUBLE_EQ(motion.travelAt(4), 200);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.25), 130);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.5), 120);
  EXPECT_DOUBLE_EQ(motion.travelAt(6.1), 200);
}

TEST(Motion, KnowsWhenATravelIsReachedByAGlide) {
  Motion motion(50);
  motion.glideTo(1000, 4, 0.5);
  EXPECT_DOUBLE_EQ(motion.timeAt(900), 4.25);
  EXPECT_DOUBLE_EQ(motion.timeAt(1000), 4.5);
  EXPECT_DOUBLE_EQ(motion.timeAt(1050), 5.5);
  EXPECT_DOUBLE_EQ(motion.timeAt(100), 4) << "already done";
  for (double travel = 200; travel < 1000; travel += 7)
    EXPECT_NEAR(motion.travelAt(motion.timeAt(travel)), travel, 1e-9);
}

TEST(Motion, CountsWhatAGlideBackTakesAwayAsNotReached) {
  Motion motion(50);
  motion.glideTo(100, 4, 0.5);
  EXPECT_DOUBLE_EQ(motion.timeAt(150), 5.5) << "the second time";
  EXPECT_DOUBLE_EQ(motion.timeAt(100), 4) << "never taken away";
  motion.setSpeed(0, 4);
  EXPECT_EQ(motion.timeAt(150), Infinity);
}

TEST(Motion, FinishesAGlideAtAnySpeed) {
  Motion motion(50);
  motion.glideTo(1000, 4, 0.5);
  motion.setSpeed(0, 4.25);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.25), 900);
  EXPECT_DOUBLE_EQ(motion.travelAt(9), 1000);
  motion.setSpeed(10, 9);
  EXPECT_DOUBLE_EQ(motion.travelAt(10), 1010);
}

TEST(Motion, LetsAGlideTakeOverFromAnother) {
  Motion motion(50);
  motion.glideTo(1000, 4, 0.5);
  motion.glideTo(100, 4.25, 1);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.25), 900) << "no jump";
  EXPECT_DOUBLE_EQ(motion.travelAt(4.75), 200);
  EXPECT_DOUBLE_EQ(motion.travelAt(5.25), 100);
}

TEST(Motion, IgnoresGlidesThatAreNone) {
  Motion motion(50);
  motion.glideTo(NotANumber, 4, 0.5);
  motion.glideTo(Infinity, 4, 0.5);
  motion.glideTo(10, 4, 0);
  motion.glideTo(10, NotANumber, 1);
  EXPECT_DOUBLE_EQ(motion.travelAt(10), 500);
}

TEST(Motion, StandsStillAtSpeedsThatAreNone) {
  for (const double speed : {0.0, -5.0, NotANumber, Infinity}) {
    Motion motion(speed);
    EXPECT_EQ(motion.travelAt(1e6), 0) << speed;
    EXPECT_EQ(motion.timeAt(1), Infinity) << speed;
    EXPECT_EQ(motion.speed(), 0) << speed;
  }
}
