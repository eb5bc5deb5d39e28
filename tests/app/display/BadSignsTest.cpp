// Signs, delays and speeds that make no sense: the strip goes on, without a jump or a burst.
#include "tests/app/DisplayFrames.h"
#include "zqticker/platform/graphics/GraphicsContext.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double FrameSeconds = 1.0 / 60;

const double OddLengths[] = {
    0,     -0.0,     -1,        1e-300,     1e9,
    1e300, Infinity, -Infinity, NotANumber, std::numeric_limits<double>::max()};

// A red sign of any size.
class SizedSign : public ZQTickerSign {
 public:
  explicit SizedSign(QSizeF size) : shownSize_(size) {}

  QSizeF size() const override { return shownSize_; }
  void drawAtPoint(QPointF point) override {
    GraphicsContext* context = GraphicsContext::currentContext();
    context->setFillColor(Color::deviceRGB(1, 0, 0));
    context->fillRect(QRectF(point, shownSize_));
  }

 private:
  QSizeF shownSize_;
};

// Whether the length of a sign of this size can be known and shown.
bool isShown(QSizeF size) {
  const auto isLength = [](double length) { return length > 0 && std::isfinite(length); };
  return isLength(size.width()) && isLength(size.height());
}

void expectSaneFrame(const TickerDisplay& display) {
  EXPECT_LE(display.strip().runs().size(), 202u);
  EXPECT_LE(display.frame().pieces.size(), 202u);
  for (const StripFrame::Piece& piece : display.frame().pieces) {
    EXPECT_FALSE(piece.picture.isNull());
    EXPECT_GE(piece.opacity, 0);
    EXPECT_LE(piece.opacity, 1);
  }
}

} // namespace

class OddlySizedSign : public ::testing::TestWithParam<QSizeF> {};

// A display 200 points long and as high as may be.
TEST_P(OddlySizedSign, NeitherStopsNorShiftsTheOthers) {
  const QSizeF size = GetParam();
  for (const bool horizontal : {true, false})
    for (const double breadth : {1.0, 24.0}) {
      TickerDisplay display;
      setUp(display, horizontal ? QSizeF(200, breadth) : QSizeF(breadth, 200), horizontal);
      display.addSign(picture(20, 20, Qt::blue), 0);
      display.addSign(std::make_shared<SizedSign>(size), 0);
      display.addSign(picture(20, 20, Qt::blue), 0);
      double before = -1;
      for (int frame = 0; frame < 300; ++frame) {
        display.advanceTo(frame * FrameSeconds);
        expectSaneFrame(display);
        const auto& runs = display.strip().runs();
        if (!runs.empty() && runs.front().number == 1) {
          // One point a frame.
          EXPECT_NEAR(display.strip().travel() - runs.front().start, frame * Speed * FrameSeconds,
                      1e-9);
        }
        if (before >= 0) {
          EXPECT_NEAR(display.strip().travel() - before, Speed * FrameSeconds, 1e-9);
        }
        before = display.strip().travel();
      }
      // Five seconds are enough for all but the long ones.
      const double length = horizontal ? size.width() : size.height();
      EXPECT_EQ(display.isFinished(), !isShown(size) || length <= 20);
    }
}

static std::vector<QSizeF> oddSizes() {
  std::vector<QSizeF> sizes;
  for (const double width : OddLengths)
    for (const double height : {20.0, 0.0, 1e9, NotANumber, Infinity, 1e-300})
      sizes.emplace_back(width, height);
  for (const double height : OddLengths)
    sizes.emplace_back(20, height);
  return sizes;
}

INSTANTIATE_TEST_SUITE_P(All, OddlySizedSign, ::testing::ValuesIn(oddSizes()));

TEST(BadSigns, OfDelaysThatAreNoneComeBackAtOnce) {
  for (const double delay : {-1.0, -1e308, NotANumber, Infinity, -Infinity}) {
    TickerDisplay display;
    setUp(display, QSizeF(200, 24));
    const auto sign = picture(20, 24, Qt::red);
    sign->setLoopCount(ZQEndlessLoopCount);
    sign->setLoopDelay(delay);
    display.addSign(sign, 0);
    TickerDisplay plain;
    setUp(plain, QSizeF(200, 24));
    const auto other = picture(20, 24, Qt::red);
    other->setLoopCount(ZQEndlessLoopCount);
    plain.addSign(other, 0);
    for (int frame = 0; frame < 600; ++frame) {
      const double time = frame * FrameSeconds;
      ASSERT_EQ(shown(display, time), shown(plain, time)) << delay << ", frame " << frame;
    }
    EXPECT_GE(display.strip().runs().front().number, 2u);
  }
}

