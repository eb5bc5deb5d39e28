#include "app/interaction/StripPointer.h"

#include "tests/app/interaction/HandledStrip.h"

#include <QtGui/QAction>
#include <QtGui/QHelpEvent>
#include <QtWidgets/QToolTip>

#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
class StripUnderPointer : public HandledStrip {
 protected:
  StripUnderPointer() { pointer.emplace(strip, display, opener); }

  SignMark& underline() const { return *strip.findChild<SignMark*>(); }
  // Presses and releases at a place of the sign at the far edge.
  void click(QPointF point = {20, 12}) {
    press(strip, point);
    release(strip, point);
  }
  void drag(int x) {
    send(strip, QEvent::MouseMove, {double(x), 12}, Qt::NoButton, Qt::LeftButton);
  }
  void wheel(QPoint pixels, QPoint angle) {
    const QPointF place(20, 12);
    QWheelEvent event(place, strip.mapToGlobal(place), pixels, angle, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&strip, &event);
  }
  bool rests() { return strip.player().isPaused(StripPlayer::Pause::Pointer); }

  std::optional<StripPointer> pointer;
};

const QString Page = u"https://example.org/page"_s;
} // namespace

TEST_F(StripUnderPointer, StandsStillWhileThePointerRestsAndGoesOnFromThere) {
  add(picture(5000));
  show();
  enter(strip, {20, 12});
  EXPECT_FALSE(stands()) << "it may be on its way across";
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  const double there = travel();
  EXPECT_EQ(travel(), there);
  leave(strip);
  ASSERT_TRUE(waitUntil([&] { return moves(); }));
  const double begun = travel();
  EXPECT_LT(begun - there, 30) << "no jump: what was missed stays missed";
  EXPECT_TRUE(waitUntil([&] { return travel() > begun + 5; }));
}

TEST_F(StripUnderPointer, DoesNotStopForAPointerThatCrosses) {
  add(picture(5000));
  show();
  enter(strip, {20, 12});
  leave(strip);
  // Another pointer has rested meanwhile.
  QWidget other;
  other.show();
  RestingPointer later(&other);
  enter(other);
  EXPECT_TRUE(waitUntil([&] { return later.isResting(); }));
  EXPECT_TRUE(moves());
}

TEST_F(StripUnderPointer, GoesOnUnderAPointerWhereItIsNotToStop) {
  add(picture(5000));
  show();
  pointer->setPausesAtRest(false);
  QWidget other;
  other.show();
  RestingPointer later(&other);
  enter(strip, {20, 12});
  enter(other);
  EXPECT_TRUE(waitUntil([&] { return later.isResting(); }));
  EXPECT_TRUE(moves());
  pointer->setPausesAtRest(true);
  EXPECT_TRUE(waitUntil([&] { return stands(); }));
  pointer->setPausesAtRest(false);
  EXPECT_TRUE(moves()) << "at once";
}

TEST_F(StripUnderPointer, StaysPausedForOtherReasons) {
  add(picture(5000));
  show();
  strip.menu().pause().setChecked(true);
  enter(strip, {20, 12});
  ASSERT_TRUE(waitUntil([&] { return rests(); }));
  leave(strip);
  ASSERT_TRUE(waitUntil([&] { return !rests(); }));
  EXPECT_TRUE(stands());
  strip.menu().pause().setChecked(false);
  EXPECT_TRUE(moves());
}

TEST_F(StripUnderPointer, StandsStillWhileItsMenuIsOpen) {
  add(picture(5000));
  show();
  zq::testing::allowLog(u"does not support grabbing"_s);
  strip.menu().popup(QPoint(300, 300));
  EXPECT_TRUE(stands());
  strip.menu().close();
  EXPECT_TRUE(waitUntil([&] { return moves(); }));
}

TEST_F(StripUnderPointer, StepsWhileThePointerRests) {
  add(picture(150));
  show();
  enter(strip, {20, 12});
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  const double there = travel();
  strip.menu().forward().trigger();
  EXPECT_TRUE(waitUntil([&] { return travel() > there + 20 && !display.isMoving(); }));
}

TEST_F(StripUnderPointer, OpensTheLocationOfAClickedSign) {
  add(picture(5000, Page));
  show();
  click();
  EXPECT_EQ(opened, std::vector<QUrl>{QUrl(Page)});
  click();
  EXPECT_EQ(opened.size(), 2u);
}

