#include "zqticker/platform/graphics/gaussian_p.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

using namespace zq::platform;

TEST(Gaussian, WeightsHaveTheirMomentsAndSum) {
  for (const double sigma : {0.5, 1.0, 2.5, 6.0})
    for (const double shift : {0.0, 0.25, 0.9}) {
      const SmoothingWeights weights = gaussianWeights(sigma, shift);
      double sum = 0, mean = 0, variance = 0;
      for (std::size_t i = 0; i < weights.values.size(); ++i) {
        const double weight = double(weights.values[i]);
        const double place = weights.first + int(i);
        sum += weight;
        mean += weight * place;
        variance += weight * place * place;
      }
      variance -= mean * mean;
      EXPECT_NEAR(sum, 1, 1e-6);
      EXPECT_NEAR(mean, shift, 0.02) << sigma;
      // Each place is as wide as 1, which adds a twelfth; the cut takes some away.
      EXPECT_NEAR(variance, sigma * sigma + 1.0 / 12, 0.04 * (sigma * sigma + 0.1)) << sigma;
    }
}

TEST(Gaussian, SmoothingKeepsTheSumAndMovesByTheShift) {
  CoveragePlane plane{9, 7, std::vector<float>(63)};
  plane.row(3)[4] = 1;
  const CoveragePlane moved = smoothed(plane, gaussianWeights(0, 0.25), gaussianWeights(0, 0));
  EXPECT_FLOAT_EQ(moved.row(3)[4], 0.75f);
  EXPECT_FLOAT_EQ(moved.row(3)[5], 0.25f);
  const CoveragePlane soft = smoothed(plane, gaussianWeights(0.5, 0), gaussianWeights(0.5, 0));
  EXPECT_NEAR(double(std::accumulate(soft.values.begin(), soft.values.end(), 0.0f)), 1, 1e-5);
  EXPECT_FLOAT_EQ(soft.row(2)[4], soft.row(3)[5]);
}
