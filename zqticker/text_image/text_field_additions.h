// Text fields as high as their content: TextField (ZQAdditions).
#pragma once

#include "zqticker/zqticker_export.h"

namespace zq::platform {
class TextField;
}

namespace zq {

// Gives the frame of `field` the height that its cell needs for its content at the field's width,
// 10000 points at most. In the coordinates of the superview, y upwards, the origin and the width
// stay: it is the upper edge that moves.
//
// Thread: main.
// Operation: shrinkHeight
ZQTICKER_EXPORT void shrinkHeight(platform::TextField& field);

} // namespace zq
