#include "app/display/StripWidget.h"

#include "tests/app/XServer.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQImageTickerSign.h"

#include <QtGui/QAction>
#include <QtGui/QPainter>
#include <QtGui/QScreen>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;
using zq::app::testing::waitUntil;

namespace {
Ref<ZQImageTickerSign> picture(int width, std::int64_t loopCount) {
  QImage image(width, 24, QImage::Format_RGB32);
  image.fill(Qt::red);
  const auto sign = ZQImageTickerSign::make(Image::fromQImage(image));
  sign->setLoopCount(loopCount);
  return sign;
}

class StripWindow : public ::testing::Test {
 protected:
  StripWindow() : display(FrameClock::now()), widget(display, Qt::white) {
    display.setDefaultFont(Font::systemFontOfSize(13));
    widget.resize(200, 24);
  }

  void show(double speed) {
    // The platform without a screen says so of every window that stays on top.
    zq::testing::allowLog(u"does not support raise()"_s);
    display.setSpeed(speed, widget.time());
    widget.show();
  }

  TickerDisplay display;
  StripWidget widget;
};
} // namespace

TEST_F(StripWindow, GivesTheDisplayItsSize) {
  show(60);
  EXPECT_EQ(display.size(), QSizeF(200, 24));
  widget.resize(300, 30);
  EXPECT_TRUE(waitUntil([&] { return display.size() == QSizeF(300, 30); }));
}

TEST_F(StripWindow, MovesWhatItShows) {
  display.addSign(picture(20, ZQEndlessLoopCount), widget.time());
  show(1000);
  const std::uint64_t before = widget.frameCount();
  EXPECT_TRUE(waitUntil([&] { return widget.frameCount() > before + 3; }));
  EXPECT_TRUE(waitUntil([&] { return widget.grab().toImage().pixel(100, 12) == qRgb(255, 0, 0); }))
      << "passes the middle";
}

TEST_F(StripWindow, FollowsTheRateOfItsScreen) {
  show(60);
  QScreen* screen = widget.screen();
  Q_EMIT screen->refreshRateChanged(144);
  EXPECT_DOUBLE_EQ(widget.player().clock().rate(), 144);
  widget.resize(300, 30);
  EXPECT_TRUE(waitUntil([&] { return display.size() == QSizeF(300, 30); }));
  EXPECT_DOUBLE_EQ(widget.player().clock().rate(), screen->refreshRate()) << "as it says itself";
  Q_EMIT screen->refreshRateChanged(24);
  EXPECT_DOUBLE_EQ(widget.player().clock().rate(), 24) << "of the same screen still";
}

TEST_F(StripWindow, TellsWhenAllHasBeenShown) {
  bool isFinished = false;
  QObject::connect(&widget, &StripWidget::finished, &widget, [&] { isFinished = true; });
  display.addSign(picture(20, 1), widget.time());
  show(20'000);
  EXPECT_TRUE(waitUntil([&] { return isFinished; }));
  EXPECT_TRUE(widget.isFinished());
}

TEST_F(StripWindow, ShowsWhatComesAfterTheEnd) {
  int finished = 0;
  QObject::connect(&widget, &StripWidget::finished, &widget, [&] { ++finished; });
  show(100);
  EXPECT_TRUE(waitUntil([&] { return finished == 1; })) << "nothing to show is all shown";
  display.addSign(picture(20, 1), widget.time());
  widget.displayChanged();
  EXPECT_TRUE(waitUntil([&] { return display.tiles().drawn() == 1; }));
  EXPECT_EQ(finished, 1);
  display.setSpeed(20'000, widget.time());
  widget.displayChanged();
  EXPECT_TRUE(waitUntil([&] { return finished == 2; }));
}

TEST_F(StripWindow, WakesForARoundThatWasDelayed) {
  const auto sign = picture(20, 2);
  sign->setLoopDelay(0.05);
  display.addSign(sign, widget.time());
  bool isFinished = false;
  QObject::connect(&widget, &StripWidget::finished, &widget, [&] { isFinished = true; });
  show(20'000);
  EXPECT_TRUE(waitUntil([&] { return isFinished; }));
}

TEST_F(StripWindow, StandsStillWhileItIsHidden) {
  display.addSign(picture(20, ZQEndlessLoopCount), widget.time());
  show(1000);
  EXPECT_TRUE(waitUntil([&] { return widget.frameCount() > 2; }));
  widget.hide();
  const std::uint64_t hidden = widget.frameCount();
  // Another strip has moved on meanwhile.
  TickerDisplay otherDisplay(FrameClock::now());
  StripWidget other(otherDisplay, Qt::white);
  other.resize(200, 24);
  otherDisplay.setDefaultFont(Font::systemFontOfSize(13));
  otherDisplay.setSpeed(1000, other.time());
  otherDisplay.addSign(picture(20, ZQEndlessLoopCount), other.time());
  other.show();
  EXPECT_TRUE(waitUntil([&] { return other.frameCount() > 5; }));
  EXPECT_EQ(widget.frameCount(), hidden);
  widget.show();
  EXPECT_TRUE(waitUntil([&] { return widget.frameCount() > hidden; }));
}

TEST_F(StripWindow, IsPausedFromItsMenu) {
  display.addSign(picture(20, ZQEndlessLoopCount), widget.time());
  show(1000);
  ASSERT_TRUE(waitUntil([&] { return widget.frameCount() > 2; }));
  widget.menu().pause().trigger();
  EXPECT_TRUE(display.isPaused());
  const double travel = display.strip().travel();
  const std::uint64_t frames = widget.frameCount();
  FrameClock other;
  int ticks = 0;
  QObject::connect(&other, &FrameClock::tick, &other, [&] { ++ticks; });
  other.start();
  EXPECT_TRUE(waitUntil([&] { return ticks > 5; }));
  EXPECT_EQ(widget.frameCount(), frames);
  EXPECT_EQ(display.strip().travel(), travel);
  widget.menu().pause().trigger();
  EXPECT_TRUE(waitUntil([&] { return widget.frameCount() > frames + 2; }));
}

TEST_F(StripWindow, StepsFromItsMenu) {
  display.addSign(picture(150, ZQEndlessLoopCount), widget.time());
  show(1000);
  widget.menu().pause().trigger();
  const auto isThere = [&] { return !display.isMoving(); };
  widget.menu().forward().trigger();
  ASSERT_TRUE(display.isMoving());
  EXPECT_TRUE(waitUntil(isThere));
  EXPECT_DOUBLE_EQ(display.strip().travel(), display.strip().runs().front().start + 200);
  const std::uint64_t first = display.strip().runs().front().number;
  widget.menu().forward().trigger();
  EXPECT_TRUE(waitUntil(isThere));
  ASSERT_NE(display.strip().runs().front().number, first);
  const std::uint64_t frames = widget.frameCount();
  widget.menu().back().trigger();
  EXPECT_TRUE(waitUntil(isThere));
  EXPECT_EQ(display.strip().runs().front().number, first);
  EXPECT_GT(widget.frameCount(), frames);
}
