// Titles in a rectangle.
#pragma once

#include "zqticker/platform/text/ParagraphStyle.h"
#include "zqticker/platform/text/text_attributes.h"

#include <QtCore/QRectF>
#include <QtCore/QString>

#include <memory>

namespace zq::platform {
class AttributedString;
}

namespace zq {

// A paragraph style's number for lines that end with an ellipsis where they are too long.
inline constexpr int TruncatingTailLineBreakMode = 4;

// `text` on one line of at most `width` points: as much of its start as fits together with an
// ellipsis, letters kept whole. Null where not even the ellipsis fits.
std::shared_ptr<platform::AttributedString>
truncatedAtTail(const QString& text, const platform::Attributes& attributes, double width);

// Draws `line` at the top of `rect` as it is seen, aligned in its width, into the current context.
// Natural and justified text starts where its direction does. Does nothing for null.
void drawLineInRect(const std::shared_ptr<platform::AttributedString>& line, const QRectF& rect,
                    platform::TextAlignment alignment, bool isFlipped);

} // namespace zq
