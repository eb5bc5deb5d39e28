// Smoothing of coverage by a Gaussian.
#pragma once

#include <cstddef>
#include <vector>

namespace zq::platform {

// What each of a row's neighbours gives to a value: the weight at index i belongs to the neighbour
// i + first places before it. The weights add up to 1.
struct SmoothingWeights {
  int first = 0;
  std::vector<float> values;
};

// The Gaussian of standard deviation `sigma`, cut at three of them and moved by `shift` (0 to 1),
// both in places of the row: for each neighbour the integral over its place. A sigma below a
// quarter only moves, by linear interpolation.
SmoothingWeights gaussianWeights(double sigma, double shift);

// Values in rows, 0 to 1.
struct CoveragePlane {
  int width = 0;
  int height = 0;
  std::vector<float> values;

  float* row(int y) { return values.data() + std::size_t(y) * std::size_t(width); }
  const float* row(int y) const { return values.data() + std::size_t(y) * std::size_t(width); }
};

// `plane` smoothed along its rows by `horizontal`, then along its columns by `vertical`; what lies
// outside counts as 0.
CoveragePlane smoothed(const CoveragePlane& plane, const SmoothingWeights& horizontal,
                       const SmoothingWeights& vertical);

} // namespace zq::platform
