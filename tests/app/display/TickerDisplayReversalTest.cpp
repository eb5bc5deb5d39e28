// Displays whose direction, speed and size change while signs are in sight.
#include "tests/app/DisplayFrames.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>

using namespace zq::app;
using namespace zq::app::testing;
using namespace Qt::StringLiterals;

namespace {
ScrollDirection opposite(ScrollDirection direction) {
  switch (direction) {
  case ScrollDirection::Left:
    return ScrollDirection::Right;
  case ScrollDirection::Right:
    return ScrollDirection::Left;
  case ScrollDirection::Up:
    return ScrollDirection::Down;
  case ScrollDirection::Down:
    break;
  }
  return ScrollDirection::Up;
}

// Texts and pictures of odd lengths.
void fill(TickerDisplay& display) {
  for (int i = 0; i < 12; ++i) {
    display.addSign(picture(17 + 9 * i, 13 + i, QColor::fromHsv(30 * i, 255, 200)), 0);
    const auto sign = display.makeTextSign(u"Sign number %1, Ägypten"_s.arg(i));
    sign->setLoopCount(i % 3 + 1);
    display.addSign(sign, 0);
  }
}
} // namespace

TEST(TickerDisplayReversal, MovesNoPixel) {
  for (const ScrollDirection direction : {ScrollDirection::Left, ScrollDirection::Right,
                                          ScrollDirection::Up, ScrollDirection::Down}) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
      TickerDisplay display;
      setUp(display, isHorizontal(direction) ? QSizeF(640, 24) : QSizeF(100, 400), direction,
            scale);
      fill(display);
      std::mt19937 random(3);
      double time = 6;
      ScrollDirection now = direction;
      for (int i = 0; i < 40; ++i) {
        const QImage before = shown(display, time);
        const std::size_t runs = display.strip().runs().size();
        now = opposite(now);
        display.setDirection(now, time);
        const QImage after = shown(display, time);
        // A sign that just begins to enter, or is about to have left, shows a part of a pixel at
        // most.
        if (display.strip().runs().size() == runs) {
          ASSERT_EQ(after, before) << "reversal " << i << " at scale " << scale;
        }
        time += std::uniform_real_distribution<double>(0, 4)(random);
      }
    }
  }
}

TEST(TickerDisplayReversal, LetsWhatIsShownGoTheOtherWay) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  fill(display);
  const QImage before = shown(display, 5);
  display.setDirection(ScrollDirection::Right, 5);
  const QImage after = shown(display, 5 + 25 / Speed);
  EXPECT_EQ(after.copy(25, 0, 375, 24), before.copy(0, 0, 375, 24));
  EXPECT_EQ(display.speed(), Speed);
}

TEST(TickerDisplayReversal, DrawsNothingAnewThatIsInSight) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  fill(display);
  display.advanceTo(12);
  const std::uint64_t drawn = display.tiles().drawn();
  display.setDirection(ScrollDirection::Right, 12);
  display.advanceTo(12);
  EXPECT_EQ(display.tiles().drawn(), drawn);
  display.setDirection(ScrollDirection::Left, 12);
  display.advanceTo(12);
  EXPECT_EQ(display.tiles().drawn(), drawn);
}

TEST(TickerDisplayReversal, KeepsAChangedTextWhereItIs) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  const auto sign = display.makeTextSign(u"\u2588\u2588\u2588\u2588"_s);
  sign->setIdentifier(u"clock"_s);
  display.addSign(sign, 0);
  display.addSign(picture(30, 24, Qt::red), 0);
  display.advanceTo(4);
  for (const QString& text : {u"\u2588\u2588"_s, u"\u2588\u2588\u2588\u2588\u2588\u2588"_s}) {
    ASSERT_TRUE(display.changeText(u"clock"_s, text, 4));
    const QImage before = shown(display, 4);
    display.setDirection(ScrollDirection::Right, 4);
    EXPECT_EQ(shown(display, 4), before);
    display.setDirection(ScrollDirection::Left, 4);
    EXPECT_EQ(shown(display, 4), before);
  }
}

