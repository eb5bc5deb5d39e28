// Strips on which signs go to the left, to the right, up and down.
#include "tests/app/DisplayFrames.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <tuple>
#include <vector>

using namespace zq::app;
using namespace zq::app::testing;

namespace {
constexpr std::array Directions{ScrollDirection::Left, ScrollDirection::Right, ScrollDirection::Up,
                                ScrollDirection::Down};
constexpr int Extent = 200;
constexpr int Breadth = 24;

QSizeF sizeFor(ScrollDirection direction) {
  return isHorizontal(direction) ? QSizeF(Extent, Breadth) : QSizeF(Breadth, Extent);
}

// A picture that takes `length` points along a strip of this direction and all of its breadth.
zq::platform::Ref<ZQImageTickerSign> along(ScrollDirection direction, int length, QColor color) {
  return isHorizontal(direction) ? picture(length, Breadth, color)
                                 : picture(Breadth, length, color);
}

// The pixels along the middle of the strip, from the edge at which signs leave.
std::vector<QRgb> fromLeavingEdge(const QImage& image, ScrollDirection direction) {
  std::vector<QRgb> pixels;
  const int extent = isHorizontal(direction) ? image.width() : image.height();
  for (int i = 0; i < extent; ++i) {
    const int place = isReversed(direction) ? extent - 1 - i : i;
    pixels.push_back(isHorizontal(direction) ? image.pixel(place, image.height() / 2)
                                             : image.pixel(image.width() / 2, place));
  }
  return pixels;
}
} // namespace

TEST(ScrollDirection, DecidesWhereSignsEnterAndLeave) {
  for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
    for (const ScrollDirection direction : Directions) {
      TickerDisplay display;
      setUp(display, sizeFor(direction), direction, scale);
      EXPECT_EQ(display.direction(), direction);
      EXPECT_EQ(display.scrollDirection(), isHorizontal(direction) ? 1 : 0);
      display.addSign(along(direction, 40, Qt::red), 0);
      // At 1 second the leading edge is 60 points from where it entered, at 4 it is 40 beyond.
      for (const auto& [time, first, last] :
           {std::tuple(0.5, 170, 200), std::tuple(1.0, 140, 180), std::tuple(3.5, 0, 30)}) {
        const auto pixels = fromLeavingEdge(shown(display, time), direction);
        for (std::size_t i = 0; i < pixels.size(); ++i) {
          const double place = (static_cast<double>(i) + 0.5) / scale;
          // Places are rounded to whole pixels.
          if (std::min(std::abs(place - first), std::abs(place - last)) * scale < 0.6)
            continue;
          EXPECT_EQ(pixels[i] == qRgb(255, 0, 0), place > first && place < last)
              << time << " " << i << " at " << scale;
        }
      }
      display.advanceTo(4.5);
      EXPECT_TRUE(display.isFinished());
    }
  }
}

TEST(ScrollDirection, KeepsTheOrderAndTheGapsOfSigns) {
  std::vector<QRgb> expected;
  for (const ScrollDirection direction : Directions) {
    TickerDisplay display;
    setUp(display, sizeFor(direction), direction);
    // A horizontal strip has wider gaps behind pictures than a vertical one.
    const int gap = isHorizontal(direction) ? 12 : 3;
    display.addSign(along(direction, 40, Qt::red), 0);
    display.addSign(along(direction, 30, Qt::blue), 0);
    const auto pixels = fromLeavingEdge(shown(display, 3), direction);
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), qRgb(255, 0, 0)), 40);
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), qRgb(0, 0, 255)), 30);
    const auto red = std::find(pixels.begin(), pixels.end(), qRgb(255, 0, 0));
    const auto blue = std::find(pixels.begin(), pixels.end(), qRgb(0, 0, 255));
    EXPECT_EQ(red - pixels.begin(), 20);
    EXPECT_EQ(blue - red, 40 + gap);
  }
}

TEST(ScrollDirection, MirrorsNoPicture) {
  QImage halves(40, Breadth, QImage::Format_RGB32);
  halves.fill(Qt::red);
  QPainter(&halves).fillRect(20, 0, 20, Breadth, Qt::blue);
  const QImage upright = halves.transformed(QTransform(0, 1, 1, 0, 0, 0));
  for (const ScrollDirection direction : Directions) {
    TickerDisplay display;
    setUp(display, sizeFor(direction), direction);
    const bool horizontal = isHorizontal(direction);
    display.addSign(
        ZQImageTickerSign::make(zq::platform::Image::fromQImage(horizontal ? halves : upright)), 0);
    const QImage image = shown(display, 2);
    const auto [first, end] = inkAlong(image, horizontal);
    ASSERT_EQ(end - first, 40);
    EXPECT_EQ(image.pixel(horizontal ? first + 1 : 5, horizontal ? 5 : first + 1), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(horizontal ? end - 2 : 5, horizontal ? 5 : end - 2), qRgb(0, 0, 255));
  }
}

