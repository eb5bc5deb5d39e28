// Where the strip's window stands.
#pragma once

#include "app/commands/StripOptions.h"
#include "app/commands/strip_setup.h"

#include <QtCore/QRect>

namespace zq::app {

// The window's place in `room`, the part of a screen that is free for it: at the edge of the
// options, or, where they name none that fits its direction, at the bottom, or the right for a
// vertical strip.
QRect windowPlace(const RunOptions& options, const StripLook& look, const QRect& room);

} // namespace zq::app
