// The rollover button on a real screen: what the pointer, the window system and other windows do to
// its look, and what a press comes to.
#include "tests/rollover/ButtonScreen.h"

#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace zq::testing;

namespace {

class RollOverButtonOnScreen : public ButtonScreen {
 protected:
  // A second button below the first.
  void makeStopButton() {
    tell(u"button stop window 20 60 100 22"_s);
    EXPECT_TRUE(shows(Qt::red, u"stop"_s));
  }
};

} // namespace

// The pointer.

TEST_F(RollOverButtonOnScreen, LightsUpWhileThePointerIsInside) {
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  EXPECT_EQ(happened(), "play entered");
  pointOutside();
  EXPECT_TRUE(shows(Qt::red));
  EXPECT_EQ(happened(), "play exited");
}

TEST_F(RollOverButtonOnScreen, PassesTheLightToItsNeighbour) {
  makeStopButton();
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  point(u"stop"_s, 10, 10);
  EXPECT_TRUE(shows(Qt::green, u"stop"_s));
  EXPECT_TRUE(shows(Qt::red));
  EXPECT_EQ(happened(), "play entered, play exited, stop entered");
}

TEST_F(RollOverButtonOnScreen, GoesOutWhenThePointerLeavesTheWindowAtOnce) {
  tell(u"button edge window 0 100 100 22"_s);
  EXPECT_TRUE(shows(Qt::red, u"edge"_s));
  point(u"edge"_s, 10, 10);
  EXPECT_TRUE(shows(Qt::green, u"edge"_s));
  input({u"mousemove"_s, u"700"_s, u"500"_s});
  EXPECT_TRUE(shows(Qt::red, u"edge"_s));
}

TEST_F(RollOverButtonOnScreen, KeepsItsLookWhereItDoesNotTrackTheMouse) {
  tell(u"set play tracksMouseInside false"_s);
  pointInside();
  EXPECT_EQ(happened(), "");
  EXPECT_EQ(state(), "");
  click();
  EXPECT_EQ(happened(), "play pressed, play released, play clicked");
  EXPECT_TRUE(shows(Qt::red));
  EXPECT_EQ(state(), "");
}

TEST_F(RollOverButtonOnScreen, LosesItsLightWhenTrackingIsSwitchedOff) {
  pointInside();
  EXPECT_EQ(state(), "over");
  tell(u"set play tracksMouseInside false"_s);
  EXPECT_EQ(state(), "");
  tell(u"set play tracksMouseInside true"_s);
  EXPECT_EQ(state(), "");
  point(u"play"_s, 12, 10);
  EXPECT_EQ(state(), "over");
}

TEST_F(RollOverButtonOnScreen, IsNotLitByBeingEnabledUnderThePointer) {
  tell(u"set play enabled false"_s);
  pointInside();
  EXPECT_EQ(state(), "");
  tell(u"set play enabled true"_s);
  EXPECT_EQ(state(), "");
  point(u"play"_s, 12, 10);
  EXPECT_EQ(state(), "");
  pointOutside();
  pointInside();
  EXPECT_EQ(state(), "over");
}

TEST_F(RollOverButtonOnScreen, GoesOutWhenItIsDisabled) {
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  tell(u"set play enabled false"_s);
  EXPECT_TRUE(shows(Qt::red));
  EXPECT_EQ(state(), "");
}

// Presses.

TEST_F(RollOverButtonOnScreen, ClicksByPressAndReleaseInside) {
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  press();
  EXPECT_TRUE(shows(Qt::blue));
  EXPECT_EQ(happened(), "play entered, play pressed");
  release();
  EXPECT_TRUE(shows(Qt::green));
  EXPECT_EQ(happened(), "play released, play clicked");
  EXPECT_EQ(state(), "over");
}

TEST_F(RollOverButtonOnScreen, ClicksTwiceByADoubleClick) {
  pointInside();
  click();
  EXPECT_TRUE(didHappen("play clicked"));
  click();
  EXPECT_TRUE(didHappen("play clicked"));
}

TEST_F(RollOverButtonOnScreen, WaitsOutsideForThePointerToComeBack) {
  pointInside();
  press();
  pointOutside();
  EXPECT_TRUE(shows(Qt::red));
  EXPECT_EQ(state(), "");
  pointInside();
  EXPECT_TRUE(shows(Qt::blue));
  release();
  EXPECT_TRUE(shows(Qt::green));
  EXPECT_EQ(happened(),
            "play entered, play pressed, play released, play pressed, play released, play clicked");
}

