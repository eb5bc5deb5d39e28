// Numbers turned into yes or no, to enable, hide or colour elements of an interface.
//
// A value that is no number counts as a number where it is a text (see value_numbers.h); whatever
// else, nothing included, gives no. The result is a boolean, never nothing; there is no way back.
#pragma once

#include "zqticker/platform/objects/ValueTransformer.h"

// Whether a number, in single precision, is at or above a boundary. Not a number never is.
class ZQTICKER_EXPORT ZQIsGreaterOrEqualValueTransformer : public zq::platform::ValueTransformer {
  Q_GADGET
  ZQ_OBJECT

 public:
  // The boundary is 0.
  ZQIsGreaterOrEqualValueTransformer();
  // Operation: initWithBoundary:
  explicit ZQIsGreaterOrEqualValueTransformer(float boundary);
  ~ZQIsGreaterOrEqualValueTransformer() override;

  // The name of the class of what comes out: "NSNumber".
  static QString transformedValueClass();
  // False.
  static bool allowsReverseTransformation();

  float boundary() const { return boundary_; }
  void setBoundary(float boundary) { boundary_ = boundary; }

  zq::platform::Any transformedValue(const zq::platform::Any& value) const override;

 private:
  float boundary_ = 0;
};

// Whether a number, in single precision, is below a boundary. Not a number never is.
class ZQTICKER_EXPORT ZQIsLessThanValueTransformer : public zq::platform::ValueTransformer {
  Q_GADGET
  ZQ_OBJECT

 public:
  // The boundary is 0.
  ZQIsLessThanValueTransformer();
  // Operation: initWithBoundary:
  explicit ZQIsLessThanValueTransformer(float boundary);
  ~ZQIsLessThanValueTransformer() override;

  static QString transformedValueClass();
  static bool allowsReverseTransformation();

  float boundary() const { return boundary_; }
  void setBoundary(float boundary) { boundary_ = boundary; }

  zq::platform::Any transformedValue(const zq::platform::Any& value) const override;

 private:
  float boundary_ = 0;
};

// Whether the whole part of a number, in 32 bits, is other than 0: 0.5 is not. Whole numbers keep
// their low 32 bits, others end at the limits, and not a number is 0.
class ZQTICKER_EXPORT ZQIsNotZero : public zq::platform::ValueTransformer {
  Q_GADGET
  ZQ_OBJECT

 public:
  ZQIsNotZero();
  ~ZQIsNotZero() override;

  static QString transformedValueClass();
  static bool allowsReverseTransformation();

  zq::platform::Any transformedValue(const zq::platform::Any& value) const override;
};
