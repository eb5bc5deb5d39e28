// The lines of a text.
//
// A line ends with LF, CR, the pair CR LF, U+2028 or U+2029; nothing else ends one.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QStringView>

namespace zq::platform {

// A line, in code units from the start of the text.
struct LineRange {
  qsizetype start = 0;
  // After the line and its terminator: where the next one starts.
  qsizetype end = 0;
  // Before the terminator; equal to `end` for a last line without one.
  qsizetype contentsEnd = 0;

  friend bool operator==(const LineRange&, const LineRange&) = default;
};

// The line that holds the code unit at `position`; a terminator belongs to the line that it ends.
// At the length of the text it is the last line, which is empty where the text ends with a
// terminator. Looks at the characters of this line only.
//
// Raises RangeException where `position` is negative or beyond the length.
ZQTICKER_EXPORT LineRange lineRangeAt(QStringView text, qsizetype position);

} // namespace zq::platform
