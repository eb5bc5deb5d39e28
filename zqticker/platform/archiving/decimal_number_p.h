// Decimal numbers as archives keep them.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QByteArray>

namespace zq::platform {

// mantissa × 10^exponent. The mantissa is a whole number of 16-bit words, the least significant
// first, of which `wordCount` count.
struct DecimalParts {
  static constexpr qint64 LittleEndian = 1;
  static constexpr qint64 BigEndian = 2;

  QByteArray mantissa;
  qint64 wordCount = 0;
  qint64 exponent = 0;
  bool isNegative = false;
  // The order of the bytes in each word.
  qint64 byteOrder = LittleEndian;
};

// The number as qlonglong where it is whole and fits, as the nearest double otherwise; nothing
// where the parts make no number. A negative number without words is not a number (NaN).
Any decimalNumber(const DecimalParts& parts);

} // namespace zq::platform
