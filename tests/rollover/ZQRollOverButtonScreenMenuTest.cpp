// The menu of the rollover button on a real screen.
#include "tests/rollover/ButtonScreen.h"

using namespace Qt::StringLiterals;
using namespace zq::testing;

namespace {

class RollOverButtonMenuOnScreen : public ButtonScreen {
 protected:
  void SetUp() override {
    ButtonScreen::SetUp();
    if (IsSkipped() || HasFatalFailure())
      return;
    tell(u"menu play"_s);
  }
  // Presses the arrow, and leaves the menu open under the pointer's button coming up.
  void open() {
    pointAtArrow();
    press();
    EXPECT_TRUE(awaits(u"play menu-opened"_s));
    release();
  }
  void pointAtArrow() { point(u"play"_s, 94, 3); }
  void pressEscape() {
    input({u"key"_s, u"Escape"_s});
    EXPECT_TRUE(awaits(u"play menu-closed"_s));
  }
};

} // namespace

TEST_F(RollOverButtonMenuOnScreen, OpensWhenAPressIsHeld) {
  tell(u"set play popUpMenuDelay 0.1"_s);
  pointInside();
  press();
  EXPECT_TRUE(awaits(u"play menu-opened"_s));
  EXPECT_EQ(state(), "highlighted down");
  // The pointer is over an item by now; the release that belongs to the press chooses nothing.
  release();
  EXPECT_FALSE(didHappen("chose"));
  EXPECT_TRUE(shows(Qt::blue));
}

TEST_F(RollOverButtonMenuOnScreen, OpensAtOnceByAPressOnTheArrow) {
  pointAtArrow();
  press();
  EXPECT_TRUE(awaits(u"play menu-opened"_s));
  release();
  EXPECT_FALSE(didHappen("clicked"));
}

TEST_F(RollOverButtonMenuOnScreen, DoesNotOpenByAShortPress) {
  pointInside();
  click();
  EXPECT_EQ(happened(), "play entered, play pressed, play released, play clicked");
}

TEST_F(RollOverButtonMenuOnScreen, ChoosesAnItem) {
  open();
  pointAtItem(1);
  click();
  const std::string all = happened();
  EXPECT_NE(all.find("play chose-Two"), std::string::npos) << all;
  EXPECT_EQ(all.find("clicked"), std::string::npos) << all;
  EXPECT_EQ(state(), "");
  EXPECT_TRUE(shows(Qt::red));
}

TEST_F(RollOverButtonMenuOnScreen, ChoosesNothingByTheReleaseThatOpenedItThoughItIsMovedToAnItem) {
  pointAtArrow();
  press();
  EXPECT_TRUE(awaits(u"play menu-opened"_s));
  pointAtItem(1);
  release();
  EXPECT_FALSE(didHappen("chose"));
  click();
  EXPECT_TRUE(didHappen("play chose-Two"));
}

TEST_F(RollOverButtonMenuOnScreen, IsNotLitWhenTheMenuIsClosedWithThePointerOutside) {
  open();
  pointOutside();
  pressEscape();
  EXPECT_EQ(state(), "");
  EXPECT_TRUE(shows(Qt::red));
}

TEST_F(RollOverButtonMenuOnScreen, IsLitWhenTheMenuIsClosedWithThePointerInside) {
  open();
  pressEscape();
  EXPECT_EQ(state(), "over");
  EXPECT_TRUE(shows(Qt::green));
  pointOutside();
  EXPECT_TRUE(shows(Qt::red));
}

TEST_F(RollOverButtonMenuOnScreen, IsNotLitWhenTheMenuIsClosedByAClickElsewhere) {
  open();
  pointOutside();
  click();
  EXPECT_TRUE(didHappen("play menu-closed"));
  EXPECT_EQ(state(), "");
  EXPECT_TRUE(shows(Qt::red));
}

TEST_F(RollOverButtonMenuOnScreen, IsNotLitWhenTheMenuIsClosedByAClickOutsideOfTheProgram) {
  open();
  moveTo({750, 550});
  press();
  EXPECT_TRUE(awaits(u"play menu-closed"_s));
  input({u"mouseup"_s, u"1"_s});
  EXPECT_EQ(state(), "");
  EXPECT_TRUE(shows(Qt::red));
}

TEST_F(RollOverButtonMenuOnScreen, OpensAgainAfterItWasClosed) {
  open();
  pointOutside();
  pressEscape();
  open();
  pointOutside();
  pressEscape();
  EXPECT_EQ(state(), "");
}

TEST_F(RollOverButtonMenuOnScreen, LeavesItsNeighboursUnlitWhileItIsOpen) {
  tell(u"button stop window 200 20 100 22"_s);
  open();
  point(u"stop"_s, 10, 10);
  EXPECT_EQ(state(u"stop"_s), "");
  pressEscape();
  EXPECT_EQ(state(u"stop"_s), "over");
  EXPECT_TRUE(shows(Qt::green, u"stop"_s));
}

TEST_F(RollOverButtonMenuOnScreen, ClosesWhenItsButtonIsDestroyed) {
  open();
  tell(u"delete play"_s);
  EXPECT_TRUE(awaits(u"play deleted"_s));
  pointOutside();
  click();
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonMenuOnScreen, ClosesWhenItsWindowIsDestroyed) {
  open();
  tell(u"delete window"_s);
  EXPECT_TRUE(awaits(u"window deleted"_s));
  happened();
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonMenuOnScreen, MayBeDestroyedWhileItIsOpen) {
  open();
  tell(u"deleteMenu play"_s);
  EXPECT_TRUE(awaits(u"play deleted"_s));
  pointOutside();
  EXPECT_EQ(state(), "");
  EXPECT_TRUE(shows(Qt::red));
  // Without items to show, the press ends where it began.
  pointAtArrow();
  click();
  pointOutside();
  EXPECT_EQ(state(), "");
}

TEST_F(RollOverButtonMenuOnScreen, MayDestroyTheButtonByAnItem) {
  tell(u"when play chose-One delete play"_s);
  open();
  pointAtItem(0);
  click();
  EXPECT_TRUE(didHappen("play deleted"));
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonMenuOnScreen, MayDestroyTheWindowByAnItem) {
  tell(u"when play chose-One delete window"_s);
  open();
  pointAtItem(0);
  click();
  EXPECT_TRUE(didHappen("window deleted"));
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonMenuOnScreen, MayDestroyTheButtonAsItOpens) {
  tell(u"when play menu-opened delete play"_s);
  pointAtArrow();
  press();
  EXPECT_TRUE(awaits(u"play deleted"_s));
  release();
  happened();
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonMenuOnScreen, MayDestroyTheWindowAsItCloses) {
  tell(u"when play menu-closed delete window"_s);
  open();
  input({u"key"_s, u"Escape"_s});
  EXPECT_TRUE(awaits(u"window deleted"_s));
  happened();
  EXPECT_TRUE(probe_->endsWell());
}