TEST(TickerDisplayReversal, WorksWhileTheStripIsPaused) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  fill(display);
  const QImage before = shown(display, 5);
  display.setPaused(true, 5);
  display.setDirection(ScrollDirection::Right, 7);
  EXPECT_EQ(shown(display, 9), before);
  display.setPaused(false, 10);
  EXPECT_EQ(shown(display, 10), before);
  // It comes smoothly to its speed.
  EXPECT_EQ(shown(display, 10 + 10 / Speed + Strip::EaseSeconds / 3).copy(10, 0, 390, 24),
            before.copy(0, 0, 390, 24));
}

TEST(TickerDisplayAxis, KeepsTheOrderAndLosesNothing) {
  TickerDisplay display;
  setUp(display, QSizeF(300, 24));
  for (int i = 0; i < 6; ++i) {
    const auto sign = display.makeTextSign(QString::number(i).repeated(8));
    sign->setLoopCount(1);
    display.addSign(sign, 0);
  }
  display.advanceTo(5.2);
  const auto texts = [&] {
    QStringList all;
    for (const QueuedSign& sign : display.queuedSigns(display.strip().time()))
      all.append(sign.text);
    return all;
  };
  const QStringList before = texts();
  const std::size_t onStrip = display.strip().runs().size();
  ASSERT_GT(onStrip, 2u);
  for (const auto& [direction, size] : {std::pair(ScrollDirection::Up, QSizeF(100, 200)),
                                        std::pair(ScrollDirection::Right, QSizeF(300, 24)),
                                        std::pair(ScrollDirection::Down, QSizeF(100, 150)),
                                        std::pair(ScrollDirection::Left, QSizeF(100, 24))}) {
    display.setShape(direction, size, 5.2);
    display.advanceTo(5.2);
    EXPECT_EQ(texts(), before);
    EXPECT_GE(display.strip().runs().size(), onStrip);
    EXPECT_FALSE(display.frame().pieces.empty());
    for (std::size_t i = 1; i < display.strip().runs().size(); ++i)
      EXPECT_GE(display.strip().runs()[i].start, display.strip().runs()[i - 1].end() - 1e-6);
  }
  display.advanceTo(500);
  EXPECT_TRUE(display.isFinished());
}

TEST(TickerDisplaySize, KeepsWhatIsShownFromTheLeftOrUpperEnd) {
  for (const ScrollDirection direction : {ScrollDirection::Left, ScrollDirection::Right}) {
    TickerDisplay display;
    setUp(display, QSizeF(400, 24), direction);
    fill(display);
    const QImage before = shown(display, 6);
    display.setSize(QSizeF(500, 24), 6);
    EXPECT_EQ(shown(display, 6).copy(0, 0, 400, 24), before);
    display.setSize(QSizeF(300, 24), 6);
    EXPECT_EQ(shown(display, 6), before.copy(0, 0, 300, 24));
  }
}

TEST(TickerDisplaySpeed, NeverLetsASignJump) {
  for (const ScrollDirection direction : {ScrollDirection::Left, ScrollDirection::Right}) {
    TickerDisplay display;
    setUp(display, QSizeF(640, 24), direction, 1.5);
    fill(display);
    std::mt19937 random(5);
    double time = 6;
    display.advanceTo(time);
    std::map<std::uint64_t, int> before;
    for (int i = 0; i < 5000; ++i) {
      const double speed = i % 7 == 0 ? 0 : std::uniform_real_distribution<double>(0, 500)(random);
      display.setSpeed(speed, time);
      if (i % 11 == 0)
        display.setPaused(!display.isPaused(), time);
      // It comes smoothly from a stand to its speed.
      const double fastest = std::max(speed, display.strip().motion().velocityAt(time));
      const double seconds = std::uniform_real_distribution<double>(0, 0.02)(random);
      display.advanceTo(time += seconds);
      std::map<std::uint64_t, int> now;
      for (const StripFrame::Piece& piece : display.frame().pieces)
        now[piece.serial] = piece.target.x();
      // A whole pixel more or less, where the place was rounded.
      const double most = display.isPaused() ? 0 : fastest * seconds * 1.5 + 1;
      for (const auto& [serial, place] : now) {
        if (before.count(serial) == 0)
          continue;
        const int moved = (place - before[serial]) * (isReversed(direction) ? 1 : -1);
        EXPECT_GE(moved, 0);
        EXPECT_LE(moved, most);
      }
      before = std::move(now);
    }
  }
}
