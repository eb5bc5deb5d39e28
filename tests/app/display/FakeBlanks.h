// A screen whose blanks a test tells, and a clock that it sets.
#pragma once

#include "app/display/FrameClock.h"

#include <cmath>
#include <memory>
#include <optional>

namespace zq::app::testing {

// What a clock sees of a screen; made by the screen, given to the clock.
class FakeBlankSource : public BlankSource {
 public:
  explicit FakeBlankSource(std::optional<quint64>& asked) : asked_(asked) {}
  void request(quint64 count) override { asked_ = count; }
  void cancel() override { asked_.reset(); }

 private:
  std::optional<quint64>& asked_;
};

// Blanks of one period, numbered from `first` on. The time that it keeps goes from blank to blank.
class FakeScreen {
 public:
  explicit FakeScreen(double rate, quint64 first = 1000, double begin = 50)
      : period_(1 / rate), first_(first), begin_(begin), now_(begin) {}

  FrameClock::Now clock() {
    return [this] { return now_; };
  }
  std::unique_ptr<FakeBlankSource> source() {
    auto made = std::make_unique<FakeBlankSource>(asked_);
    source_ = made.get();
    return made;
  }

  double period() const { return period_; }
  double now() const { return now_; }
  void setNow(double time) { now_ = time; }
  quint64 count() const { return count_; }
  double timeOf(quint64 count) const {
    return begin_ + static_cast<double>(count - first_) * period_;
  }
  const std::optional<quint64>& asked() const { return asked_; }

  // The next blank that was asked for, or `skipped` blanks later, reported `error` seconds off and
  // heard `late` seconds after it was. False where nothing was asked for.
  bool advance(double error = 0, double late = 0, quint64 skipped = 0) {
    if (!asked_)
      return false;
    count_ = std::max(*asked_, std::max(count_, first_) + 1) + skipped;
    asked_.reset();
    now_ = std::max(now_, timeOf(count_) + late);
    Q_EMIT source_->blank(count_, timeOf(count_) + error);
    return true;
  }

 private:
  double period_;
  quint64 first_;
  double begin_;
  double now_;
  quint64 count_ = 0;
  std::optional<quint64> asked_;
  FakeBlankSource* source_ = nullptr;
};

} // namespace zq::app::testing
