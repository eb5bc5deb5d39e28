// Strips under thousands of random operations, beside a plain model of what may be seen.
#include "app/display/Strip.h"
#include "tests/app/FakeItem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

using zq::app::LoopRule;
using zq::app::Strip;
using zq::app::testing::fake;
using zq::app::testing::FakeItem;

namespace {
constexpr double Tolerance = 1e-6;

// The part of a run's sign that has been in sight, in points from its left end.
struct Sight {
  std::shared_ptr<FakeItem> item; // kept while the strip may have forgotten it
  double shown = 0;
  double first = 0;
  double end = 0;

  bool isWhole() const { return first < Tolerance && end > shown - Tolerance; }
};

// A strip with something to compare it with: a window on which signs have places from its left end,
// and which part of each showing has been seen.
class WatchedStrip {
 public:
  explicit WatchedStrip(unsigned seed) : random_(seed) {}

  void doSomething() {
    // What was added enters before.
    strip_.advanceTo(time_);
    expectNoMove(0);
    switch (below(14)) {
    case 0:
    case 1:
      add();
      break;
    case 2:
      strip_.reverse(time_);
      if (time_ < glideEnd_)
        glideEnd_ = time_ + Strip::StepSeconds;
      isReversed_ = !isReversed_;
      expectNoMove(0);
      break;
    case 3:
      strip_.setSpeed(below(4) == 0 ? 0 : below(300), time_);
      expectNoMove(0);
      break;
    case 4:
      if (below(2) == 0 ? strip_.stepForward(time_) : strip_.stepBack(time_))
        glideEnd_ = time_ + Strip::StepSeconds;
      expectNoMove(0);
      break;
    case 5:
      resize();
      break;
    case 7:
      moveByHand();
      break;
    case 6:
      removeOrReplace();
      expectNoMove(0);
      break;
    default:
      for (int i = below(40); i >= 0; --i)
        advance(0.001 * (1 + below(50)));
    }
    expectOrder();
  }

  // Lets all signs pass and looks whether each was seen wholly as often as its count says.
  void finish() {
    if (strip_.speed() < 50)
      strip_.setSpeed(50, time_);
    for (int i = 0; i < 1'000'000 && !strip_.isFinished(); ++i)
      advance(0.1);
    ASSERT_TRUE(strip_.isFinished());
    std::map<const FakeItem*, int> showings;
    for (const auto& [number, sight] : seen_)
      showings[sight.item.get()] += sight.isWhole();
    for (const auto& [item, entry] : entries_) {
      if (changed_.count(item.get()) == 0) {
        EXPECT_EQ(showings[item.get()], std::max<std::int64_t>(item->rule.count, 1)) << item->name;
      }
      EXPECT_FALSE(item->isQueued) << item->name;
    }
  }

  int count() const { return static_cast<int>(entries_.size()); }

