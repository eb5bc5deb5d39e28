#include "app/display/FrameClock.h"

#include "tests/app/display/FakeBlanks.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace zq::app;
using zq::app::testing::FakeScreen;
using zq::testing::waitFor;

namespace {
class ScreenClock {
 public:
  explicit ScreenClock(double rate) : screen(rate), clock(nullptr, screen.clock()) {
    clock.setRate(rate);
    clock.setSource(screen.source());
    QObject::connect(&clock, &FrameClock::tick, &clock, [this](double time) {
      ticks.push_back(time);
      blanks.push_back(clock.blank());
    });
  }

  FakeScreen screen;
  FrameClock clock;
  std::vector<double> ticks;
  std::vector<std::uint64_t> blanks;
};
} // namespace

TEST(FrameClock, TellsTheComingBlankOfTheScreen) {
  for (const double rate : {24.0, 60.0, 144.0}) {
    ScreenClock by(rate);
    by.clock.start();
    for (int i = 0; i < 100; ++i)
      ASSERT_TRUE(by.screen.advance());
    ASSERT_EQ(by.ticks.size(), 100u);
    for (std::size_t i = 0; i < by.ticks.size(); ++i) {
      ASSERT_EQ(by.blanks[i], by.blanks[0] + i);
      ASSERT_NEAR(by.ticks[i], by.screen.timeOf(by.blanks[i]), 1e-9);
    }
    EXPECT_EQ(by.blanks.back(), by.screen.count() + 1);
  }
}

TEST(FrameClock, AsksOnlyWhileItRuns) {
  ScreenClock by(60);
  EXPECT_FALSE(by.screen.asked());
  by.clock.start();
  EXPECT_EQ(by.screen.asked(), 0u) << "the next one, whichever that is";
  by.screen.advance();
  EXPECT_EQ(by.screen.asked(), by.clock.blank());
  by.clock.stop();
  EXPECT_FALSE(by.screen.asked());
  EXPECT_EQ(by.ticks.size(), 1u);
}

TEST(FrameClock, MayBeStoppedAndStartedByItsTick) {
  ScreenClock by(60);
  QObject::connect(&by.clock, &FrameClock::tick, &by.clock, [&] {
    by.clock.stop();
    if (by.ticks.size() == 1)
      by.clock.start();
  });
  by.clock.start();
  by.screen.advance();
  EXPECT_TRUE(by.screen.asked());
  by.screen.advance();
  EXPECT_FALSE(by.screen.asked());
  EXPECT_FALSE(by.clock.isRunning());
}

TEST(FrameClock, IsEvenWhereReportsAreNot) {
  ScreenClock by(60);
  std::mt19937 random(3);
  std::uniform_real_distribution<double> jitter(-0.001, 0.001);
  std::uniform_real_distribution<double> delay(0, 0.012);
  by.clock.start();
  for (int i = 0; i < 5000; ++i)
    ASSERT_TRUE(by.screen.advance(i == 0 ? 0 : jitter(random), delay(random)));
  for (std::size_t i = 1; i < by.ticks.size(); ++i) {
    ASSERT_EQ(by.blanks[i], by.blanks[i - 1] + 1);
    ASSERT_NEAR(by.ticks[i] - by.ticks[i - 1], by.screen.period(), 1e-9);
  }
}

TEST(FrameClock, LeavesOutBlanksThatWereMissed) {
  ScreenClock by(60);
  by.clock.start();
  for (int i = 0; i < 50; ++i)
    by.screen.advance();
  const std::uint64_t before = by.clock.blank();
  by.screen.advance(0, 2.5 * by.screen.period());
  EXPECT_EQ(by.clock.blank(), before + 3) << "the coming one is the third after the one awaited";
  EXPECT_GT(by.ticks.back(), by.screen.now());
  EXPECT_EQ(by.screen.asked(), before + 3);
  by.screen.advance();
  EXPECT_EQ(by.clock.blank(), before + 4) << "and not one more for those that were missed";
}

