#include "zqticker/platform/graphics/gaussian_p.h"

#include <algorithm>
#include <cmath>

namespace zq::platform {

// The integral of the standard normal distribution up to `x`.
static double normalIntegral(double x) {
  return 0.5 * std::erfc(-x / std::sqrt(2.0));
}

SmoothingWeights gaussianWeights(double sigma, double shift) {
  constexpr double smallestSigma = 0.25;
  if (sigma < smallestSigma)
    return {0, {float(1 - shift), float(shift)}};
  const int reach = int(std::ceil(3 * sigma));
  SmoothingWeights weights{-reach, {}};
  double sum = 0;
  std::vector<double> exact;
  for (int place = -reach; place <= reach + 1; ++place) {
    exact.push_back(normalIntegral((place + 0.5 - shift) / sigma) -
                    normalIntegral((place - 0.5 - shift) / sigma));
    sum += exact.back();
  }
  for (const double weight : exact)
    weights.values.push_back(float(weight / sum));
  return weights;
}

CoveragePlane smoothed(const CoveragePlane& plane, const SmoothingWeights& horizontal,
                       const SmoothingWeights& vertical) {
  const auto empty = [&] {
    return CoveragePlane{plane.width, plane.height, std::vector<float>(plane.values.size())};
  };
  CoveragePlane rows = empty();
  for (int y = 0; y < plane.height; ++y)
    for (std::size_t i = 0; i < horizontal.values.size(); ++i) {
      const int offset = horizontal.first + int(i);
      const int end = std::min(plane.width, plane.width + offset);
      for (int x = std::max(0, offset); x < end; ++x)
        rows.row(y)[x] += horizontal.values[i] * plane.row(y)[x - offset];
    }
  CoveragePlane result = empty();
  for (std::size_t i = 0; i < vertical.values.size(); ++i) {
    const int offset = vertical.first + int(i);
    const int end = std::min(plane.height, plane.height + offset);
    for (int y = std::max(0, offset); y < end; ++y)
      for (int x = 0; x < plane.width; ++x)
        result.row(y)[x] += vertical.values[i] * rows.row(y - offset)[x];
  }
  return result;
}

} // namespace zq::platform
