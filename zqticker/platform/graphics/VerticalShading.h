// Colours that change along the vertical of a path.
#pragma once

#include <QtCore/QByteArray>

#include <array>
#include <functional>

namespace zq::platform {

// A colour for each height of a path, from 0 at the smallest y of its bounds to 1 at the largest.
struct VerticalShading {
  // Red, green, blue and alpha at `t`, 0 to 1. What is returned is limited to 0 to 1; what is no
  // number counts as 0. Called once for each device row, for `t` at the row's middle, on the thread
  // of the drawing.
  std::function<std::array<double, 4>(double t)> colorAt;
  // Names the colours: shadings of the same identifier give the same colour for the same `t`, so
  // that the rows of one serve the other and `colorAt` need not be called. Without an identifier
  // every drawing calls it.
  QByteArray identifier;
};

} // namespace zq::platform
