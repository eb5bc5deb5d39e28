// Attributed strings with pictures, and their lines: AttributedString (ZQAdditions).
#pragma once

#include "zqticker/platform/text/text_attributes.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <memory>
#include <vector>

namespace zq::platform {
class AttributedString;
class Font;
class Image;
} // namespace zq::platform

namespace zq {

// A new attributed string of `string` with `attributes` over its whole length.
//
// Thread: any.
// Operation: + attributedStringWithString:attributes:
ZQTICKER_EXPORT std::shared_ptr<platform::AttributedString>
attributedStringWithString(const QString& string, const platform::Attributes& attributes);

// One character that shows `image` at its own size, its middle in the middle of a line of `font`.
// The character's attribute BaselineOffsetAttributeName says so as a single-precision number, in
// points: half of what the line height exceeds the image's height by, rounded to single precision,
// plus the font's descender, rounded again. It is negative for an image that hangs below the
// baseline. The font itself is not among the attributes.
//
// Null stands for an image without a size, and for the default font of text, Helvetica at 12
// points. The picture is taken as it is when the string is first measured or drawn.
//
// Thread: main. Raises InternalInconsistencyException without a GUI application.
// Operation: + attributedStringWithImage:font:
ZQTICKER_EXPORT std::shared_ptr<platform::AttributedString>
attributedStringWithImage(const std::shared_ptr<platform::Image>& image,
                          const std::shared_ptr<platform::Font>& font);

// The lines of `string` in order, each without its terminator and with its attributes. A line ends
// with LF, CR, the pair CR LF, U+2028 or U+2029. Empty text is one empty line; a terminator at the
// end is not followed by an empty line. Takes time in proportion to the length of the text.
//
// Thread: any.
// Operation: componentsSeparatedByLineDelimiter
ZQTICKER_EXPORT std::vector<std::shared_ptr<platform::AttributedString>>
componentsSeparatedByLineDelimiter(const platform::AttributedString& string);

} // namespace zq
