#include "app/access/PageReading.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using zq::app::PageReading;

TEST(PageReading, TakesAsLongAsThePointsWouldTakeToPass) {
  EXPECT_DOUBLE_EQ(PageReading(10, 5).endOf(100), 15);
}

TEST(PageReading, TakesAtLeastThreeSecondsFromWhatAppearedLast) {
  PageReading reading(10, 5);
  EXPECT_DOUBLE_EQ(reading.endOf(1), 5 + PageReading::LeastSeconds);
  reading.add(7);
  EXPECT_DOUBLE_EQ(reading.endOf(1), 7 + PageReading::LeastSeconds);
  EXPECT_DOUBLE_EQ(reading.endOf(100), 15);
}

TEST(PageReading, DoesNotCountTimeInWhichNothingWouldPass) {
  PageReading reading(10, 0);
  reading.setSpeed(0, 4);
  EXPECT_TRUE(std::isinf(reading.endOf(100)));
  reading.setSpeed(10, 50);
  EXPECT_DOUBLE_EQ(reading.endOf(100), 56);
  reading.setSpeed(20, 51);
  EXPECT_DOUBLE_EQ(reading.endOf(100), 53.5);
}

TEST(PageReading, BeginsAnew) {
  PageReading reading(10, 0);
  reading.add(8);
  reading.begin(20);
  EXPECT_DOUBLE_EQ(reading.endOf(100), 30);
  EXPECT_DOUBLE_EQ(reading.endOf(0), 20 + PageReading::LeastSeconds);
}

TEST(PageReading, TakesSpeedsThatAreNoneForNone) {
  EXPECT_TRUE(std::isinf(PageReading(-1, 0).endOf(1)));
  PageReading reading(1, 0);
  reading.setSpeed(std::nan(""), 1);
  EXPECT_TRUE(std::isinf(reading.endOf(1)));
  reading.setSpeed(std::numeric_limits<double>::infinity(), 1);
  EXPECT_EQ(reading.speed(), 0);
}
