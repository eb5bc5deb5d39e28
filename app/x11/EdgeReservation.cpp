#include "app/x11/EdgeReservation.h"

#include <algorithm>

namespace zq::app {

namespace {
// Screens are told in whole points: in pixels they may overlap by as much.
constexpr int Roundings = 2;

bool isUpright(Qt::Edge edge) {
  return edge == Qt::LeftEdge || edge == Qt::RightEdge;
}

// How far `rect` reaches in from the edge.
int depthOf(const QRect& rect, Qt::Edge edge, QSize whole) {
  switch (edge) {
  case Qt::TopEdge:
    return rect.bottom() + 1;
  case Qt::BottomEdge:
    return whole.height() - rect.top();
  case Qt::LeftEdge:
    return rect.right() + 1;
  case Qt::RightEdge:
    break;
  }
  return whole.width() - rect.left();
}

// The same of its far side, the one towards the edge.
int distanceOf(const QRect& rect, Qt::Edge edge, QSize whole) {
  switch (edge) {
  case Qt::TopEdge:
    return rect.top();
  case Qt::BottomEdge:
    return whole.height() - rect.bottom() - 1;
  case Qt::LeftEdge:
    return rect.left();
  case Qt::RightEdge:
    break;
  }
  return whole.width() - rect.right() - 1;
}

bool isMoreThanHalf(int depth, const QRect& screen, Qt::Edge edge) {
  return 2 * depth > (isUpright(edge) ? screen.width() : screen.height());
}
} // namespace

QRect bandOf(const EdgeReservation& reservation, QSize whole) {
  const auto& [edge, depth, first, last] = reservation;
  const int length = last - first + 1;
  switch (edge) {
  case Qt::TopEdge:
    return QRect(first, 0, length, depth);
  case Qt::BottomEdge:
    return QRect(first, whole.height() - depth, length, depth);
  case Qt::LeftEdge:
    return QRect(0, first, depth, length);
  case Qt::RightEdge:
    break;
  }
  return QRect(whole.width() - depth, first, depth, length);
}

std::optional<EdgeReservation> reservationFor(const QRect& window, Qt::Edge edge,
                                              const QRect& screen,
                                              const std::vector<QRect>& otherScreens, QSize whole) {
  const QRect seen = window & QRect(QPoint(0, 0), whole);
  if (seen.isEmpty() ||
      isMoreThanHalf(isUpright(edge) ? seen.width() : seen.height(), screen, edge))
    return std::nullopt;
  EdgeReservation made{edge, depthOf(seen, edge, whole), seen.left(), seen.right()};
  if (isUpright(edge)) {
    made.first = seen.top();
    made.last = seen.bottom();
  }
  for (const QRect& other : otherScreens) {
    const QRect common = other & bandOf(made, whole);
    const int first = isUpright(edge) ? common.top() : common.left();
    const int last = isUpright(edge) ? common.bottom() : common.right();
    if (common.isEmpty())
      continue;
    if (last - first >= Roundings)
      return std::nullopt;
    if (first == made.first)
      made.first = last + 1;
    else
      made.last = first - 1;
  }
  return made;
}

QRect freeRoom(const QRect& screen, const std::vector<OtherReservation>& others,
               const std::optional<EdgeReservation>& own, QSize whole) {
  QRect room = screen;
  for (const OtherReservation& other : others) {
    const Qt::Edge edge = other.reservation.edge;
    if (other.isStrip && !other.isOlder)
      continue;
    if (!other.isStrip && own && own->edge == edge &&
        distanceOf(other.window, edge, whole) >= own->depth)
      continue;
    const QRect taken = bandOf(other.reservation, whole) & screen;
    const int along = isUpright(edge) ? taken.height() : taken.width();
    if (taken.isEmpty() || along <= Roundings ||
        isMoreThanHalf(isUpright(edge) ? taken.width() : taken.height(), screen, edge))
      continue;
    switch (edge) {
    case Qt::TopEdge:
      room.setTop(std::max(room.top(), taken.bottom() + 1));
      break;
    case Qt::BottomEdge:
      room.setBottom(std::min(room.bottom(), taken.top() - 1));
      break;
    case Qt::LeftEdge:
      room.setLeft(std::max(room.left(), taken.right() + 1));
      break;
    case Qt::RightEdge:
      room.setRight(std::min(room.right(), taken.left() - 1));
      break;
    }
  }
  // From two sides they may take all of it.
  return room.isValid() ? room : screen;
}

} // namespace zq::app
