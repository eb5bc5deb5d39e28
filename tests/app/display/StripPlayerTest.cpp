#include "app/display/StripPlayer.h"

#include "tests/app/display/FakeBlanks.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQImageTickerSign.h"

#include <gtest/gtest.h>

#include <QtGui/QImage>

#include <cmath>
#include <random>
#include <vector>

using namespace zq::app;
using namespace zq::platform;
using zq::app::testing::FakeScreen;

namespace {
Ref<ZQImageTickerSign> picture(int width, std::int64_t loopCount = ZQEndlessLoopCount) {
  QImage image(width, 24, QImage::Format_RGB32);
  image.fill(Qt::red);
  const auto sign = ZQImageTickerSign::make(Image::fromQImage(image));
  sign->setLoopCount(loopCount);
  return sign;
}

qint64 pixelOf(const TickerDisplay& display) {
  return std::llround(display.strip().travel() * display.scale());
}

// A strip on a screen of `rate`, and the pixels it was moved by from frame to frame.
class PlayedStrip : public FrameObserver {
 public:
  PlayedStrip(double rate, double speed, double scale = 1)
      : screen(rate), display(screen.now()), player(display, screen.clock()) {
    display.setScale(scale);
    display.setSize(QSizeF(500, 24), player.time());
    display.setDefaultFont(Font::systemFontOfSize(13));
    display.setSpeed(speed, player.time());
    display.addSign(picture(40), player.time());
    player.clock().setRate(rate);
    player.clock().setSource(screen.source());
    player.setObserver(this);
    player.setInSight(true);
  }

  void framePlayed(const PlayedFrame& frame) override {
    if (!frame.isTick)
      return;
    const qint64 pixel = pixelOf(display);
    if (!frames.empty())
      steps.push_back(pixel - last_);
    last_ = pixel;
    frames.push_back(frame);
    // Where an ideal line stands, by the frame's own time.
    travels.push_back(display.strip().travel());
  }

  FakeScreen screen;
  TickerDisplay display;
  StripPlayer player;
  std::vector<PlayedFrame> frames;
  std::vector<double> travels;
  std::vector<qint64> steps;

 private:
  qint64 last_ = 0;
};
} // namespace

TEST(StripPlayer, MovesByTheStepsOfTheIdealLineWhateverTheJitter) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> jitter(-0.001, 0.001);
  std::uniform_real_distribution<double> delay(0, 0.01);
  for (const double scale : {1.0, 2.0}) {
    PlayedStrip strip(60, 60, scale);
    for (int i = 0; i < 3000; ++i)
      ASSERT_TRUE(strip.screen.advance(i == 0 ? 0 : jitter(random), delay(random)));
    for (const qint64 step : strip.steps)
      ASSERT_EQ(step, scale) << "neither doubled nor missing";
  }
}

TEST(StripPlayer, IsNeverMoreThanHalfAPixelFromTheIdealLine) {
  std::mt19937 random(6);
  std::uniform_real_distribution<double> jitter(-0.001, 0.001);
  for (const double rate : {24.0, 60.0, 144.0}) {
    PlayedStrip strip(rate, 137.5, 1.5);
    qint64 offset = 0;
    for (int i = 0; i < 1000; ++i) {
      // Some blanks are missed.
      ASSERT_TRUE(strip.screen.advance(jitter(random), 0, i % 17 == 0 ? 2 : 0));
      const double ideal =
          strip.travels[0] * 1.5 + (strip.frames.back().time - strip.frames[0].time) * 137.5 * 1.5;
      offset = pixelOf(strip.display);
      ASSERT_LE(std::abs(static_cast<double>(offset) - ideal), 0.5 + 1e-6) << rate << ", " << i;
    }
  }
}

TEST(StripPlayer, IsAtTheSamePlaceAtTheSameTimeAtEveryRate) {
  for (const double rate : {24.0, 60.0, 144.0}) {
    PlayedStrip strip(rate, 75);
    for (int i = 0; i < 300; ++i)
      strip.screen.advance(0, 0, i % 7 == 0 ? 1 : 0);
    // The strip has moved since it came in sight, at the beginning.
    const double moved = strip.frames.back().time - 50;
    EXPECT_NEAR(strip.travels.back(), 75 * moved, 1e-6) << rate;
  }
}