TEST(ScrollDirection, LetsALongTextPassInFull) {
  for (const ScrollDirection direction : {ScrollDirection::Left, ScrollDirection::Right}) {
    TickerDisplay display;
    setUp(display, sizeFor(direction), direction);
    const QString words = QStringLiteral("\u2588").repeated(300);
    display.addSign(display.makeTextSign(words), 0);
    display.advanceTo(0);
    ASSERT_EQ(display.strip().runs().size(), 1u);
    const double length = display.strip().runs().front().shown;
    ASSERT_GT(length, 4 * Extent);
    EXPECT_EQ(inkAlong(shown(display, 2 + Extent / Speed), true), std::pair(0, Extent));
    const auto pixels = fromLeavingEdge(shown(display, (length + 100) / Speed), direction);
    const auto ink = std::count(pixels.begin(), pixels.end(), qRgb(0, 0, 0));
    // Its end, with the room that a text leaves behind it, is 100 points from where it entered.
    EXPECT_NEAR(static_cast<double>(ink), 100, 30);
    EXPECT_EQ(pixels.front(), qRgb(0, 0, 0));
  }
}

TEST(ScrollDirection, DrawsEachTileOnce) {
  for (const ScrollDirection direction : Directions) {
    TickerDisplay display;
    setUp(display, sizeFor(direction), direction);
    display.addSign(along(direction, 3 * StripTiles::TileLength, Qt::red), 0);
    display.addSign(along(direction, 20, Qt::blue), 0);
    for (double time = 0; time < 40; time += 0.1)
      display.advanceTo(time);
    EXPECT_TRUE(display.isFinished());
    EXPECT_EQ(display.tiles().drawn(), 4u);
  }
}

TEST(ScrollDirection, FadesSignsWhereTheyEnterAndLeave) {
  for (const ScrollDirection direction : Directions) {
    for (const auto& [points, opacity] :
         {std::pair(20, 0.5), std::pair(40, 1.0), std::pair(180, 1.0), std::pair(220, 0.5)}) {
      TickerDisplay display;
      setUp(display, sizeFor(direction), direction);
      SignOrigin fading;
      fading.fades = true;
      display.addSign(along(direction, 40, Qt::red), 0, fading);
      display.advanceTo(points / Speed);
      ASSERT_EQ(display.frame().pieces.size(), 1u);
      EXPECT_DOUBLE_EQ(display.frame().pieces.front().opacity, opacity) << points;
    }
  }
}

TEST(ScrollDirection, StepsToTheNextSignAndBackInEveryDirection) {
  for (const ScrollDirection direction : Directions) {
    TickerDisplay display;
    setUp(display, sizeFor(direction), direction);
    display.addSign(along(direction, 40, Qt::red), 0);
    display.addSign(along(direction, 40, Qt::blue), 0);
    const double time = (Extent + 5) / Speed; // 5 points of the first one have left
    ASSERT_TRUE(display.stepForward(time));
    const double then = time + Strip::StepSeconds;
    EXPECT_EQ(fromLeavingEdge(shown(display, then), direction)[0], qRgb(0, 0, 255));
    ASSERT_TRUE(display.stepBack(then));
    // It turns where the first one begins, and goes on from there.
    bool isBack = false;
    for (double later = 0; later < Strip::StepSeconds; later += 0.001) {
      const auto pixels = fromLeavingEdge(shown(display, then + later), direction);
      isBack = isBack || (pixels[0] == qRgb(255, 0, 0) && pixels[39] == qRgb(255, 0, 0));
    }
    EXPECT_TRUE(isBack);
  }
}

TEST(ScrollDirection, KeepsAChangedTextWhereItIs) {
  for (const ScrollDirection direction : {ScrollDirection::Left, ScrollDirection::Right}) {
    TickerDisplay display;
    setUp(display, sizeFor(direction), direction);
    const auto sign = display.makeTextSign(QStringLiteral("\u2588\u2588\u2588\u2588"));
    sign->setIdentifier(QStringLiteral("clock"));
    display.addSign(sign, 0);
    const auto before = inkAlong(shown(display, 2), true);
    ASSERT_TRUE(display.changeText(QStringLiteral("clock"), QStringLiteral("\u2588\u2588"), 2));
    const auto shorter = inkAlong(shown(display, 2), true);
    EXPECT_EQ(shorter.first, before.first);
    EXPECT_LT(shorter.second, before.second);
  }
}
