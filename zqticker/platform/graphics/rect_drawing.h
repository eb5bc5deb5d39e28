// Rectangles drawn into the current context.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QRectF>

namespace zq::platform {

// Draws the border of `rect`, `frameWidth` points wide and wholly inside of it, in the colour of
// fills of the current context. A rectangle narrower than both sides of the border is filled; an
// empty one, and a width of 0 or less, draw nothing, and so does a call without a context.
ZQTICKER_EXPORT void frameRectWithWidth(const QRectF& rect, double frameWidth);

} // namespace zq::platform
