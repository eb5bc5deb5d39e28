// Room at an edge of the X screen that windows keep free of others, and what is left of a screen.
#pragma once

#include <QtCore/QRect>
#include <QtCore/QSize>

#include <optional>
#include <vector>

namespace zq::app {

// A band along an edge of the X screen, which may be made of several screens beside each other. All
// in device pixels.
struct EdgeReservation {
  Qt::Edge edge = Qt::BottomEdge;
  int depth = 0; // from the edge inwards
  int first = 0; // along the edge, from the left or the top
  int last = 0;  // still in it

  bool operator==(const EdgeReservation&) const = default;
};

// The band on an X screen of the size `whole`.
QRect bandOf(const EdgeReservation& reservation, QSize whole);

// What a window at `edge` of its screen has to reserve. Nothing where another screen lies between
// the window and the edge of the X screen, from which bands are measured: it would lose the room
// instead. Nothing either where the window takes more than half of its screen, since others would
// hardly have any.
std::optional<EdgeReservation> reservationFor(const QRect& window, Qt::Edge edge,
                                              const QRect& screen,
                                              const std::vector<QRect>& otherScreens, QSize whole);

// What another window reserves.
struct OtherReservation {
  EdgeReservation reservation;
  QRect window;         // where it stands
  bool isStrip = false; // of a ticker
  bool isOlder = true;  // the window was there before one's own

  bool operator==(const OtherReservation&) const = default;
};

// The part of `screen` that others leave free. `own` is what is reserved at present by the one who
// asks: who stands beyond it has made room for it, and is not to be made room for in turn, or both
// would move for ever. Of two strips the older one goes first. Bands of more than half the screen
// are not meant for it and do not count.
QRect freeRoom(const QRect& screen, const std::vector<OtherReservation>& others,
               const std::optional<EdgeReservation>& own, QSize whole);

} // namespace zq::app