TEST_F(RollOverButtonOnScreen, SendsNothingForAReleaseOutside) {
  pointInside();
  press();
  pointOutside();
  release();
  EXPECT_TRUE(shows(Qt::red));
  EXPECT_EQ(happened(), "play entered, play pressed, play released, play exited");
  EXPECT_EQ(state(), "");
}

TEST_F(RollOverButtonOnScreen, SendsNothingForAReleaseOutsideOfTheWindow) {
  pointInside();
  press();
  input({u"mousemove"_s, u"700"_s, u"500"_s});
  release();
  EXPECT_TRUE(shows(Qt::red));
  EXPECT_FALSE(didHappen("play clicked"));
  EXPECT_EQ(state(), "");
}

TEST_F(RollOverButtonOnScreen, TakesNoPressThatBeganElsewhere) {
  pointOutside();
  press();
  pointInside();
  release();
  EXPECT_FALSE(didHappen("play pressed"));
}

TEST_F(RollOverButtonOnScreen, TakesNoPressWhileDisabled) {
  tell(u"set play enabled false"_s);
  pointInside();
  click();
  EXPECT_EQ(happened(), "play entered");
  EXPECT_EQ(state(), "");
  EXPECT_TRUE(shows(Qt::red));
}

TEST_F(RollOverButtonOnScreen, GivesThePressUpWhenItIsDisabled) {
  pointInside();
  press();
  EXPECT_TRUE(shows(Qt::blue));
  tell(u"set play enabled false"_s);
  EXPECT_TRUE(shows(Qt::red));
  release();
  EXPECT_FALSE(didHappen("play clicked"));
  EXPECT_EQ(state(), "");
}

TEST_F(RollOverButtonOnScreen, ActsByTheFirstClickIntoAnInactiveWindow) {
  tell(u"window other 400 300 200 100"_s);
  ASSERT_TRUE(awaits(u"# other active"_s));
  pointInside();
  click();
  EXPECT_TRUE(didHappen("play clicked"));
}

TEST_F(RollOverButtonOnScreen, TracksUntilTheMouseComesUpWhereItIsAskedTo) {
  tell(u"trackUntilUp play"_s);
  pointInside();
  press();
  pointOutside();
  release();
  EXPECT_TRUE(awaits(u"play tracked yes"_s));
  EXPECT_TRUE(didHappen("play clicked"));
  EXPECT_EQ(state(), "");
}

// State.

TEST_F(RollOverButtonOnScreen, ChangesItsStateByAClickOnlyWhereItIsOnOff) {
  pointInside();
  for (int type = 0; type <= 7; ++type) {
    tell(u"type play %1"_s.arg(type));
    click();
    const bool isOnOff = type == 6;
    EXPECT_EQ(didHappen("play on"), isOnOff) << type;
    EXPECT_EQ((state() == "over on"), isOnOff) << type;
    if (!isOnOff)
      continue;
    pointOutside();
    EXPECT_TRUE(shows(Qt::blue)) << "stays on";
    pointInside();
    EXPECT_TRUE(shows(Qt::green));
    click();
    EXPECT_TRUE(didHappen("play off"));
  }
}

TEST_F(RollOverButtonOnScreen, SwitchesTheOthersOfItsGroupOff) {
  makeStopButton();
  tell(u"type play 6"_s);
  tell(u"type stop 6"_s);
  tell(u"group play stop"_s);
  pointInside();
  click();
  point(u"stop"_s, 10, 10);
  click();
  EXPECT_EQ(state(u"play"_s), "");
  EXPECT_EQ(state(u"stop"_s), "over on");
  happened();
  click();
  EXPECT_EQ(state(u"stop"_s), "over on") << "one is on";
}

// Other windows.

TEST_F(RollOverButtonOnScreen, GoesOutWhenItsWindowLosesTheFocus) {
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  tell(u"window other 400 300 200 100"_s);
  ASSERT_TRUE(awaits(u"# window inactive"_s));
  EXPECT_TRUE(shows(Qt::red));
  point(u"play"_s, 12, 10);
  EXPECT_TRUE(shows(Qt::green)) << "the pointer is still inside";
}

