// When the screen is refreshed, worked out from reports that are not exact.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zq::app {

// A line through the times of blanks: every blank comes one period after the one before. What is
// reported of single blanks is late or early by as much as the system is busy; the line follows the
// median of many reports, is straight for as long as they agree with it, and bends by a hair where
// they do not. So what moves by it moves evenly.
//
// Times are seconds on the monotonic clock; counts are those of the source, which may begin
// anywhere.
class BlankEstimate {
 public:
  explicit BlankEstimate(double period) : period_(period), measured_(period) {}

  double period() const { return period_; }
  // Another screen, or another rate: the line goes on at this period from the blank `count`.
  void setPeriod(double period, std::uint64_t count);

  // The line goes through this blank from now on; nothing is known of others.
  void begin(std::uint64_t count, double time);

  // Takes a report. False where it has nothing to do with the line, which begins anew with it then:
  // the count went back, or the time is off by periods.
  bool add(std::uint64_t count, double time);
  // The same for the first report after a rest: half a period is enough to begin anew.
  bool addFirst(std::uint64_t count, double time);

  double timeOf(std::uint64_t count) const;
  // The last blank at `time` or before.
  std::uint64_t countAt(double time) const;

 private:
  static constexpr std::size_t BlockSize = 64;
  struct Point {
    std::uint64_t count = 0;
    double time = 0;
    bool isKnown = false;
  };

  bool take(std::uint64_t count, double time, double farthest);
  void beginWith(std::uint64_t count, double time);
  void settleBlock();
  void bend(double period);

  double period_;
  double measured_; // the period by the reports
  Point anchor_;    // of the line
  Point first_;     // the first report since the line began
  Point base_;      // the middle of the first block since then
  std::uint64_t last_ = 0;
  std::array<double, BlockSize> errors_{}; // seconds from the line to the reports
  std::size_t errorCount_ = 0;
  bool isReturning_ = false; // the line is bent towards the reports
};

} // namespace zq::app