TEST(FrameClock, LeavesOutWhatTheServerLeavesOut) {
  ScreenClock by(60);
  by.clock.start();
  by.screen.advance();
  const std::uint64_t before = by.clock.blank();
  by.screen.advance(0, 0, 4);
  EXPECT_EQ(by.clock.blank(), before + 5);
  EXPECT_NEAR(by.ticks[1] - by.ticks[0], 5 * by.screen.period(), 1e-9);
}

TEST(FrameClock, NeverRunsBackwards) {
  ScreenClock by(60);
  std::mt19937 random(4);
  std::uniform_real_distribution<double> error(-0.1, 0.1);
  by.clock.start();
  for (int i = 0; i < 2000; ++i)
    by.screen.advance(error(random), std::abs(error(random)));
  for (std::size_t i = 1; i < by.ticks.size(); ++i)
    ASSERT_GT(by.ticks[i], by.ticks[i - 1]) << i;
}

TEST(FrameClock, GoesOnWithAnotherScreen) {
  ScreenClock by(60);
  by.clock.start();
  for (int i = 0; i < 20; ++i)
    by.screen.advance();
  FakeScreen other(144, 7, by.screen.now());
  by.clock.setRate(144);
  by.clock.setSource(other.source());
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(other.advance());
    by.screen.setNow(other.now());
  }
  EXPECT_EQ(by.ticks.size(), 40u);
  for (std::size_t i = 1; i < by.ticks.size(); ++i)
    ASSERT_GT(by.ticks[i], by.ticks[i - 1]) << i;
  EXPECT_NEAR(by.ticks[39] - by.ticks[38], 1.0 / 144, 1e-9);
}

TEST(FrameClock, TicksByItsTimerWhileTheScreenIsSilent) {
  std::optional<quint64> asked;
  FrameClock clock;
  std::vector<double> ticks;
  QObject::connect(&clock, &FrameClock::tick, &clock, [&](double time) { ticks.push_back(time); });
  auto made = std::make_unique<zq::app::testing::FakeBlankSource>(asked);
  BlankSource* source = made.get();
  clock.setRate(500);
  clock.setSource(std::move(made));
  clock.start();
  EXPECT_TRUE(clock.hasAnsweringSource());
  ASSERT_TRUE(waitFor([&] { return ticks.size() > 5; }));
  EXPECT_FALSE(clock.hasAnsweringSource());
  const std::size_t before = ticks.size();
  asked.reset();
  Q_EMIT source->blank(77, FrameClock::now());
  EXPECT_TRUE(clock.hasAnsweringSource());
  EXPECT_EQ(ticks.size(), before) << "the timer has ticked for it";
  ASSERT_TRUE(asked);
  EXPECT_GE(*asked, 78u);
  Q_EMIT source->blank(*asked, FrameClock::now());
  EXPECT_EQ(ticks.size(), before + 1);
  for (std::size_t i = 1; i < ticks.size(); ++i)
    ASSERT_GT(ticks[i], ticks[i - 1]) << i;
}

TEST(FrameClock, TicksByItsTimerWithoutAScreen) {
  FrameClock clock;
  std::vector<double> times;
  QObject::connect(&clock, &FrameClock::tick, &clock, [&](double time) { times.push_back(time); });
  clock.start();
  EXPECT_TRUE(clock.isRunning());
  EXPECT_FALSE(clock.hasAnsweringSource());
  ASSERT_TRUE(waitFor([&] { return times.size() >= 5; }));
  clock.stop();
  EXPECT_FALSE(clock.isRunning());
  for (std::size_t i = 1; i < times.size(); ++i) {
    const double periods = (times[i] - times[i - 1]) / clock.period();
    EXPECT_GT(periods, 0.5);
    EXPECT_NEAR(periods, std::round(periods), 1e-3) << "whole periods, whenever it woke";
  }
}

TEST(FrameClock, TakesOnlyUsableRates) {
  FrameClock clock;
  clock.setRate(144);
  EXPECT_DOUBLE_EQ(clock.rate(), 144);
  for (const double rate : {0.0, -1.0, 1e9}) {
    clock.setRate(rate);
    EXPECT_DOUBLE_EQ(clock.rate(), 60);
  }
}
