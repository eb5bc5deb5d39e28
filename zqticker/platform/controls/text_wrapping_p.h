// Text on lines of a given width.
#pragma once

#include "zqticker/platform/text/AttributedString.h"

#include <QtCore/QSizeF>

#include <vector>

namespace zq::platform {

// One line of wrapped text, without its terminator and the spaces at which it was broken.
struct WrappedLine {
  Ref<AttributedString> text;
  QSizeF size;
};

// The lines of `text` no wider than `area`, broken where its script allows, else between two
// characters; at least one character a line. Lines that begin at or below the lower edge of `area`
// are left out, and no work is done for them. LF, CR, CR LF, U+2028 and U+2029 end a line; one at
// the end of the text adds none. Empty text has no lines. An area of no number has no width, and no
// height.
std::vector<WrappedLine> wrappedLines(const AttributedString& text, QSizeF area);

} // namespace zq::platform
