// Characters that show as colour pictures.
#pragma once

#include "zqticker/platform/objects/Range.h"

#include <QtCore/QString>

#include <vector>

namespace zq::platform {

// The ranges of `text` that are emoji by themselves or by a variation selector, in order, each as
// long as possible: flags, keycaps, skin tones and joined sequences stay whole. A character that
// asks for its plain form (U+FE0E) is none.
std::vector<Range> emojiRanges(const QString& text);

// The end of the one picture, with all its parts, that begins at `position`; `position` itself
// where none does.
qsizetype endOfEmoji(const QString& text, qsizetype position);

} // namespace zq::platform
