#include "app/controls/RestingPointer.h"

#include "tests/app/FakePointer.h"
#include "tests/app/XServer.h"

#include <gtest/gtest.h>

#include <string>

using zq::app::RestingPointer;
using zq::app::testing::enter;
using zq::app::testing::leave;
using zq::app::testing::move;
using zq::app::testing::press;
using zq::app::testing::release;
using zq::app::testing::tap;
using zq::app::testing::waitUntil;

namespace {
// Two widgets, each with a pointer of its own, and what the pointers tell, in order: "+a" for the
// begin of a rest over the first. The second one shows how much time has passed for the first.
class RestingPointers : public ::testing::Test {
 protected:
  RestingPointers() : a(&first), b(&second) {
    // Far from everything.
    QCursor::setPos(780, 580);
    first.setGeometry(0, 0, 100, 24);
    second.setGeometry(200, 0, 100, 24);
    first.show();
    second.show();
    note(a, "a");
    note(b, "b");
    QCoreApplication::processEvents();
  }

  void note(RestingPointer& pointer, const std::string& name) {
    QObject::connect(&pointer, &RestingPointer::restingChanged, &pointer,
                     [this, name](bool resting) { told += (resting ? "+" : "-") + name; });
  }

  QWidget first;
  QWidget second;
  RestingPointer a;
  RestingPointer b;
  std::string told;
};
} // namespace

TEST_F(RestingPointers, BeginToRestAfterAWhile) {
  enter(first);
  EXPECT_FALSE(a.isResting());
  EXPECT_TRUE(waitUntil([&] { return a.isResting(); }));
  EXPECT_EQ(told, "+a");
}

TEST_F(RestingPointers, DoNotRestOnTheirWayAcross) {
  enter(first);
  leave(first);
  enter(second);
  EXPECT_TRUE(waitUntil([&] { return b.isResting(); }));
  EXPECT_EQ(told, "+b");
}

TEST_F(RestingPointers, DoNotRestWhileTheyMove) {
  enter(first, {5, 5});
  enter(second);
  move(first, {15, 5});
  EXPECT_TRUE(waitUntil([&] { return a.isResting(); }));
  EXPECT_EQ(told, "+b+a");
}

TEST_F(RestingPointers, RestInAHandThatTrembles) {
  enter(first, {5, 5});
  enter(second);
  move(first, {7, 5});
  move(first, {6, 6});
  EXPECT_TRUE(waitUntil([&] { return b.isResting(); }));
  EXPECT_EQ(told, "+a+b");
}

TEST_F(RestingPointers, RestWhenTheyHaveComeWithoutAnEnter) {
  move(first, {5, 5});
  EXPECT_TRUE(waitUntil([&] { return a.isResting(); }));
}

TEST_F(RestingPointers, RestUntilTheyHaveBeenAwayForAMoment) {
  press(first);
  leave(first);
  EXPECT_TRUE(a.isResting());
  EXPECT_TRUE(waitUntil([&] { return !a.isResting(); }));
  EXPECT_EQ(told, "+a-a");
}

TEST_F(RestingPointers, RestOnWhereTheyComeBackInTime) {
  for (QWidget* widget : {&first, &second}) {
    enter(*widget);
    press(*widget);
    leave(*widget);
  }
  enter(first);
  EXPECT_TRUE(waitUntil([&] { return !b.isResting(); }));
  EXPECT_EQ(told, "+a+b-b");
}

TEST_F(RestingPointers, RestAtOnceWithAPressOfTheLeftButton) {
  enter(first);
  press(first, {5, 5}, Qt::RightButton);
  EXPECT_FALSE(a.isResting());
  press(first);
  EXPECT_TRUE(a.isResting());
}

TEST_F(RestingPointers, CountPressesThatAPartKeepsToItself) {
  QWidget part(&first);
  a.watchPresses(&part);
  press(part);
  EXPECT_TRUE(a.isResting());
}

TEST_F(RestingPointers, DoNotEndTheirRestWhileTheyAreHeld) {
  for (QWidget* widget : {&first, &second}) {
    enter(*widget);
    press(*widget);
  }
  a.setHeld(true);
  leave(first);
  leave(second);
  EXPECT_TRUE(waitUntil([&] { return !b.isResting(); }));
  EXPECT_TRUE(a.isResting());
  a.setHeld(false);
  EXPECT_TRUE(a.isResting()) << "a moment later";
  EXPECT_TRUE(waitUntil([&] { return !a.isResting(); }));
}

TEST_F(RestingPointers, DoNotBeginToRestWhileTheyAreHeld) {
  a.setHeld(true);
  enter(first);
  press(first);
  enter(second);
  EXPECT_TRUE(waitUntil([&] { return b.isResting(); }));
  EXPECT_FALSE(a.isResting());
  QCursor::setPos(first.mapToGlobal(QPoint(5, 5)));
  a.setHeld(false);
  EXPECT_TRUE(waitUntil([&] { return a.isResting(); }));
  QCursor::setPos(780, 580);
}

TEST_F(RestingPointers, AreFoundWhereTheyAreWhenNothingHoldsThemAnyMore) {
  enter(first);
  press(first);
  a.setHeld(true);
  // A menu has taken the leave to itself.
  a.setHeld(false);
  EXPECT_TRUE(waitUntil([&] { return !a.isResting(); }));
}

TEST_F(RestingPointers, CountAFingerThatTapsForSomeSeconds) {
  tap(first);
  EXPECT_TRUE(a.isResting());
  leave(first); // when the finger is off, for some toolkits
  enter(second);
  press(second);
  leave(second);
  EXPECT_TRUE(waitUntil([&] { return !b.isResting(); }));
  EXPECT_TRUE(a.isResting());
  EXPECT_TRUE(waitUntil([&] { return !a.isResting(); })) << "without any leave";
}

TEST_F(RestingPointers, EndTheirRestWhenTheWidgetIsHidden) {
  enter(first);
  press(first);
  first.hide();
  EXPECT_FALSE(a.isResting());
  EXPECT_EQ(told, "+a-a");
}
