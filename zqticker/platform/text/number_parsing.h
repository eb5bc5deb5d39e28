// Numbers at the start of a text, read the same way in every locale.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QStringView>

namespace zq::platform {

// The number that `text` begins with, after any white space: the longest prefix of sign, ASCII
// digits, point, digits and exponent, read in single precision. 0 where there is none; infinite
// where it exceeds the range.
ZQTICKER_EXPORT float floatValue(QStringView text);
// The same in double precision.
ZQTICKER_EXPORT double doubleValue(QStringView text);

// The whole number that `text` begins with, after any white space: a sign and ASCII digits. 0 where
// there is none; the lowest or the highest number that there is where it exceeds the range.
ZQTICKER_EXPORT qlonglong longLongValue(QStringView text);
ZQTICKER_EXPORT int intValue(QStringView text);

} // namespace zq::platform
