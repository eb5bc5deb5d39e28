#include "zqticker/platform/text/value_numbers.h"

#include "zqticker/platform/text/DecimalNumber.h"
#include "zqticker/platform/text/number_parsing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
constexpr double Infinity = std::numeric_limits<double>::infinity();
using LongLongs = std::numeric_limits<qlonglong>;
using Ints = std::numeric_limits<int>;
} // namespace

TEST(LongLongValue, ReadsASignAndDigits) {
  EXPECT_EQ(longLongValue(u" \t-42x"), -42);
  EXPECT_EQ(longLongValue(u"+7"), 7);
  EXPECT_EQ(longLongValue(u"0012"), 12);
  for (const QStringView text : {u"", u"-", u"--3", u"+-3", u"x3", u".5", u"\u0663"})
    EXPECT_EQ(longLongValue(text), 0);
}

TEST(LongLongValue, EndsAtTheLimits) {
  EXPECT_EQ(longLongValue(u"9223372036854775807"), LongLongs::max());
  EXPECT_EQ(longLongValue(u"9223372036854775808"), LongLongs::max());
  EXPECT_EQ(longLongValue(u"-9223372036854775808"), LongLongs::min());
  EXPECT_EQ(longLongValue(u"-9223372036854775809"), LongLongs::min());
  EXPECT_EQ(longLongValue(QString(1000, u'9')), LongLongs::max());
  EXPECT_EQ(intValue(u"2147483647"), Ints::max());
  EXPECT_EQ(intValue(u"2147483648"), Ints::max());
  EXPECT_EQ(intValue(u"-2147483648"), Ints::min());
  EXPECT_EQ(intValue(u"-99999999999"), Ints::min());
}

TEST(DoubleValue, ReadsInDoublePrecision) {
  EXPECT_EQ(doubleValue(u" 0.1x"), 0.1);
  EXPECT_EQ(doubleValue(u"1e999"), Infinity);
}

TEST(ValueNumbers, ComeFromNumbersOfEveryKind) {
  for (const Any& value :
       {Any(7), Any(7U), Any(7LL), Any(7ULL), Any(7.5), Any(7.5F), Any::fromValue(7L),
        Any::fromValue(7UL), Any::fromValue(short(7)), Any::fromValue(uchar(7)),
        Any::fromValue(DecimalNumber(75, -1, false)), Any(u"7.5"_s)}) {
    EXPECT_EQ(longLongValueOf(value), 7) << value.typeName();
    EXPECT_EQ(intValueOf(value), 7) << value.typeName();
  }
  EXPECT_EQ(longLongValueOf(true), 1);
  EXPECT_EQ(floatValueOf(u"7.5"_s), 7.5F);
  EXPECT_EQ(floatValueOf(Any::fromValue(DecimalNumber(75, -1, true))), -7.5F);
}

TEST(ValueNumbers, AreMissingInEverythingElse) {
  for (const Any& value : {Any(), Any(QByteArray("7")), Any(QVariantList{7}), Any(QVariantMap())}) {
    EXPECT_EQ(longLongValueOf(value), std::nullopt);
    EXPECT_EQ(intValueOf(value), std::nullopt);
    EXPECT_EQ(floatValueOf(value), std::nullopt);
  }
}

TEST(ValueNumbers, KeepTheLowBitsOfWholeNumbers) {
  EXPECT_EQ(longLongValueOf(std::numeric_limits<qulonglong>::max()), -1);
  EXPECT_EQ(intValueOf(4294967297LL), 1);
  EXPECT_EQ(intValueOf(2147483648LL), Ints::min());
}

TEST(ValueNumbers, EndAtTheLimitsForFractions) {
  EXPECT_EQ(longLongValueOf(1e300), LongLongs::max());
  EXPECT_EQ(longLongValueOf(9223372036854775808.0), LongLongs::max());
  EXPECT_EQ(longLongValueOf(-9223372036854775808.0), LongLongs::min());
  EXPECT_EQ(longLongValueOf(-Infinity), LongLongs::min());
  EXPECT_EQ(longLongValueOf(std::nan("")), 0);
  EXPECT_EQ(intValueOf(2147483647.9), Ints::max());
  EXPECT_EQ(intValueOf(-2147483648.9), Ints::min());
  EXPECT_EQ(intValueOf(Infinity), Ints::max());
  EXPECT_EQ(intValueOf(std::nan("")), 0);
}

TEST(DescriptionOf, ShowsNumbersTextsAndKinds) {
  EXPECT_EQ(descriptionOf(-1), u"-1");
  EXPECT_EQ(descriptionOf(2.5), u"2.5");
  EXPECT_EQ(descriptionOf(u"two"_s), u"two");
  EXPECT_EQ(descriptionOf(Any::fromValue(DecimalNumber(15, -1, false))), u"1.5");
  EXPECT_EQ(descriptionOf(Any()), u"(null)");
  EXPECT_EQ(descriptionOf(QByteArray("x")), u"QByteArray");
}
