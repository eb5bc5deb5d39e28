// Decimal numbers without the rounding of binary ones.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QMetaType>
#include <QtCore/QString>

namespace zq::platform {

// A whole number of up to 38 digits × a power of ten from -128 to 127, or not a number. What has
// more digits is rounded to 38, halves away from zero; what is too small becomes 0, what is too
// large not a number. A value; two that are not a number are equal. Thread: any.
class ZQTICKER_EXPORT DecimalNumber {
 public:
  static constexpr int MaximumDigits = 38;
  static constexpr int MinimumExponent = -128;
  static constexpr int MaximumExponent = 127;

  // 0.
  DecimalNumber() = default;
  // Operation: initWithMantissa:exponent:isNegative:
  DecimalNumber(quint64 mantissa, int exponent, bool isNegative);
  static DecimalNumber notANumber();

  // Reads the longest prefix of `text` made of sign, ASCII digits, point, digits and exponent into
  // `number`, the same in every locale, and returns its length. 0 where there is none; `number` is
  // left alone then.
  static qsizetype readPrefix(QStringView text, DecimalNumber& number);

  bool isNaN() const { return isNaN_; }
  bool isNegative() const { return isNegative_; }

  // Operation: decimalNumberByMultiplyingBy:
  DecimalNumber multipliedBy(const DecimalNumber& other) const;

  // The nearest binary number.
  double doubleValue() const;
  float floatValue() const;
  // The whole part. 0 for not a number; beyond 64 bits the nearest that there is.
  qlonglong longLongValue() const;

  // All digits, with a point where there are decimals, never an exponent; "NaN".
  QString description() const;

  friend bool operator==(const DecimalNumber& a, const DecimalNumber& b) {
    return a.high_ == b.high_ && a.low_ == b.low_ && a.exponent_ == b.exponent_ &&
           a.isNegative_ == b.isNegative_ && a.isNaN_ == b.isNaN_;
  }
  friend bool operator!=(const DecimalNumber& a, const DecimalNumber& b) { return !(a == b); }

 private:
  struct Arithmetic;

  // The mantissa's upper and lower 64 bits. It ends in no zero digit unless the exponent is the
  // largest, so that equal numbers have equal fields; 0 has no sign and the exponent 0.
  quint64 high_ = 0;
  quint64 low_ = 0;
  int exponent_ = 0;
  bool isNegative_ = false;
  bool isNaN_ = false;
};

} // namespace zq::platform

Q_DECLARE_METATYPE(zq::platform::DecimalNumber)
