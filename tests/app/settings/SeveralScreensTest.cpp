// The strip among several screens that come, go and change, on a real X server.
#include "tests/app/x11/StripOnDesk.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 1000;
constexpr int Height = 400;
constexpr int Split = 600; // where the right screen begins
constexpr QRgb Ground = 0x123456;

// Two screens beside each other, made of one X screen.
class SeveralScreens : public StripOnDesk {
 protected:
  SeveralScreens() : StripOnDesk(QSize(Width, Height)) {}

  void SetUp() override {
    StripOnDesk::SetUp();
    if (IsSkipped() || HasFatalFailure())
      return;
    desk_->setMonitor(u"LEFT"_s, QRect(0, 0, Split, Height), u"screen"_s);
    desk_->setMonitor(u"RIGHT"_s, QRect(Split, 0, Width - Split, Height), u"none"_s);
  }

  // Whether the strip covers the columns from `left` to `right` of its last but one row, and no
  // others.
  bool stands(int left, int right, int bottom = Height) const {
    const QImage screen = server_->screenshot();
    for (int x = 0; x < Width; ++x)
      if (((screen.pixel(x, bottom - 2) & 0xffffff) == Ground) != (x >= left && x < right))
        return false;
    return true;
  }
};
} // namespace

TEST_F(SeveralScreens, StandsOnThePrimaryOneUnlessToldOtherwise) {
  RunningProgram program(strip(), environment_);
  EXPECT_TRUE(waitUntil([&] { return stands(0, Split); }));
}

TEST_F(SeveralScreens, StandsOnTheOneThatIsNamed) {
  RunningProgram program(strip({u"--screen"_s, u"RIGHT"_s}), environment_);
  EXPECT_TRUE(waitUntil([&] { return stands(Split, Width); }));
}

TEST_F(SeveralScreens, RefusesOneThatIsNotThere) {
  const Outcome outcome = runZqticker(strip({u"--screen"_s, u"MIDDLE"_s}), {}, environment_);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: --screen MIDDLE: no such screen (there is LEFT, RIGHT)\n");
}

TEST_F(SeveralScreens, MovesWithTheSetting) {
  RunningProgram program(strip(), environment_);
  ASSERT_TRUE(waitUntil([&] { return stands(0, Split); }));
  set(u"screen"_s, u"RIGHT"_s);
  EXPECT_TRUE(waitUntil([&] { return stands(Split, Width); }));
  set(u"screen"_s, u"primary"_s);
  EXPECT_TRUE(waitUntil([&] { return stands(0, Split); }));
}

TEST_F(SeveralScreens, StandsOnThePrimaryOneUntilTheMissingOneIsBack) {
  set(u"screen"_s, u"RIGHT"_s);
  RunningProgram program(strip(), environment_);
  ASSERT_TRUE(waitUntil([&] { return stands(Split, Width); }));
  desk_->removeMonitor(u"RIGHT"_s);
  EXPECT_TRUE(waitUntil([&] { return stands(0, Split); }));
  desk_->setMonitor(u"RIGHT"_s, QRect(Split, 0, Width - Split, Height), u"none"_s);
  EXPECT_TRUE(waitUntil([&] { return stands(Split, Width); }));
  program.interrupt(SIGINT);
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(), "");
}

// Qt takes it for the screen that it knew, with its old size.
TEST_F(SeveralScreens, FollowsTheSizeOfAScreenThatWentAndCameBackUnseen) {
  RunningProgram program(strip({u"--screen"_s, u"RIGHT"_s}), environment_);
  ASSERT_TRUE(waitUntil([&] { return stands(Split, Width); }));
  program.interrupt(SIGSTOP);
  desk_->removeMonitor(u"RIGHT"_s);
  desk_->setMonitor(u"RIGHT"_s, QRect(Split, 0, 200, 300), u"none"_s);
  program.interrupt(SIGCONT);
  EXPECT_TRUE(waitUntil([&] { return stands(Split, Split + 200, 300); }));
}

TEST_F(SeveralScreens, FollowsTheSizeOfItsScreen) {
  RunningProgram program(strip({u"--screen"_s, u"RIGHT"_s}), environment_);
  ASSERT_TRUE(waitUntil([&] { return stands(Split, Width); }));
  desk_->removeMonitor(u"RIGHT"_s);
  desk_->setMonitor(u"RIGHT"_s, QRect(Split, 0, 200, 300), u"none"_s);
  EXPECT_TRUE(waitUntil([&] { return stands(Split, Split + 200, 300); }));
}
