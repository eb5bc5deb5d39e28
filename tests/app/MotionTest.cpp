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

TEST(Motion, StandsStillAtSpeedsThatAreNone) {
  for (const double speed : {0.0, -5.0, NotANumber, Infinity}) {
    Motion motion(speed);
    EXPECT_EQ(motion.travelAt(1e6), 0) << speed;
    EXPECT_EQ(motion.timeAt(1), Infinity) << speed;
    EXPECT_EQ(motion.speed(), 0) << speed;
  }
}