TEST_F(StripUnderPointer, KeepsWhatIsUnderTheHandWhereTheStripTurns) {
  add(picture(5000));
  show();
  press(strip, {100, 12});
  drag(60);
  display.setDirection(ScrollDirection::Right, strip.time());
  strip.displayChanged();
  const auto place = [&] {
    const auto& runs = display.strip().runs();
    return runs.empty() ? 0 : display.placeOf(runs.front());
  };
  const double before = place();
  EXPECT_NEAR(before, -40, 1);
  drag(80);
  EXPECT_NEAR(place(), before + 20, 1e-6);
  drag(50);
  EXPECT_NEAR(place(), before - 10, 1e-6);
  release(strip, {50, 12});
}

TEST_F(StripUnderPointer, OpensTheLocationOfATappedSign) {
  add(picture(5000, Page));
  show();
  tap(strip, {20, 12});
  EXPECT_EQ(opened, std::vector<QUrl>{QUrl(Page)});
}

TEST_F(StripUnderPointer, DoesNothingForAClickBesideASignAndOnOneWithoutAction) {
  add(picture(180));
  add(picture(5000, Page));
  show();
  click({20, 12});
  const auto area = areaOf(display, display.strip().runs().front());
  click({area.right() + 3, 12});
  EXPECT_TRUE(opened.empty());
}

TEST_F(StripUnderPointer, TakesOnlyClicksOfTheLeftButton) {
  add(picture(5000, Page));
  show();
  press(strip, {20, 12}, Qt::MiddleButton);
  release(strip, {20, 12}, Qt::MiddleButton);
  EXPECT_TRUE(opened.empty());
}

TEST_F(StripUnderPointer, TakesNoClickThatEndsFarAway) {
  add(picture(5000, Page));
  show();
  press(strip, {20, 12});
  release(strip, {120, 12});
  EXPECT_TRUE(opened.empty());
}

TEST_F(StripUnderPointer, TakesNoClickOnAControl) {
  add(picture(5000, Page));
  show();
  QWidget control(&strip);
  control.setGeometry(0, 0, 50, 24);
  control.show();
  // What a control does not want goes on to the strip.
  press(control, {20, 12});
  release(control, {20, 12});
  click();
  EXPECT_TRUE(opened.empty());
  EXPECT_FALSE(strip.player().isPaused(StripPlayer::Pause::Hand));
}

TEST_F(StripUnderPointer, RefusesWhatIsNoLocation) {
  add(picture(5000, u"javascript:alert(1)"_s));
  show();
  zq::testing::expectLog(u"is not opened, only http, https and file are opened"_s);
  click();
  EXPECT_TRUE(opened.empty());
  EXPECT_FALSE(underline().isVisible());
}

TEST_F(StripUnderPointer, StandsStillUnderAButtonThatIsDown) {
  pointer->setPausesAtRest(false);
  add(picture(5000));
  show();
  press(strip, {20, 12});
  EXPECT_TRUE(stands());
  release(strip, {20, 12});
  EXPECT_TRUE(moves());
}

