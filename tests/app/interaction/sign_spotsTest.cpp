#include "app/interaction/sign_spots.h"

#include "app/display/SignItem.h"
#include "tests/app/interaction/HandledStrip.h"

using namespace zq::app;
using zq::app::testing::HandledStrip;

namespace {
// A display that the test moves by hand, at 10 points a second.
class SignSpots : public HandledStrip {
 protected:
  SignSpots() {
    display.setSize(QSizeF(200, 24), 0);
    start = display.strip().time();
    display.setSpeed(10, start);
    a = display.addSign(picture(50), start);
    b = display.addSign(picture(300), start);
  }
  void moveTo(double travel) { display.advanceTo(start + travel / 10); }

  double start = 0;
  TickerDisplay::Entry a;
  TickerDisplay::Entry b;
};
} // namespace

TEST_F(SignSpots, StandWhereSignsAreDrawn) {
  moveTo(100); // a from 100 to 150, b from 162 on
  const auto at = [&](double x) {
    const auto spot = signAt(display, {x, 12});
    return spot ? spot->entry : nullptr;
  };
  EXPECT_EQ(at(99), nullptr);
  EXPECT_EQ(at(101), a);
  EXPECT_EQ(at(149), a);
  EXPECT_EQ(at(156), nullptr) << "the gap";
  EXPECT_EQ(at(163), b);
  EXPECT_EQ(at(199), b);
  EXPECT_EQ(at(201), nullptr) << "outside";
  EXPECT_FALSE(signAt(display, {120, -1}));
  EXPECT_FALSE(signAt(display, {120, 25}));
}

TEST_F(SignSpots, AreThePartInSight) {
  moveTo(230);
  const auto spots = signsInSight(display);
  ASSERT_EQ(spots.size(), 2u);
  EXPECT_EQ(spots[0].entry, a);
  EXPECT_EQ(spots[0].area, QRectF(0, 0, 20, 24));
  EXPECT_EQ(spots[1].area, QRectF(32, 0, 168, 24));
  EXPECT_EQ(areaOf(display, display.strip().runs().front()), QRectF(-30, 0, 50, 24));
  EXPECT_EQ(spotOfRun(display, spots[1].run)->entry, b);
  moveTo(255); // of a only the gap is on the strip
  EXPECT_EQ(display.strip().runs().size(), 2u);
  EXPECT_EQ(signsInSight(display).size(), 1u);
  EXPECT_FALSE(spotOfRun(display, spots[0].run));
}

TEST_F(SignSpots, GoUpwardsInAVerticalStrip) {
  moveTo(0);
  display.setDirection(ScrollDirection::Up, start);
  display.setSize(QSizeF(100, 200), start);
  moveTo(20);
  const auto spots = signsInSight(display);
  ASSERT_FALSE(spots.empty());
  EXPECT_EQ(spots[0].area.top(), 180);
  EXPECT_EQ(spots[0].area.left(), 0);
  EXPECT_EQ(spots[0].area.width(), 100) << "as broad as the strip";
}

TEST_F(SignSpots, StayWhereTheyAreWhenTheStripTurns) {
  moveTo(230);
  const auto before = signsInSight(display);
  display.setDirection(ScrollDirection::Right, display.strip().time());
  const auto spots = signsInSight(display);
  ASSERT_EQ(spots.size(), 2u);
  EXPECT_EQ(spots[0].entry, b) << "it leaves next now";
  EXPECT_EQ(spots[0].area, before[1].area);
  EXPECT_EQ(spots[1].area, before[0].area);
  moveTo(240);
  EXPECT_EQ(signsInSight(display)[1].area, QRectF(0, 0, 30, 24));
}

TEST_F(SignSpots, AreNotThereOnAnEmptyStrip) {
  TickerDisplay empty;
  EXPECT_TRUE(signsInSight(empty).empty());
  EXPECT_FALSE(signAt(empty, {0, 0}));
  EXPECT_FALSE(spotOfRun(empty, 1));
}