TEST_F(RollOverButtonOnScreen, GivesThePressUpWhenItsWindowLosesTheFocus) {
  pointInside();
  press();
  EXPECT_TRUE(shows(Qt::blue));
  tell(u"window other 400 300 200 100"_s);
  ASSERT_TRUE(awaits(u"# window inactive"_s));
  EXPECT_TRUE(shows(Qt::red));
  release();
  EXPECT_FALSE(didHappen("play clicked"));
}

TEST_F(RollOverButtonOnScreen, GoesOutWhenAWindowIsMappedAboveIt) {
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  tell(u"window above 30 50 200 200 above"_s);
  EXPECT_EQ(state(), "");
  tell(u"hide above"_s);
  EXPECT_TRUE(shows(Qt::green));
}

TEST_F(RollOverButtonOnScreen, GoesOutWhenAnotherProgramMapsAWindowAboveIt) {
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  otherProgram().tell(u"window above 30 50 200 200 above"_s);
  otherProgram().happened();
  EXPECT_EQ(state(), "");
  otherProgram().tell(u"hide above"_s);
  EXPECT_TRUE(shows(Qt::green));
}

TEST_F(RollOverButtonOnScreen, GoesOutWhenAnotherProgramTakesTheFocus) {
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  otherProgram().tell(u"window other 400 300 200 100"_s);
  ASSERT_TRUE(awaits(u"# window inactive"_s));
  EXPECT_TRUE(shows(Qt::red));
}

TEST_F(RollOverButtonOnScreen, GoesOutWhenAnotherWindowTakesTheMouse) {
  tell(u"window other 400 300 200 100"_s);
  ASSERT_TRUE(awaits(u"# other active"_s));
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  tell(u"grab other"_s);
  EXPECT_TRUE(shows(Qt::red));
  tell(u"release other"_s);
  EXPECT_TRUE(shows(Qt::green)) << "the pointer is still inside";
  tell(u"grab other"_s);
  EXPECT_TRUE(shows(Qt::red));
  pointOutside();
  tell(u"release other"_s);
  EXPECT_EQ(state(), "");
}

TEST_F(RollOverButtonOnScreen, GoesOutWhenAnotherProgramTakesTheMouse) {
  otherProgram().tell(u"window other 400 300 200 100"_s);
  ASSERT_TRUE(otherProgram().awaits(u"# other active"_s));
  pointInside();
  EXPECT_TRUE(shows(Qt::green));
  otherProgram().tell(u"grab other"_s);
  EXPECT_TRUE(shows(Qt::red));
  pointOutside();
  otherProgram().tell(u"release other"_s);
  otherProgram().happened();
  EXPECT_EQ(state(), "");
}

TEST_F(RollOverButtonOnScreen, GivesThePressUpWhenItsWindowIsHidden) {
  pointInside();
  press();
  tell(u"hide window"_s);
  EXPECT_EQ(state(), "");
  input({u"mouseup"_s, u"1"_s});
  EXPECT_FALSE(didHappen("clicked"));
}

// Destruction.

TEST_F(RollOverButtonOnScreen, MayBeDestroyedWhileItTracks) {
  pointInside();
  press();
  tell(u"delete play"_s);
  release();
  EXPECT_TRUE(didHappen("play deleted"));
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonOnScreen, MayBeDestroyedWhileItTracksUntilTheMouseComesUp) {
  tell(u"trackUntilUp play"_s);
  pointInside();
  press();
  EXPECT_TRUE(awaits(u"play tracks"_s));
  tell(u"delete play"_s);
  EXPECT_TRUE(awaits(u"play tracked no"_s));
  release();
  happened();
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonOnScreen, MayLoseItsWindowWhileItTracks) {
  pointInside();
  press();
  tell(u"delete window"_s);
  EXPECT_TRUE(awaits(u"window deleted"_s));
  input({u"mouseup"_s, u"1"_s});
  happened();
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonOnScreen, MayBeDestroyedByItsClick) {
  tell(u"when play clicked delete play"_s);
  pointInside();
  click();
  EXPECT_TRUE(didHappen("play deleted"));
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonOnScreen, MayLoseItsWindowByItsClick) {
  tell(u"when play clicked delete window"_s);
  pointInside();
  click();
  EXPECT_TRUE(didHappen("window deleted"));
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonOnScreen, MayLoseItsWindowByComingsAndGoings) {
  for (const QString& step : {u"entered"_s, u"exited"_s}) {
    SCOPED_TRACE(step.toStdString());
    start(1);
    tell(u"when play %1 delete window"_s.arg(step));
    const QRectF place = probe_->placeOf(u"play"_s);
    moveTo(place.center());
    moveTo(place.center() + QPointF(0, 60));
    EXPECT_TRUE(didHappen("window deleted"));
    EXPECT_TRUE(probe_->endsWell());
  }
}

