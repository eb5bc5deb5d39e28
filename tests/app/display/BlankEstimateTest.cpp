#include "app/display/BlankEstimate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace zq::app;

namespace {
constexpr double Period = 1.0 / 60;
} // namespace

TEST(BlankEstimate, IsStraightWhereReportsAreExact) {
  BlankEstimate estimate(Period);
  estimate.begin(500, 10);
  for (std::uint64_t i = 0; i < 10'000; ++i) {
    const double time = 10 + static_cast<double>(i) * Period;
    ASSERT_TRUE(estimate.add(500 + i, time));
    ASSERT_NEAR(estimate.timeOf(500 + i), time, 1e-9);
  }
  EXPECT_DOUBLE_EQ(estimate.period(), Period);
}

TEST(BlankEstimate, IsStraightWhereReportsJitter) {
  BlankEstimate estimate(Period);
  estimate.begin(500, 10);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> jitter(-0.0015, 0.0005);
  for (std::uint64_t i = 0; i < 20'000; ++i) {
    ASSERT_TRUE(estimate.add(500 + i, 10 + static_cast<double>(i) * Period + jitter(random)));
    ASSERT_DOUBLE_EQ(estimate.period(), Period) << i;
  }
  EXPECT_NEAR(estimate.timeOf(20'500), 10 + 20'000 * Period, 1e-6);
}

TEST(BlankEstimate, StaysNearBlanksOfAnotherRateThanTheScreenSays) {
  BlankEstimate estimate(Period);
  constexpr double Real = 1.0 / 59.94;
  estimate.begin(500, 10);
  std::mt19937 random(2);
  std::uniform_real_distribution<double> jitter(-0.001, 0.001);
  for (std::uint64_t i = 0; i < 20'000; ++i) {
    const double time = 10 + static_cast<double>(i) * Real;
    ASSERT_TRUE(estimate.add(500 + i, time + jitter(random)));
    ASSERT_LT(std::abs(estimate.timeOf(500 + i) - time), Period / 4) << i;
  }
  EXPECT_NEAR(estimate.period(), Real, Real * 1e-4);
}

TEST(BlankEstimate, ComesBackFromABadStartByAHair) {
  BlankEstimate estimate(Period);
  estimate.begin(100, 10.008);
  for (std::uint64_t i = 1; i < 2000; ++i) {
    ASSERT_TRUE(estimate.add(100 + i, 10 + static_cast<double>(i) * Period));
    ASSERT_NEAR(estimate.period(), Period, Period * 0.003) << "nobody sees it at " << i;
  }
  EXPECT_NEAR(estimate.timeOf(2100), 10 + 2000 * Period, Period / 8);
}

TEST(BlankEstimate, PassesOverWhatIsReportedFarTooLate) {
  BlankEstimate estimate(Period);
  estimate.begin(0, 10);
  for (std::uint64_t i = 1; i < 3000; ++i) {
    const bool isBusy = i % 5 < 2;
    ASSERT_TRUE(
        estimate.add(i, 10 + static_cast<double>(i) * Period + (isBusy ? 0.9 * Period : 0)));
    ASSERT_DOUBLE_EQ(estimate.period(), Period) << i;
  }
}

TEST(BlankEstimate, BeginsAnewWhereTheCountGoesBack) {
  BlankEstimate estimate(Period);
  estimate.begin(5000, 10);
  ASSERT_TRUE(estimate.add(5001, 10 + Period));
  EXPECT_FALSE(estimate.add(17, 10.5)) << "another screen";
  EXPECT_DOUBLE_EQ(estimate.timeOf(17), 10.5);
  EXPECT_TRUE(estimate.add(18, 10.5 + Period));
  EXPECT_DOUBLE_EQ(estimate.period(), Period);
}

TEST(BlankEstimate, FindsTheRateOfAScreenThatHasChangedIt) {
  BlankEstimate estimate(Period);
  estimate.begin(0, 10);
  constexpr double Faster = 1.0 / 144;
  for (std::uint64_t i = 1; i < 100; ++i)
    estimate.add(i, 10 + static_cast<double>(i) * Faster);
  EXPECT_NEAR(estimate.period(), Faster, 1e-6);
  EXPECT_NEAR(estimate.timeOf(100), 10 + 100 * Faster, Faster / 4);
}

TEST(BlankEstimate, BeginsAnewAfterARestByHalfAPeriod) {
  BlankEstimate estimate(Period);
  estimate.begin(0, 10);
  ASSERT_TRUE(estimate.addFirst(60, 11.004)) << "near enough to be the same blanks";
  EXPECT_DOUBLE_EQ(estimate.timeOf(60), 11);
  EXPECT_FALSE(estimate.addFirst(120, 12.010));
  EXPECT_DOUBLE_EQ(estimate.timeOf(120), 12.010);
  EXPECT_DOUBLE_EQ(estimate.period(), Period) << "one report says nothing of the rate";
}

TEST(BlankEstimate, CountsBlanksByTheirTimes) {
  BlankEstimate estimate(0.5);
  estimate.begin(10, 100);
  EXPECT_EQ(estimate.countAt(100), 10u);
  EXPECT_EQ(estimate.countAt(100.49), 10u);
  EXPECT_EQ(estimate.countAt(100.5), 11u);
  EXPECT_EQ(estimate.countAt(99.9), 9u);
  for (std::uint64_t i = 0; i < 1000; ++i)
    ASSERT_EQ(estimate.countAt(estimate.timeOf(i)), i);
  estimate.setPeriod(0.25, 12);
  EXPECT_DOUBLE_EQ(estimate.timeOf(12), 101);
  EXPECT_DOUBLE_EQ(estimate.timeOf(14), 101.5);
}
