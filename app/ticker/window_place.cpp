#include "app/ticker/window_place.h"

#include <cmath>

namespace zq::app {

QRect windowPlace(const RunOptions& options, const StripLook& look, const QRect& room) {
  QRect geometry(0, 0, static_cast<int>(std::ceil(look.size.width())),
                 static_cast<int>(std::ceil(look.size.height())));
  geometry.moveTopLeft(room.topLeft());
  const bool isUpright = options.edge == Edge::Left || options.edge == Edge::Right;
  switch (isUpright == options.strip.isHorizontal() ? Edge::Automatic : options.edge) {
  case Edge::Top:
  case Edge::Left:
    break;
  case Edge::Bottom:
    geometry.moveBottom(room.bottom());
    break;
  case Edge::Right:
    geometry.moveRight(room.right());
    break;
  case Edge::Automatic:
    if (options.strip.isHorizontal())
      geometry.moveBottom(room.bottom());
    else
      geometry.moveRight(room.right());
    break;
  }
  return geometry;
}

} // namespace zq::app
