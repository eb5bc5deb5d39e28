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
  // 775 more than by itself, with a cube of what is left of the time: 1/8 is left after half of it.
  EXPECT_DOUBLE_EQ(motion.travelAt(4.25), 1000 - 12.5 - 775.0 / 8);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.5), 1000);
  EXPECT_DOUBLE_EQ(motion.travelAt(5.5), 1050);
  EXPECT_TRUE(motion.isGlidingAt(4.4));
  EXPECT_FALSE(motion.isGlidingAt(4.5));
  EXPECT_DOUBLE_EQ(motion.goalAt(4.1), 1000);
  EXPECT_DOUBLE_EQ(motion.goalAt(5.5), 1050);
}

TEST(Motion, GlidesBackAndTurnsAtThePlace) {
  Motion motion(50);
  motion.glideTo(120, 4, 0.5);
  EXPECT_DOUBLE_EQ(motion.travelAt(4), 200);
  const double turn = motion.lowestBetween(4, 10);
  EXPECT_GT(turn, 4.2);
  EXPECT_LT(turn, 4.5);
  EXPECT_NEAR(motion.travelAt(turn), 120, 1e-9);
  EXPECT_NEAR(motion.velocityAt(turn), 0, 1e-6);
  EXPECT_EQ(motion.goalAt(4.1), 120);
  EXPECT_EQ(motion.lowestBetween(4, turn - 0.1), turn - 0.1) << "on the way there";
  EXPECT_EQ(motion.lowestBetween(turn + 0.1, 10), turn + 0.1) << "from there on it only grows";
  EXPECT_NEAR(motion.travelAt(5.5) - motion.travelAt(4.5), 50, 1e-9);
}

TEST(Motion, GlidesBackToAStandWhereItDoesNotMove) {
  Motion motion;
  motion.restartAt(200, 4);
  motion.glideTo(120, 4, 0.5);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.25), 130);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.5), 120);
  EXPECT_DOUBLE_EQ(motion.travelAt(9), 120);
}

TEST(Motion, KnowsWhenATravelIsReachedByAGlide) {
  Motion motion(50);
  motion.glideTo(1000, 4, 0.5);
  EXPECT_DOUBLE_EQ(motion.timeAt(1000), 4.5);
  EXPECT_DOUBLE_EQ(motion.timeAt(1050), 5.5);
  EXPECT_DOUBLE_EQ(motion.timeAt(100), 4) << "already done";
  for (double travel = 200; travel < 1000; travel += 7)
    EXPECT_NEAR(motion.travelAt(motion.timeAt(travel)), travel, 1e-9);
}

TEST(Motion, CountsWhatAGlideBackTakesAwayAsNotReached) {
  Motion motion(50);
  motion.glideTo(100, 4, 0.5);
  EXPECT_NEAR(motion.travelAt(motion.timeAt(150)), 150, 1e-9);
  EXPECT_GT(motion.timeAt(150), 4.5) << "the second time";
  EXPECT_GT(motion.timeAt(100.5), motion.lowestBetween(4, 5));
  EXPECT_DOUBLE_EQ(motion.timeAt(99.9), 4) << "never taken away";
  motion.setSpeed(0, 4);
  EXPECT_EQ(motion.timeAt(150), Infinity);
}

TEST(Motion, FinishesAGlideAtAnySpeed) {
  Motion motion(50);
  motion.glideTo(1000, 4, 0.5);
  const double there = motion.travelAt(4.25);
  motion.setSpeed(0, 4.25);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.25), there);
  EXPECT_DOUBLE_EQ(motion.travelAt(9), 1000);
  motion.setSpeed(10, 9);
  EXPECT_DOUBLE_EQ(motion.travelAt(10), 1010);
}

TEST(Motion, LetsAGlideTakeOverFromAnother) {
  Motion motion(50);
  motion.glideTo(1000, 4, 0.5);
  const double there = motion.travelAt(4.25);
  motion.glideTo(100, 4.25, 1);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.25), there) << "no jump";
  EXPECT_NEAR(motion.travelAt(motion.lowestBetween(4.25, 9)), 100, 1e-9);
}

TEST(Motion, IsAtAPlaceNoLaterThanByItself) {
  Motion motion(1000);
  motion.glideTo(4100, 4, 0.5);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.05), 4050);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.1), 4100);
  EXPECT_DOUBLE_EQ(motion.endAt(4.05), 4.1);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.2), 4200);
}

TEST(Motion, AddsWaysToWhatMoves) {
  Motion motion(50);
  motion.glideBy(60, 4, 0.2);
  EXPECT_DOUBLE_EQ(motion.travelAt(4), 200);
  EXPECT_NEAR(motion.velocityAt(4), 50 + 3 * 60 / 0.2, 1e-6);
  EXPECT_DOUBLE_EQ(motion.travelAt(4.2), 270);
  motion.glideBy(60, 5, 0.2);
  motion.glideBy(60, 5.1, 0.2);
  EXPECT_DOUBLE_EQ(motion.travelAt(6), 300 + 60 + 120) << "one adds to the other";
  motion.glideBy(-60, 6, 0.2);
  EXPECT_DOUBLE_EQ(motion.travelAt(7), 530 - 60);
}

TEST(Motion, PassesIntoItsSpeedWithoutAStepAndExactly) {
  for (const double velocity : {-6000.0, -50.0, 0.0, 20.0, 600.0, 6000.0})
    for (const double speed : {0.0, 50.0, 137.5})
      for (const double rate : {24.0, 60.0, 144.0}) {
        Motion motion(speed);
        motion.glideBy((velocity - speed) * 0.9 / 3, 10, 0.9);
        EXPECT_NEAR(motion.velocityAt(10), velocity, 1e-9);
        // No change of velocity from frame to frame is larger than that of the whole allows.
        const double most = 2 * std::abs(velocity - speed) / 0.9 / rate + 1e-6;
        for (int frame = 0; frame < 2 * rate; ++frame) {
          const double time = 10 + frame / rate;
          const double next = time + 1 / rate;
          EXPECT_LE(std::abs(motion.velocityAt(next) - motion.velocityAt(time)), most);
          // The place is what the velocity makes of it, by Simpson's rule.
          if (next < 10.9 || time >= 10.9) {
            EXPECT_NEAR(motion.travelAt(next) - motion.travelAt(time),
                        (motion.velocityAt(time) + 4 * motion.velocityAt(time + 0.5 / rate) +
                         motion.velocityAt(next)) /
                            6 / rate,
                        1e-7);
          }
        }
        EXPECT_EQ(motion.velocityAt(10.9), speed);
        EXPECT_FALSE(motion.isGlidingAt(10.9));
        EXPECT_EQ(motion.travelAt(20) == motion.travelAt(10.9), speed == 0);
      }
}

TEST(Motion, KeepsItsVelocityWhereASpeedChangesOnTheWay) {
  Motion motion(50);
  motion.glideBy(200, 4, 0.9);
  const double place = motion.travelAt(4.3);
  const double velocity = motion.velocityAt(4.3);
  motion.setSpeed(0, 4.3);
  EXPECT_NEAR(motion.travelAt(4.3), place, 1e-9);
  EXPECT_NEAR(motion.velocityAt(4.3), velocity, 1e-9);
  EXPECT_EQ(motion.endAt(4.3), 4.9);
  EXPECT_EQ(motion.velocityAt(4.9), 0);
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