 private:
  int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random_); }

  void add() {
    const double length = below(5) == 0 ? 200 + below(400) : 1 + below(80) * 0.7;
    const LoopRule rule{below(4), below(3) * 0.3, below(2) == 0};
    const auto item = fake("item" + std::to_string(entries_.size()), length, rule);
    item->itsGap = std::min(below(3) * 4.0, length / 2);
    entries_.emplace_back(item, strip_.queue().append(item, below(5) == 0 ? 1 : 0));
  }

  void removeOrReplace() {
    if (entries_.empty())
      return;
    const auto [old, entry] = entries_[static_cast<std::size_t>(below(count()))];
    if (!entry->isWaiting())
      return;
    changed_.insert(old.get());
    if (below(3) == 0) {
      const auto item = fake("new", 10 + below(30), old->rule);
      const auto successor = strip_.queue().replace(entry, item);
      changed_.insert(item.get());
      entries_.emplace_back(item, successor);
    } else {
      strip_.withdraw(entry);
    }
  }

  void resize() {
    const bool keepsEntering = isReversed_;
    strip_.setExtent(100 + below(300), time_,
                     keepsEntering ? Strip::Edge::Entering : Strip::Edge::Leaving);
    expectNoMove(0);
  }

  // Back no further than to what is in sight then, forward as far as the hand likes.
  void moveByHand() {
    const double before = strip_.travel();
    strip_.moveBy(below(200) - 100, time_);
    glideEnd_ = time_;
    const double moved = strip_.travel() - before;
    expectNoMove(isReversed_ ? moved : -moved);
    if (below(3) == 0) {
      strip_.throwBy(below(2000) - 1000, time_);
      glideEnd_ = time_ + Strip::ThrowSeconds;
      expectNoMove(0);
    }
  }

  void advance(double seconds) {
    // Between two looks everything goes one way.
    const double turn = strip_.motion().lowestBetween(time_, time_ + seconds) - time_;
    if (turn > Tolerance && turn < seconds - Tolerance) {
      advance(turn);
      seconds -= turn;
    }
    if (const double rest = time_ + seconds - glideEnd_; rest > 0 && rest < seconds) {
      advance(seconds - rest);
      seconds = rest;
    }
    const double before = strip_.travel();
    time_ += seconds;
    strip_.advanceTo(time_);
    const double moved = strip_.travel() - before;
    if (time_ - seconds >= glideEnd_) {
      EXPECT_NEAR(moved, strip_.speed() * seconds, Tolerance);
    }
    expectNoMove(isReversed_ ? moved : -moved);
  }

  // On the way from one place to another.
  void see(Sight& sight, double from, double to) const {
    const double first = std::clamp(-std::max(from, to), 0.0, sight.shown);
    const double end = std::clamp(strip_.extent() - std::min(from, to), 0.0, sight.shown);
    if (first < end) {
      sight.first = std::min(sight.first, first);
      sight.end = std::max(sight.end, end);
    }
  }
  bool isInSight(double place, double shown) const {
    return place + shown > Tolerance && place < strip_.extent() - Tolerance;
  }
  double placeOf(const Strip::Run& run) const {
    const double lead = strip_.extent() - (strip_.travel() - run.start);
    return isReversed_ ? strip_.extent() - lead - run.shown : lead;
  }

  // What was on the strip before has moved by so many points to the right, and by nothing else.
  void expectNoMove(double moved) {
    std::map<std::uint64_t, double> now;
    for (const Strip::Run& run : strip_.runs()) {
      const double place = placeOf(run);
      now[run.number] = place;
      if (const auto before = places_.find(run.number); before != places_.end()) {
        const double expected = before->second + moved;
        if (isInSight(place, run.shown) || isInSight(expected, run.shown)) {
          EXPECT_NEAR(place, expected, Tolerance) << run.number;
        }
      }
      Sight& sight = seen_[run.number];
      double from = place;
      if (!sight.item) {
        sight = {std::static_pointer_cast<FakeItem>(run.entry->item), run.shown, run.shown, 0};
        from = isReversed_ ? -run.shown : strip_.extent();
      }
      if (const auto before = places_.find(run.number); before != places_.end())
        from = before->second;
      see(sight, from, place);
    }
    // What is gone has not been in sight any more.
    for (const auto& [number, place] : places_) {
      if (now.count(number) == 0) {
        see(seen_[number], place, place + moved);
        EXPECT_FALSE(isInSight(place + moved, seen_[number].shown)) << number;
      }
    }
    places_ = std::move(now);
  }

  void expectOrder() {
    const auto& runs = strip_.runs();
    for (std::size_t i = 1; i < runs.size(); ++i)
      EXPECT_GE(runs[i].start, runs[i - 1].end() - Tolerance);
    if (runs.size() < 2)
      return;
    // The signs that were there stand in their order still.
    std::vector<std::pair<double, std::uint64_t>> order;
    for (const Strip::Run& run : runs)
      order.emplace_back(placeOf(run), run.number);
    EXPECT_TRUE(isReversed_ ? std::is_sorted(order.rbegin(), order.rend())
                            : std::is_sorted(order.begin(), order.end()));
  }

  std::mt19937 random_;
  Strip strip_{200, 50};
  double time_ = 0;
  double glideEnd_ = 0;
  bool isReversed_ = false;
  std::vector<std::pair<std::shared_ptr<FakeItem>, Strip::Entry>> entries_;
  std::set<const FakeItem*> changed_;
  std::map<std::uint64_t, double> places_;
  std::map<std::uint64_t, Sight> seen_;
};
} // namespace

TEST(StripUnderRandomOperations, ShowsEachSignAsOftenAsItsCountSaysAndJumpsNowhere) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    WatchedStrip strip(seed);
    for (int i = 0; i < 200; ++i) {
      strip.doSomething();
      ASSERT_FALSE(::testing::Test::HasFailure()) << "seed " << seed << ", operation " << i;
    }
    EXPECT_GT(strip.count(), 5);
    strip.finish();
    ASSERT_FALSE(::testing::Test::HasFailure()) << "seed " << seed;
  }
}

TEST(StripUnderRandomOperations, KeepsItsPlaceUnderAThousandSpeedsASecond) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> speeds(-100, 2000);
  Strip strip(1000, 60);
  for (int i = 0; i < 50; ++i)
    strip.queue().append(fake("sign", 100, {-1, 0, true}));
  double time = 5;
  strip.advanceTo(time);
  for (int i = 0; i < 20'000; ++i) {
    const double before = strip.travel();
    const double speed = i % 10 == 0 ? 0 : speeds(random);
    if (i % 997 == 0)
      strip.stepForward(time);
    strip.setSpeed(speed, time);
    EXPECT_NEAR(strip.travel(), before, Tolerance);
    time += 0.001;
    strip.advanceTo(time);
    if (i % 997 > 400) {
      ASSERT_NEAR(strip.travel() - before, std::max(speed, 0.0) * 0.001, Tolerance);
    }
    ASSERT_GE(strip.travel(), before);
  }
}
