#include "app/display/BlankEstimate.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

namespace {
// Periods by which a report of the same screen may be off.
constexpr double Farthest = 2;
constexpr double FarthestFirst = 0.5;
// Periods from which on the line is bent, and down to which it stays bent; it comes back to the
// reports within some blanks.
constexpr double BendFrom = 0.125;
constexpr double BendTo = 0.03;
constexpr double BlanksOfReturn = 256;
// Blanks between two reports that give a period when the line begins anew.
constexpr std::uint64_t FewestMeasured = 4;
constexpr std::uint64_t MostMeasured = 1000;
constexpr double ShortestPeriod = 0.001;
constexpr double LongestPeriod = 1;
// Counts of one blank that are off by the last digit are the same.
constexpr double SameBlank = 1e-6;
} // namespace

void BlankEstimate::setPeriod(double period, std::uint64_t count) {
  const double time = timeOf(count);
  period_ = measured_ = period;
  begin(count, time);
}

void BlankEstimate::begin(std::uint64_t count, double time) {
  anchor_ = {count, time, true};
  first_ = base_ = {};
  last_ = count;
  errorCount_ = 0;
  isReturning_ = false;
}

bool BlankEstimate::add(std::uint64_t count, double time) {
  return take(count, time, Farthest);
}

bool BlankEstimate::addFirst(std::uint64_t count, double time) {
  return take(count, time, FarthestFirst);
}

bool BlankEstimate::take(std::uint64_t count, double time, double farthest) {
  const double error = time - timeOf(count);
  if (!anchor_.isKnown || count < last_ || !(std::abs(error) <= farthest * period_)) {
    beginWith(count, time);
    return false;
  }
  if (!first_.isKnown)
    first_ = {count, time, true};
  last_ = count;
  errors_[errorCount_++] = error;
  if (errorCount_ == BlockSize)
    settleBlock();
  return true;
}

// Where a line has just begun and is far off already, it is the rate that has changed.
void BlankEstimate::beginWith(std::uint64_t count, double time) {
  const bool isFar = std::abs(time - timeOf(count)) > Farthest * period_;
  if (isFar && first_.isKnown && count >= first_.count + FewestMeasured &&
      count <= first_.count + MostMeasured) {
    const double measured = (time - first_.time) / static_cast<double>(count - first_.count);
    if (measured >= ShortestPeriod && measured <= LongestPeriod)
      period_ = measured_ = measured;
  }
  begin(count, time);
  first_ = anchor_;
}

// Half of the reports are earlier than the median, whichever way the others are off.
void BlankEstimate::settleBlock() {
  const auto middle = errors_.begin() + BlockSize / 2;
  std::nth_element(errors_.begin(), middle, errors_.end());
  const double error = *middle;
  errorCount_ = 0;
  const Point here{last_, timeOf(last_) + error, true};
  if (!base_.isKnown)
    base_ = here;
  else
    measured_ = (here.time - base_.time) / static_cast<double>(here.count - base_.count);
  const double share = std::abs(error) / period_;
  if (share > BendFrom || (isReturning_ && share > BendTo)) {
    bend(measured_ + error / BlanksOfReturn);
    isReturning_ = true;
  } else if (isReturning_) {
    bend(measured_);
    isReturning_ = false;
  }
}

void BlankEstimate::bend(double period) {
  anchor_ = {last_, timeOf(last_), true};
  period_ = period;
}

double BlankEstimate::timeOf(std::uint64_t count) const {
  return anchor_.time +
         static_cast<double>(static_cast<std::int64_t>(count - anchor_.count)) * period_;
}

std::uint64_t BlankEstimate::countAt(double time) const {
  const double blanks = std::floor((time - anchor_.time) / period_ + SameBlank);
  return anchor_.count + static_cast<std::uint64_t>(static_cast<std::int64_t>(blanks));
}

} // namespace zq::app
