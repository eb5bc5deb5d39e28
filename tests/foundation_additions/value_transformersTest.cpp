#include "zqticker/foundation_additions/value_transformers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
constexpr double Infinity = std::numeric_limits<double>::infinity();

bool isGreaterOrEqual(const Any& value, float boundary) {
  const Any result = ZQIsGreaterOrEqualValueTransformer(boundary).transformedValue(value);
  EXPECT_EQ(result.metaType(), QMetaType::fromType<bool>());
  return result.toBool();
}

bool isLess(const Any& value, float boundary) {
  const Any result = ZQIsLessThanValueTransformer(boundary).transformedValue(value);
  EXPECT_EQ(result.metaType(), QMetaType::fromType<bool>());
  return result.toBool();
}

bool isNotZero(const Any& value) {
  const Any result = ZQIsNotZero().transformedValue(value);
  EXPECT_EQ(result.metaType(), QMetaType::fromType<bool>());
  return result.toBool();
}
} // namespace

TEST(ValueTransformers, MakeNumbersAndHaveNoWayBack) {
  EXPECT_EQ(ZQIsGreaterOrEqualValueTransformer::transformedValueClass(), u"NSNumber");
  EXPECT_EQ(ZQIsLessThanValueTransformer::transformedValueClass(), u"NSNumber");
  EXPECT_EQ(ZQIsNotZero::transformedValueClass(), u"NSNumber");
  EXPECT_FALSE(ZQIsGreaterOrEqualValueTransformer::allowsReverseTransformation());
  EXPECT_FALSE(ZQIsLessThanValueTransformer::allowsReverseTransformation());
  EXPECT_FALSE(ZQIsNotZero::allowsReverseTransformation());
}

TEST(ValueTransformers, HaveTheBoundaryZeroUntilItIsSet) {
  ZQIsGreaterOrEqualValueTransformer greater;
  ZQIsLessThanValueTransformer less;
  EXPECT_EQ(greater.boundary(), 0);
  EXPECT_EQ(less.boundary(), 0);
  greater.setBoundary(0.1F);
  less.setBoundary(-3);
  EXPECT_EQ(greater.boundary(), 0.1F);
  EXPECT_EQ(less.boundary(), -3);
  EXPECT_EQ(ZQIsLessThanValueTransformer(2.5F).boundary(), 2.5F);
}

TEST(ValueTransformers, SayNoToNothingAndToValuesWithoutANumber) {
  for (const Any& value :
       {Any(), Any(QVariantList{7}), Any(QByteArray("7")), any(std::make_shared<ZQIsNotZero>())}) {
    EXPECT_FALSE(isGreaterOrEqual(value, -1));
    EXPECT_FALSE(isLess(value, 9));
    EXPECT_FALSE(isNotZero(value));
  }
}

TEST(IsGreaterOrEqualValueTransformer, IncludesItsBoundary) {
  EXPECT_TRUE(isGreaterOrEqual(5, 5));
  EXPECT_TRUE(isGreaterOrEqual(5.01, 5));
  EXPECT_FALSE(isGreaterOrEqual(4.99, 5));
  EXPECT_TRUE(isGreaterOrEqual(true, 1));
}

TEST(IsGreaterOrEqualValueTransformer, ComparesInSinglePrecision) {
  EXPECT_TRUE(isGreaterOrEqual(4.99999999, 5));
  EXPECT_TRUE(isGreaterOrEqual(2147483647, 2147483648.0F));
  EXPECT_TRUE(isGreaterOrEqual(u"0.3"_s, 0.3F));
}

TEST(IsGreaterOrEqualValueTransformer, ReadsTexts) {
  EXPECT_TRUE(isGreaterOrEqual(u" 7 apples"_s, 5));
  EXPECT_FALSE(isGreaterOrEqual(u"abc"_s, 5));
  EXPECT_TRUE(isGreaterOrEqual(u"abc"_s, 0));
  EXPECT_FALSE(isGreaterOrEqual(u"0x10"_s, 5));
}

TEST(IsGreaterOrEqualValueTransformer, SaysNoWhereAnythingIsNotANumber) {
  EXPECT_FALSE(isGreaterOrEqual(std::nan(""), 5));
  EXPECT_FALSE(isGreaterOrEqual(5, std::nanf("")));
  EXPECT_TRUE(isGreaterOrEqual(Infinity, 5));
  EXPECT_TRUE(isGreaterOrEqual(1e300, std::numeric_limits<float>::infinity()));
  EXPECT_FALSE(isGreaterOrEqual(-Infinity, 5));
}

TEST(IsLessThanValueTransformer, ExcludesItsBoundary) {
  EXPECT_FALSE(isLess(5, 5));
  EXPECT_TRUE(isLess(4.99, 5));
  EXPECT_FALSE(isLess(6, 5));
}

TEST(IsLessThanValueTransformer, ComparesInSinglePrecision) {
  EXPECT_FALSE(isLess(4.99999999, 5));
  EXPECT_FALSE(isLess(0.1, 0.1F));
  EXPECT_FALSE(isLess(u"3.3"_s, 3.3F));
}

TEST(IsLessThanValueTransformer, SaysNoWhereAnythingIsNotANumber) {
  EXPECT_FALSE(isLess(std::nan(""), 5));
  EXPECT_FALSE(isLess(4, std::nanf("")));
  EXPECT_TRUE(isLess(-Infinity, 5));
  EXPECT_FALSE(isLess(Infinity, 5));
}

TEST(IsNotZero, LooksAtWholeNumbers) {
  EXPECT_TRUE(isNotZero(-1));
  EXPECT_TRUE(isNotZero(2147483647));
  EXPECT_TRUE(isNotZero(true));
  EXPECT_FALSE(isNotZero(0));
  EXPECT_FALSE(isNotZero(false));
}

// Half is zero on purpose: the number is cut to its whole part first.
TEST(IsNotZero, TakesFractionsForZero) {
  EXPECT_FALSE(isNotZero(0.5));
  EXPECT_FALSE(isNotZero(-0.999));
  EXPECT_TRUE(isNotZero(-1.5));
}

TEST(IsNotZero, ReadsTexts) {
  EXPECT_TRUE(isNotZero(u"3"_s));
  EXPECT_FALSE(isNotZero(u"abc"_s));
  EXPECT_FALSE(isNotZero(u"--3"_s));
  EXPECT_FALSE(isNotZero(u"0.7"_s));
  EXPECT_TRUE(isNotZero(u"4294967296"_s));
}

TEST(IsNotZero, KeepsTheLow32BitsOfWholeNumbersAndLimitsOthers) {
  EXPECT_FALSE(isNotZero(4294967296LL));
  EXPECT_TRUE(isNotZero(4294967296.0));
  EXPECT_TRUE(isNotZero(-Infinity));
  EXPECT_FALSE(isNotZero(std::nan("")));
}
