// Where the strip's window stands, and how large it is.
#pragma once

#include "app/commands/StripOptions.h"
#include "app/commands/strip_setup.h"

#include <QtCore/QRect>

#include <optional>

namespace zq::app {

// The edge of the screen at which a strip of these options stands: that of the options, or, where
// they name none that fits its direction, the bottom, or the right for a vertical strip. Nothing
// for one that floats.
std::optional<Qt::Edge> dockingEdge(const RunOptions& options);

// The look of a strip in `room`, the part of a screen that is free for it: as long as the room, or
// a third of that where it floats, unless the options say otherwise, and not larger than the room.
// Raises RunTimeError for an unknown font.
StripLook lookIn(const QRect& room, const RunOptions& options);

// The window's place in `room`: along its edge, or, where it floats and nobody has moved it yet,
// near the bottom or the right.
QRect windowPlace(const RunOptions& options, const StripLook& look, const QRect& room);

// `window` moved as little as is needed to lie in `room`; where it is larger it keeps the room's
// upper left corner.
QRect broughtInside(QRect window, const QRect& room);

} // namespace zq::app
