#include "app/ticker/window_place.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

namespace {
// The part of a screen's length that a floating strip has.
constexpr double FloatingPart = 1.0 / 3;
// Between it and the edge that it would stand at, in points.
constexpr int FloatingMargin = 48;
} // namespace

std::optional<Qt::Edge> dockingEdge(const RunOptions& options) {
  const bool isHorizontal = options.strip.isHorizontal();
  switch (fitsDirection(options.edge, isHorizontal) ? options.edge : Edge::Automatic) {
  case Edge::Top:
    return Qt::TopEdge;
  case Edge::Bottom:
    return Qt::BottomEdge;
  case Edge::Left:
    return Qt::LeftEdge;
  case Edge::Right:
    return Qt::RightEdge;
  case Edge::Floating:
    return std::nullopt;
  case Edge::Automatic:
    break;
  }
  return isHorizontal ? Qt::BottomEdge : Qt::RightEdge;
}

StripLook lookIn(const QRect& room, const RunOptions& options) {
  StripOptions strip = options.strip;
  QSizeF part = room.size();
  if (!dockingEdge(options))
    (strip.isHorizontal() ? part.rwidth() : part.rheight()) *= FloatingPart;
  if (strip.width)
    strip.width = std::min<double>(*strip.width, room.width());
  if (strip.height)
    strip.height = std::min<double>(*strip.height, room.height());
  StripLook look = lookOf(strip, part);
  look.size = look.size.boundedTo(room.size());
  return look;
}

QRect windowPlace(const RunOptions& options, const StripLook& look, const QRect& room) {
  QRect geometry(0, 0, static_cast<int>(std::ceil(look.size.width())),
                 static_cast<int>(std::ceil(look.size.height())));
  if (const std::optional<Qt::Edge> edge = dockingEdge(options)) {
    geometry.moveTopLeft(room.topLeft());
    if (*edge == Qt::BottomEdge)
      geometry.moveBottom(room.bottom());
    if (*edge == Qt::RightEdge)
      geometry.moveRight(room.right());
    return geometry;
  }
  geometry.moveCenter(room.center());
  if (options.strip.isHorizontal())
    geometry.moveBottom(room.bottom() - FloatingMargin);
  else
    geometry.moveRight(room.right() - FloatingMargin);
  return broughtInside(geometry, room);
}

QRect broughtInside(QRect window, const QRect& room) {
  window.moveRight(std::min(window.right(), room.right()));
  window.moveBottom(std::min(window.bottom(), room.bottom()));
  window.moveLeft(std::max(window.left(), room.left()));
  window.moveTop(std::max(window.top(), room.top()));
  return window;
}

} // namespace zq::app
