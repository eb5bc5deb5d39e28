// What is reserved at the edges of the X screen, and what is left.
#include "app/x11/EdgeReservation.h"

#include <gtest/gtest.h>

using namespace zq::app;

namespace {
constexpr QSize Whole(1000, 400);
const QRect Screen(0, 0, 1000, 400);
const QRect Left(0, 0, 600, 400);
const QRect Right(600, 0, 400, 400);

EdgeReservation bottom(int depth, int first = 0, int last = 999) {
  return {Qt::BottomEdge, depth, first, last};
}
OtherReservation panel(const EdgeReservation& reservation) {
  return {reservation, bandOf(reservation, Whole)};
}
OtherReservation strip(const EdgeReservation& reservation, bool isOlder) {
  return {reservation, bandOf(reservation, Whole), true, isOlder};
}
} // namespace

TEST(EdgeReservation, IsTheBandFromTheEdgeToTheWindowsFarSide) {
  const auto at = [](Qt::Edge edge, const QRect& window) {
    return reservationFor(window, edge, Screen, {}, Whole);
  };
  EXPECT_EQ(at(Qt::BottomEdge, QRect(0, 376, 1000, 24)), bottom(24));
  EXPECT_EQ(at(Qt::BottomEdge, QRect(10, 350, 300, 24)), bottom(50, 10, 309)) << "over a panel";
  EXPECT_EQ(at(Qt::TopEdge, QRect(0, 0, 1000, 24)), (EdgeReservation{Qt::TopEdge, 24, 0, 999}));
  EXPECT_EQ(at(Qt::LeftEdge, QRect(5, 0, 100, 400)), (EdgeReservation{Qt::LeftEdge, 105, 0, 399}));
  EXPECT_EQ(at(Qt::RightEdge, QRect(900, 20, 100, 380)),
            (EdgeReservation{Qt::RightEdge, 100, 20, 399}));
}

TEST(EdgeReservation, IsNoneWhereItWouldTakeTheRoomOfAnotherScreen) {
  EXPECT_EQ(reservationFor(QRect(500, 0, 100, 400), Qt::RightEdge, Left, {Right}, Whole),
            std::nullopt);
  EXPECT_EQ(reservationFor(QRect(600, 0, 100, 400), Qt::LeftEdge, Right, {Left}, Whole),
            std::nullopt);
  EXPECT_EQ(reservationFor(QRect(600, 376, 400, 24), Qt::BottomEdge, Right, {Left}, Whole),
            bottom(24, 600, 999));
  // A screen that is lower than the whole leaves nothing under it.
  EXPECT_EQ(
      reservationFor(QRect(0, 276, 600, 24), Qt::BottomEdge, QRect(0, 0, 600, 300), {Right}, Whole),
      bottom(124, 0, 599));
}

TEST(EdgeReservation, LeavesOutThePixelsByWhichRoundedScreensOverlap) {
  EXPECT_EQ(
      reservationFor(QRect(0, 376, 602, 24), Qt::BottomEdge, QRect(0, 0, 602, 400), {Right}, Whole),
      bottom(24, 0, 599));
  EXPECT_EQ(reservationFor(QRect(599, 376, 401, 24), Qt::BottomEdge, QRect(599, 0, 401, 400),
                           {Left}, Whole),
            bottom(24, 600, 999));
}

TEST(EdgeReservation, IsNoneForAWindowOfMoreThanHalfTheScreen) {
  EXPECT_TRUE(reservationFor(QRect(0, 200, 1000, 200), Qt::BottomEdge, Screen, {}, Whole));
  EXPECT_FALSE(reservationFor(QRect(0, 199, 1000, 201), Qt::BottomEdge, Screen, {}, Whole));
  EXPECT_FALSE(reservationFor(QRect(0, 500, 1000, 24), Qt::BottomEdge, Screen, {}, Whole))
      << "off the screen";
}

TEST(FreeRoom, LacksWhatPanelsReserveOnThatScreen) {
  EXPECT_EQ(freeRoom(Screen, {}, {}, Whole), Screen);
  EXPECT_EQ(freeRoom(Screen, {panel(bottom(30))}, {}, Whole), QRect(0, 0, 1000, 370));
  EXPECT_EQ(freeRoom(Screen,
                     {panel({Qt::TopEdge, 20, 0, 999}), panel({Qt::LeftEdge, 50, 0, 399}),
                      panel({Qt::RightEdge, 60, 0, 399})},
                     {}, Whole),
            QRect(50, 20, 890, 380));
  EXPECT_EQ(freeRoom(Left, {panel(bottom(30, 600, 999))}, {}, Whole), Left);
  EXPECT_EQ(freeRoom(Right, {panel(bottom(30, 600, 999))}, {}, Whole), QRect(600, 0, 400, 370));
  EXPECT_EQ(freeRoom(Left, {panel(bottom(30, 598, 999))}, {}, Whole), Left) << "pixels of rounding";
}

TEST(FreeRoom, KeepsTheScreenFromBandsThatAreNotMeantForIt) {
  // The left edge of the right screen, as seen from that of the whole.
  EXPECT_EQ(freeRoom(Left, {panel({Qt::LeftEdge, 640, 0, 399})}, {}, Whole), Left);
  EXPECT_EQ(freeRoom(Right, {panel({Qt::LeftEdge, 640, 0, 399})}, {}, Whole),
            QRect(640, 0, 360, 400));
}

TEST(FreeRoom, CountsOfStripsTheOlderOnes) {
  EXPECT_EQ(freeRoom(Screen, {strip(bottom(24), true)}, {}, Whole), QRect(0, 0, 1000, 376));
  EXPECT_EQ(freeRoom(Screen, {strip(bottom(48), false)}, bottom(24), Whole), Screen);
}

TEST(FreeRoom, DoesNotMakeRoomForOneWhoHasMadeRoom) {
  const OtherReservation beyond{bottom(54), QRect(0, 346, 1000, 30)};
  EXPECT_EQ(freeRoom(Screen, {beyond}, bottom(24), Whole), Screen);
  EXPECT_EQ(freeRoom(Screen, {beyond}, {}, Whole), QRect(0, 0, 1000, 346));
  EXPECT_EQ(freeRoom(Screen, {panel(bottom(30))}, bottom(24), Whole), QRect(0, 0, 1000, 370))
      << "it has come to lie where the strip is";
  EXPECT_EQ(freeRoom(Screen, {beyond}, EdgeReservation{Qt::TopEdge, 24, 0, 999}, Whole),
            QRect(0, 0, 1000, 346))
      << "another edge";
}
