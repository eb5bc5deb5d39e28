// Signs that are taken out while they are on the strip.
#include "app/display/SignItem.h"
#include "app/interaction/sign_spots.h"
#include "tests/app/interaction/HandledStrip.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtGui/QPainter>

using namespace Qt::StringLiterals;
using namespace zq::app;
using zq::app::testing::HandledStrip;

namespace {
// A display that the test moves by hand, at 10 points a second.
class ErasedSigns : public HandledStrip {
 protected:
  ErasedSigns() {
    display.setSize(QSizeF(200, 24), 0);
    start = display.strip().time();
    display.setSpeed(10, start);
  }
  void moveTo(double travel) { display.advanceTo(start + travel / 10); }
  double now() const { return display.strip().time(); }
  static zq::platform::Ref<ZQTickerSign> named(const QString& identifier) {
    const auto sign = picture(50);
    sign->setIdentifier(identifier);
    return sign;
  }
  QImage shown() {
    QImage image(display.frame().size, QImage::Format_RGB32);
    QPainter painter(&image);
    paintFrame(painter, display.frame(), Qt::white);
    return image;
  }

  double start = 0;
};
} // namespace

TEST_F(ErasedSigns, AreEmptyRoomWhileTheOthersGoOn) {
  display.addSign(picture(50), start);
  const auto erased = display.addSign(picture(50), start);
  display.addSign(picture(50), start);
  moveTo(180); // at 20, 82 and 144
  const QImage before = shown();
  ASSERT_TRUE(display.eraseEntry(erased, now()));
  EXPECT_TRUE(display.advanceTo(now())) << "another frame at once";
  const QImage after = shown();
  EXPECT_EQ(after.copy(0, 0, 82, 24), before.copy(0, 0, 82, 24));
  EXPECT_EQ(after.copy(132, 0, 68, 24), before.copy(132, 0, 68, 24));
  EXPECT_NE(before.pixel(100, 12), after.pixel(100, 12));
  EXPECT_EQ(after.pixel(100, 12), qRgb(255, 255, 255));
  const auto& runs = display.strip().runs();
  ASSERT_GE(runs.size(), 3u);
  EXPECT_EQ(display.placeOf(runs[2]), 144);
  moveTo(250);
  EXPECT_EQ(display.placeOf(runs[2]), 74);
}

TEST_F(ErasedSigns, DoNotComeAgain) {
  const auto erased = display.addSign(picture(50), start);
  moveTo(100);
  ASSERT_TRUE(display.eraseEntry(erased, now()));
  EXPECT_FALSE(display.isFinished()) << "its room is still there";
  moveTo(400);
  EXPECT_TRUE(display.isFinished());
  EXPECT_FALSE(display.stepBack(now()));
  EXPECT_FALSE(display.eraseEntry(erased, now())) << "there is nothing of it any more";
}

TEST_F(ErasedSigns, SayNothing) {
  const auto sign = ZQTextTickerSign::make(u"secret"_s);
  sign->setIdentifier(u"a"_s);
  const auto erased = display.addSign(sign, start);
  moveTo(20);
  ASSERT_TRUE(display.eraseEntry(erased, now()));
  EXPECT_EQ(static_cast<const SignItem&>(*erased->item).text(), QString());
  EXPECT_TRUE(signsInSight(display).empty());
  EXPECT_TRUE(display.queuedSigns(now()).empty());
  EXPECT_FALSE(display.changeText(u"a"_s, u"again"_s, now()));
  EXPECT_EQ(display.tiles().count(), 0u);
}

TEST_F(ErasedSigns, GoWithWhatReplacesThem) {
  const auto old = display.addSign(named(u"a"_s), start);
  moveTo(100);
  const auto replaced = display.replaceSign(named(u"a"_s), now());
  ASSERT_TRUE(replaced);
  ASSERT_TRUE(display.eraseEntry(old, now()));
  EXPECT_FALSE(replaced->isWaiting());
  EXPECT_EQ(display.waitingCount(), 0u);
}

TEST_F(ErasedSigns, GoWithWhatTheyReplaced) {
  display.addSign(named(u"a"_s), start);
  moveTo(100);
  const auto replaced = display.replaceSign(named(u"a"_s), now());
  ASSERT_TRUE(replaced);
  ASSERT_TRUE(display.eraseEntry(replaced, now()));
  EXPECT_TRUE(signsInSight(display).empty());
}

TEST_F(ErasedSigns, StayEmptyWhenAllIsLaidOutAnew) {
  display.addSign(picture(50), start);
  const auto erased = display.addSign(picture(50), start);
  display.addSign(picture(50), start);
  moveTo(180);
  ASSERT_TRUE(display.eraseEntry(erased, now()));
  const std::vector<SignSpot> before = signsInSight(display);
  ASSERT_EQ(before.size(), 2u);
  display.setScale(2);
  display.advanceTo(now());
  const std::vector<SignSpot> after = signsInSight(display);
  ASSERT_EQ(after.size(), 2u);
  EXPECT_EQ(after[0].area, before[0].area);
  EXPECT_EQ(after[1].area, before[1].area);
}

TEST_F(ErasedSigns, StayEmptyWhenTheStripTurns) {
  display.addSign(picture(50), start);
  const auto erased = display.addSign(picture(50), start);
  display.addSign(picture(50), start);
  moveTo(180);
  ASSERT_TRUE(display.eraseEntry(erased, now()));
  const std::vector<SignSpot> before = signsInSight(display);
  display.setDirection(ScrollDirection::Right, now());
  const std::vector<SignSpot> after = signsInSight(display);
  ASSERT_EQ(after.size(), 2u);
  ASSERT_EQ(before.size(), 2u);
  EXPECT_EQ(after[0].area, before[1].area);
  EXPECT_EQ(after[1].area, before[0].area);
}

TEST_F(ErasedSigns, AreNotDrawnAheadEither) {
  const auto erased = display.addSign(picture(5000), start);
  moveTo(180);
  ASSERT_TRUE(display.eraseEntry(erased, now()));
  const auto drawn = display.tiles().drawn();
  display.prepareAhead();
  EXPECT_EQ(display.tiles().drawn(), drawn);
}
