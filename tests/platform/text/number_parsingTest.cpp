#include "zqticker/platform/text/number_parsing.h"

#include <gtest/gtest.h>

#include <QtCore/QLocale>
#include <QtCore/QString>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using zq::platform::floatValue;

TEST(FloatValue, ReadsTheLongestNumericPrefix) {
  EXPECT_EQ(floatValue(u"12.5abc"), 12.5F);
  EXPECT_EQ(floatValue(u"+.5e1x"), 5.0F);
  EXPECT_EQ(floatValue(u"-7."), -7.0F);
  EXPECT_EQ(floatValue(u"1.5.5"), 1.5F);
}

TEST(FloatValue, IsZeroWithoutANumericPrefix) {
  for (const auto& text : {u""_s, u"abc"_s, u"."_s, u"-"_s, u"+"_s, u"e5"_s, u"-.e1"_s, u"inf"_s,
                           u"nan"_s, u"+-1"_s, u"0x"_s})
    EXPECT_EQ(floatValue(text), 0.0F) << text.toStdString();
}

TEST(FloatValue, AnExponentWithoutDigitsDoesNotCount) {
  EXPECT_EQ(floatValue(u"3e"), 3.0F);
  EXPECT_EQ(floatValue(u"3e+"), 3.0F);
  EXPECT_EQ(floatValue(u"3e-x"), 3.0F);
}

TEST(FloatValue, SkipsLeadingWhiteSpace) {
  EXPECT_EQ(floatValue(u" \t\n\u00a0 8"), 8.0F);
  EXPECT_EQ(floatValue(u"   "), 0.0F);
}

TEST(FloatValue, IsReadInSinglePrecisionDirectly) {
  // Read as a double first, this would round to 1 and then stay there.
  EXPECT_EQ(floatValue(u"1.00000005960464477540"), std::nextafter(1.0F, 2.0F));
  EXPECT_EQ(floatValue(u"0.1"), 0.1F);
}

TEST(FloatValue, BeyondTheRangeIsInfiniteOrZeroWithItsSign) {
  EXPECT_EQ(floatValue(u"1e39"), std::numeric_limits<float>::infinity());
  EXPECT_EQ(floatValue(u"-1e4000"), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(floatValue(u"1e-4000"), 0.0F);
  EXPECT_TRUE(std::signbit(floatValue(u"-1e-60")));
}

TEST(FloatValue, DoesNotDependOnTheLocale) {
  const QLocale before;
  QLocale::setDefault(QLocale(QLocale::German));
  EXPECT_EQ(floatValue(u"1.5"), 1.5F);
  EXPECT_EQ(floatValue(u"1,5"), 1.0F);
  QLocale::setDefault(before);
}

TEST(FloatValue, CountsAsciiDigitsOnly) {
  EXPECT_EQ(floatValue(u"\u0665"), 0.0F);
  EXPECT_EQ(floatValue(u"5\u0665"), 5.0F);
}
