#include "zqticker/foundation_additions/value_transformers.h"

#include "zqticker/platform/text/value_numbers.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
QString numberClass() {
  return u"NSNumber"_s;
}
} // namespace

ZQIsGreaterOrEqualValueTransformer::ZQIsGreaterOrEqualValueTransformer() = default;
ZQIsGreaterOrEqualValueTransformer::ZQIsGreaterOrEqualValueTransformer(float boundary) {
  setBoundary(boundary);
}
ZQIsGreaterOrEqualValueTransformer::~ZQIsGreaterOrEqualValueTransformer() = default;

QString ZQIsGreaterOrEqualValueTransformer::transformedValueClass() {
  return numberClass();
}

bool ZQIsGreaterOrEqualValueTransformer::allowsReverseTransformation() {
  return false;
}

Any ZQIsGreaterOrEqualValueTransformer::transformedValue(const Any& value) const {
  const std::optional<float> number = floatValueOf(value);
  return number && *number >= boundary_;
}

ZQIsLessThanValueTransformer::ZQIsLessThanValueTransformer() = default;
ZQIsLessThanValueTransformer::ZQIsLessThanValueTransformer(float boundary) {
  setBoundary(boundary);
}
ZQIsLessThanValueTransformer::~ZQIsLessThanValueTransformer() = default;

QString ZQIsLessThanValueTransformer::transformedValueClass() {
  return numberClass();
}

bool ZQIsLessThanValueTransformer::allowsReverseTransformation() {
  return false;
}

Any ZQIsLessThanValueTransformer::transformedValue(const Any& value) const {
  const std::optional<float> number = floatValueOf(value);
  return number && *number < boundary_;
}

ZQIsNotZero::ZQIsNotZero() = default;
ZQIsNotZero::~ZQIsNotZero() = default;

QString ZQIsNotZero::transformedValueClass() {
  return numberClass();
}

bool ZQIsNotZero::allowsReverseTransformation() {
  return false;
}

Any ZQIsNotZero::transformedValue(const Any& value) const {
  const std::optional<int> number = intValueOf(value);
  return number && *number != 0;
}