TEST(BadSigns, OfAnEnormousDelayRestWithoutHoldingUpTheOthers) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  const auto resting = picture(20, 24, Qt::red);
  resting->setLoopCount(ZQEndlessLoopCount);
  resting->setLoopDelay(1e308);
  display.addSign(resting, 0);
  const auto running = picture(20, 24, Qt::blue);
  running->setLoopCount(ZQEndlessLoopCount);
  running->setContinuousScrolling(true);
  display.addSign(running, 0);
  for (int frame = 0; frame < 1200; ++frame)
    display.advanceTo(frame * FrameSeconds);
  EXPECT_GT(display.strip().runs().back().number, 10u);
  EXPECT_EQ(display.waitingCount(), 2u);
}

TEST(BadSigns, LeaveNothingToDoWhereNoneCanBeShown) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  for (int i = 0; i < 1000; ++i) {
    const auto sign = std::make_shared<SizedSign>(QSizeF(i % 2 ? 0 : NotANumber, 20));
    sign->setLoopCount(ZQEndlessLoopCount);
    sign->setContinuousScrolling(true);
    display.addSign(sign, 0);
  }
  display.advanceTo(1);
  EXPECT_TRUE(display.isFinished());
}

TEST(BadSpeeds, StandStillWhereTheyAreNone) {
  for (const double speed : {0.0, -1.0, -1e308, NotANumber, Infinity, -Infinity}) {
    TickerDisplay display;
    setUp(display, QSizeF(200, 24));
    display.addSign(picture(20, 24, Qt::red), 0);
    const QImage before = shown(display, 1);
    display.setSpeed(speed, 1);
    EXPECT_EQ(shown(display, 1), before) << speed;
    EXPECT_EQ(shown(display, 100), before) << speed;
    EXPECT_FALSE(display.isMoving()) << speed;
    display.setSpeed(Speed, 100);
    EXPECT_EQ(shown(display, 100), before) << "no catching up after " << speed;
    EXPECT_NE(shown(display, 100.1), before) << speed;
  }
}

TEST(BadSpeeds, AreLimitedSoThatAFrameStaysAFrame) {
  for (const double speed : {1e9, 1e300}) {
    TickerDisplay display;
    setUp(display, QSizeF(200, 24));
    const auto sign = picture(1, 24, Qt::red);
    sign->setLoopCount(ZQEndlessLoopCount);
    sign->setContinuousScrolling(true);
    display.addSign(sign, 0);
    const QImage before = shown(display, 1);
    const double travel = display.strip().travel();
    display.setSpeed(speed, 1);
    EXPECT_EQ(shown(display, 1), before) << "nothing jumps";
    display.advanceTo(1 + FrameSeconds);
    expectSaneFrame(display);
    EXPECT_GT(display.strip().travel(), travel);
    EXPECT_LE(display.strip().travel() - travel, Motion::MostPointsPerSecond * FrameSeconds + 1e-6);
  }
}

TEST(BadSizes, OfADisplayGiveAFrame) {
  for (const QSizeF size :
       {QSizeF(200, 1), QSizeF(1, 1), QSizeF(0, 0), QSizeF(-5, 24), QSizeF(NotANumber, 24),
        QSizeF(200, NotANumber), QSizeF(Infinity, 24), QSizeF(200, 1e300)}) {
    TickerDisplay display;
    setUp(display, QSizeF(200, 24));
    display.addSign(picture(20, 24, Qt::red), 0);
    display.addSign(display.makeTextSign(QStringLiteral("text")), 0);
    display.advanceTo(1);
    display.setSize(size, 1);
    display.advanceTo(2);
    EXPECT_FALSE(display.frame().size.isEmpty());
    EXPECT_LE(display.frame().size.width(), TickerDisplay::MostPixels);
    EXPECT_LE(display.frame().size.height(), TickerDisplay::MostPixels);
    display.setSize(QSizeF(200, 24), 2);
    display.advanceTo(3);
    EXPECT_EQ(display.frame().size, QSize(200, 24));
    expectSaneFrame(display);
  }
}