TEST_F(StripUnderPointer, UnderlinesASignThatOpensSomething) {
  pointer->setPausesAtRest(false);
  add(picture(180, Page));
  add(picture(5000));
  show();
  EXPECT_FALSE(underline().isVisible());
  enter(strip, {20, 12});
  EXPECT_TRUE(underline().isVisible());
  EXPECT_EQ(strip.cursor().shape(), Qt::PointingHandCursor);
  EXPECT_EQ(underline().geometry().bottom(), 23);
  EXPECT_EQ(underline().geometry().left(), 0);
  const int right = underline().geometry().right();
  EXPECT_TRUE(waitUntil([&] { return underline().geometry().right() < right - 5; }))
      << "it goes with the sign";
  display.setSpeed(1000, strip.time());
  EXPECT_TRUE(waitUntil([&] { return !underline().isVisible(); })) << "the sign goes away";
  EXPECT_NE(strip.cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(StripUnderPointer, ShowsNoHintWhereThePointerIsNot) {
  add(picture(180, Page));
  add(picture(5000));
  show();
  move(strip, {20, 12});
  ASSERT_TRUE(underline().isVisible());
  leave(strip);
  EXPECT_FALSE(underline().isVisible());
  move(strip, {197, 12});
  EXPECT_FALSE(underline().isVisible()) << "a sign without an action";
  move(strip, {20, 12});
  ASSERT_TRUE(underline().isVisible());
  QWidget control(&strip);
  control.setGeometry(0, 0, 50, 24);
  control.show();
  enter(control);
  EXPECT_FALSE(underline().isVisible());
  EXPECT_NE(strip.cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(StripUnderPointer, TellsTheAddressAsAToolTip) {
  add(picture(180, u"https://example.org/<b>a"_s));
  add(picture(5000));
  show();
  const auto askAt = [&](int x) {
    QHelpEvent event(QEvent::ToolTip, QPoint(x, 12), strip.mapToGlobal(QPoint(x, 12)));
    QApplication::sendEvent(&strip, &event);
  };
  askAt(197);
  EXPECT_FALSE(QToolTip::isVisible()) << "a sign without an action, or a gap";
  askAt(20);
  EXPECT_TRUE(QToolTip::isVisible());
  EXPECT_EQ(QToolTip::text(), u"https://example.org/%3Cb%3Ea"_s);
  QToolTip::hideText();
}

TEST_F(StripUnderPointer, DragsWhatIsUnderItToThePixel) {
  add(picture(5000, Page));
  show();
  press(strip, {120, 12});
  const double there = travel();
  EXPECT_TRUE(stands());
  drag(118);
  EXPECT_EQ(travel(), there) << "a hand trembles";
  drag(60);
  EXPECT_DOUBLE_EQ(travel(), there + 60);
  drag(100);
  EXPECT_DOUBLE_EQ(travel(), there + 20);
  drag(120);
  EXPECT_DOUBLE_EQ(travel(), there);
  release(strip, {120, 12});
  EXPECT_TRUE(opened.empty()) << "no click";
}

TEST_F(StripUnderPointer, DragsTheOtherWayWhereSignsGoTheOtherWay) {
  display.setDirection(ScrollDirection::Right, strip.time());
  add(picture(5000));
  show();
  press(strip, {60, 12});
  const double there = travel();
  drag(100);
  EXPECT_DOUBLE_EQ(travel(), there + 40);
  release(strip, {100, 12});
}

TEST_F(StripUnderPointer, LetsGoOfAStripThatIsHidden) {
  add(picture(5000));
  show();
  press(strip, {120, 12});
  drag(60);
  strip.hide();
  EXPECT_FALSE(strip.player().isPaused(StripPlayer::Pause::Hand));
  release(strip, {60, 12});
}

TEST_F(StripUnderPointer, MovesWithAWheelAndWithFingersOnATouchPad) {
  add(picture(5000));
  show();
  strip.menu().pause().setChecked(true);
  const double there = travel();
  wheel({}, {0, -120});
  EXPECT_TRUE(waitUntil([&] { return !display.isMoving(); }));
  EXPECT_DOUBLE_EQ(travel(), there + 60);
  wheel({}, {0, 120});
  EXPECT_TRUE(waitUntil([&] { return !display.isMoving(); }));
  EXPECT_DOUBLE_EQ(travel(), there);
  wheel({}, {-120, 0});
  EXPECT_TRUE(waitUntil([&] { return !display.isMoving(); }));
  EXPECT_DOUBLE_EQ(travel(), there + 60);
  wheel({7, 0}, {21, 0});
  EXPECT_DOUBLE_EQ(travel(), there + 53) << "at once, as far as the fingers";
  wheel({}, {0, 30});
  EXPECT_DOUBLE_EQ(travel(), there + 38) << "a quarter of a step";
}

TEST_F(StripUnderPointer, MayGoAwayInAClick) {
  add(picture(5000, Page));
  show();
  opener = SignOpener([&](const QUrl&, const QVariant&) {
    display.removeEntry(display.strip().runs().front().entry, strip.time());
    return true;
  });
  click();
  EXPECT_FALSE(strip.player().isPaused(StripPlayer::Pause::Hand));
}

TEST_F(StripUnderPointer, TakesNoTimeWhileThePointerIsElsewhere) {
  add(picture(180, Page));
  show();
  const std::uint64_t frames = strip.frameCount();
  EXPECT_TRUE(waitUntil([&] { return strip.frameCount() > frames + 5; }));
  EXPECT_FALSE(underline().isVisible());
}