TEST(StripPlayer, LeavesOutTheTimeInWhichItWasStopped) {
  PlayedStrip strip(60, 60);
  for (int i = 0; i < 100; ++i)
    strip.screen.advance();
  const double before = strip.travels.back();
  const double timeBefore = strip.player.time();
  strip.screen.setNow(strip.screen.now() + 3600);
  EXPECT_NEAR(strip.player.time(), timeBefore, strip.screen.period()) << "nobody jumps meanwhile";
  strip.display.addSign(picture(10), strip.player.time());
  strip.player.displayChanged();
  EXPECT_NEAR(strip.display.strip().travel(), before, 1e-6);
  strip.screen.advance(0, 3600);
  EXPECT_TRUE(strip.frames.back().lostTime);
  EXPECT_NEAR(strip.travels.back() - before, 1, 1e-3) << "one step on";
  strip.screen.advance();
  EXPECT_FALSE(strip.frames.back().lostTime);
  EXPECT_NEAR(strip.travels.back() - before, 2, 1e-3) << "no burst";
  EXPECT_EQ(strip.frames.size(), 102u);
}

TEST(StripPlayer, MakesUpForTimeThatAnEyeFollows) {
  PlayedStrip strip(60, 60);
  for (int i = 0; i < 10; ++i)
    strip.screen.advance();
  strip.screen.advance(0, 0, 9);
  EXPECT_FALSE(strip.frames.back().lostTime);
  EXPECT_EQ(strip.steps.back(), 10) << "a larger step";
  strip.screen.advance();
  EXPECT_EQ(strip.steps.back(), 1);
}

TEST(StripPlayer, DoesNotLetASignAppearInTheMiddleAfterItWasStopped) {
  FakeScreen screen(60);
  TickerDisplay display(screen.now());
  StripPlayer player(display, screen.clock());
  display.setSize(QSizeF(500, 24), player.time());
  display.setDefaultFont(Font::systemFontOfSize(13));
  display.setSpeed(60'000, player.time());
  const auto sign = picture(40, 2);
  sign->setLoopDelay(5);
  display.addSign(sign, player.time());
  player.clock().setSource(screen.source());
  player.setInSight(true);
  while (player.clock().isRunning())
    ASSERT_TRUE(screen.advance());
  display.setSpeed(60, player.time());
  player.displayChanged();
  ASSERT_TRUE(display.strip().runs().empty()) << "waits for its next round";
  screen.setNow(screen.now() + 3600);
  player.displayChanged();
  ASSERT_EQ(display.strip().runs().size(), 1u);
  EXPECT_LT(display.strip().travel() - display.strip().runs().front().start, 1) << "just enters";
}

TEST(StripPlayer, MakesNoFrameBetweenBlanks) {
  PlayedStrip strip(60, 60);
  for (int i = 0; i < 10; ++i)
    strip.screen.advance();
  const double shown = strip.display.strip().travel();
  int due = 0;
  QObject::connect(&strip.player, &StripPlayer::frameDue, &strip.player, [&] { ++due; });
  strip.screen.setNow(strip.screen.now() + strip.screen.period() * 0.7);
  strip.player.displayChanged();
  EXPECT_EQ(strip.display.strip().travel(), shown);
  EXPECT_EQ(due, 0);
}

TEST(StripPlayer, AsksForNoBlankWhileNothingMovesOrShows) {
  PlayedStrip strip(60, 60);
  strip.screen.advance();
  EXPECT_TRUE(strip.screen.asked());
  strip.player.setPaused(StripPlayer::Pause::Asked, true);
  EXPECT_FALSE(strip.screen.asked());
  strip.player.setPaused(StripPlayer::Pause::Asked, false);
  EXPECT_TRUE(strip.screen.asked());
  strip.player.setInSight(false);
  EXPECT_FALSE(strip.screen.asked());
  const double travel = strip.display.strip().travel();
  strip.screen.setNow(strip.screen.now() + 10);
  strip.player.setInSight(true);
  EXPECT_TRUE(strip.screen.asked());
  EXPECT_NEAR(strip.display.strip().travel(), travel, 1.1) << "goes on where it stood";
}
