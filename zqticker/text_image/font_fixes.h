// Corrected figures of the system font: Font (ZQFixes).
#pragma once

#include "zqticker/zqticker_export.h"

#include <memory>

namespace zq::platform {
class Font;
}

namespace zq {

// Both functions know a font as the system font when its family is that of the system font at its
// regular size, whatever its style; a font that stands in for a missing one of another family is
// none. Sizes are rounded to whole points in single precision, halves to the even one: 12.5 is 12.
//
// Thread: main. Raise InternalInconsistencyException without a GUI application.

// The height of the lower-case x in points. Of the system font at 13, 11 and 9 points a fixed
// figure: 8.16943359375, 6.912598133087158 and 5.655762195587158. 0 for null.
// Operation: fixed_xHeight
ZQTICKER_EXPORT float fixed_xHeight(const std::shared_ptr<platform::Font>& font);

// The height of the capitals in points. Of the system font at 13, 11 and 9 points a fixed figure,
// 9.5, 8 and 7, but only where the font's own is broken, that is, equal to its ascender in single
// precision. The x-height is corrected without such a test. 0 for null.
// Operation: fixed_capHeight
ZQTICKER_EXPORT float fixed_capHeight(const std::shared_ptr<platform::Font>& font);

} // namespace zq