TEST_F(RollOverButtonOnScreen, MayBeDestroyedByAnyStepOfAPress) {
  for (const QString& step : {u"entered"_s, u"pressed"_s, u"released"_s, u"exited"_s}) {
    SCOPED_TRACE(step.toStdString());
    start(1);
    tell(u"when play %1 delete play"_s.arg(step));
    pointInside();
    click();
    pointOutside();
    EXPECT_TRUE(didHappen("play deleted"));
    EXPECT_TRUE(probe_->endsWell());
  }
}

TEST_F(RollOverButtonOnScreen, MayBeDestroyedByTheEndOfAPressThatTheLostFocusMakes) {
  tell(u"when play released delete play"_s);
  pointInside();
  press();
  tell(u"window other 400 300 200 100"_s);
  EXPECT_TRUE(awaits(u"play deleted"_s));
  input({u"mouseup"_s, u"1"_s});
  happened();
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonOnScreen, MayBeDestroyedByTheEndOfAPressThatHidingMakes) {
  tell(u"when play released delete play"_s);
  pointInside();
  press();
  tell(u"hide window"_s);
  EXPECT_TRUE(awaits(u"play deleted"_s));
  input({u"mouseup"_s, u"1"_s});
  happened();
  EXPECT_TRUE(probe_->endsWell());
}

TEST_F(RollOverButtonOnScreen, MayBeDestroyedByTheEndOfAPressThatDisablingMakes) {
  for (const QString& victim : {u"play"_s, u"window"_s}) {
    SCOPED_TRACE(victim.toStdString());
    start(1);
    tell(u"when play released delete "_s + victim);
    pointInside();
    press();
    tell(u"set play enabled false"_s);
    EXPECT_TRUE(awaits(victim + u" deleted"_s));
    input({u"mouseup"_s, u"1"_s});
    happened();
    EXPECT_TRUE(probe_->endsWell());
  }
}

// Scales and colours.

TEST_F(RollOverButtonOnScreen, IsSharpAtEveryScale) {
  for (const double scale : {1.0, 1.5, 2.0}) {
    SCOPED_TRACE(scale);
    start(scale);
    const QImage image = picture(u"play"_s);
    ASSERT_EQ(image.size(), (QSizeF(100, 22) * scale).toSize());
    // Paper, frame and body from the edge inwards, and nothing between them but the trace that the
    // single precision of outlines leaves.
    const auto isNear = [](const QColor& a, const QColor& b) {
      return std::abs(a.red() - b.red()) < 8 && std::abs(a.green() - b.green()) < 8 &&
             std::abs(a.blue() - b.blue()) < 8;
    };
    const auto expectSharp = [&](QPoint edge, QPoint step) {
      std::string colors;
      for (int i = 0; i < int(5 * scale); ++i) {
        const QColor pixel = image.pixelColor(edge + i * step);
        const char color = isNear(pixel, Qt::white)   ? 'w'
                           : isNear(pixel, Qt::black) ? 'b'
                           : isNear(pixel, Qt::red)   ? 'r'
                                                      : '?';
        if (colors.empty() || colors.back() != color)
          colors += color;
      }
      EXPECT_EQ(colors, "wbr");
    };
    const int right = image.width() - 1;
    const int bottom = image.height() - 1;
    expectSharp({0, bottom / 2}, {1, 0});
    expectSharp({right, bottom / 2}, {-1, 0});
    expectSharp({int(20 * scale), 0}, {0, 1});
    expectSharp({int(20 * scale), bottom}, {0, -1});
  }
}

TEST_F(RollOverButtonOnScreen, ReachesTheThemeByAChangeOfThePalette) {
  tell(u"palette #eeeeee"_s);
  tell(u"theme play"_s);
  EXPECT_TRUE(shows(QColor(0xee, 0xee, 0xee)));
  tell(u"palette #303030"_s);
  tell(u"theme play"_s);
  EXPECT_TRUE(shows(QColor(0x30, 0x30, 0x30)));
}
