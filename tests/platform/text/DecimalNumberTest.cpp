#include "zqticker/platform/text/DecimalNumber.h"

#include "zqticker/platform/text/Scanner.h"

#include <gtest/gtest.h>

#include <QtCore/QVariant>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
// What the whole of `text` reads as, printed.
QString read(const QString& text) {
  DecimalNumber number = DecimalNumber::notANumber();
  EXPECT_EQ(DecimalNumber::readPrefix(text, number), text.size()) << text.toStdString();
  return number.description();
}

DecimalNumber decimal(const QString& text) {
  DecimalNumber number;
  DecimalNumber::readPrefix(text, number);
  return number;
}
} // namespace

TEST(DecimalNumber, IsZeroByDefault) {
  EXPECT_EQ(DecimalNumber().description(), u"0");
  EXPECT_EQ(DecimalNumber(), DecimalNumber(0, 5, true));
  EXPECT_FALSE(DecimalNumber().isNaN());
}

TEST(DecimalNumber, KeepsAllItsDigits) {
  EXPECT_EQ(read(u"99999999999999999999999999999999999999"_s),
            u"99999999999999999999999999999999999999");
  EXPECT_EQ(read(u"-0.00000000000000000001"_s), u"-0.00000000000000000001");
  EXPECT_EQ(DecimalNumber(15, -1, false).description(), u"1.5");
  EXPECT_EQ(DecimalNumber(15, 2, true).description(), u"-1500");
}

TEST(DecimalNumber, ReadsSignPointAndExponent) {
  EXPECT_EQ(read(u"+12.50"_s), u"12.5");
  EXPECT_EQ(read(u".5"_s), u"0.5");
  EXPECT_EQ(read(u"5."_s), u"5");
  EXPECT_EQ(read(u"1.5e3"_s), u"1500");
  EXPECT_EQ(read(u"1.5E-3"_s), u"0.0015");
  EXPECT_EQ(read(u"-0"_s), u"0");
}

TEST(DecimalNumber, ReadsTheLongestPrefix) {
  DecimalNumber number;
  EXPECT_EQ(DecimalNumber::readPrefix(u"1.5.5", number), 3);
  EXPECT_EQ(number.description(), u"1.5");
  EXPECT_EQ(DecimalNumber::readPrefix(u"7e+x", number), 1);
  EXPECT_EQ(number.description(), u"7");
  EXPECT_EQ(DecimalNumber::readPrefix(u"8,5", number), 1);
  EXPECT_EQ(number.description(), u"8");
}

TEST(DecimalNumber, LeavesTheResultAloneWhereThereIsNoNumber) {
  DecimalNumber number(7, 0, false);
  for (const QStringView text : {u"", u"-", u"+", u".", u"-.", u"e5", u" 1", u"\u0663", u"nan"})
    EXPECT_EQ(DecimalNumber::readPrefix(text, number), 0);
  EXPECT_EQ(number, DecimalNumber(7, 0, false));
}

TEST(DecimalNumber, IgnoresLeadingZerosAndCountsLeadingDecimals) {
  EXPECT_EQ(read(QString(100, u'0') + u"1"_s), u"1");
  EXPECT_EQ(read(u"0."_s + QString(100, u'0') + u"1e101"_s), u"1");
}

TEST(DecimalNumber, Rounds38DigitsAndHalvesAwayFromZero) {
  const QString nines(37, u'9');
  EXPECT_EQ(read(nines + u"8.4999"_s), nines + u"8"_s);
  EXPECT_EQ(read(nines + u"8.5"_s), nines + u"9"_s);
  EXPECT_EQ(read(u"-"_s + nines + u"8.5"_s), u"-"_s + nines + u"9"_s);
  EXPECT_EQ(read(nines + u"9.5"_s), u"1"_s + QString(38, u'0'));
}

TEST(DecimalNumber, IsZeroBelowItsRangeAndNotANumberBeyond) {
  EXPECT_EQ(read(u"1e-128"_s).size(), 130);
  EXPECT_EQ(read(u"5e-129"_s), read(u"1e-128"_s));
  EXPECT_EQ(read(u"4e-129"_s), u"0");
  EXPECT_EQ(read(u"1e-130"_s), u"0");
  EXPECT_EQ(read(u"9e164"_s).size(), 165);
  EXPECT_EQ(read(u"9e165"_s), u"NaN");
  EXPECT_EQ(read(u"1e99999999999999999999999"_s), u"NaN");
  EXPECT_EQ(read(u"1e-99999999999999999999999"_s), u"0");
  EXPECT_EQ(read(u"0e99999999999999999999999"_s), u"0");
}

TEST(DecimalNumber, ReadsMillionsOfDigits) {
  const QString digits(3'000'000, u'1');
  EXPECT_EQ(read(u"0."_s + digits), u"0."_s + QString(38, u'1'));
  EXPECT_EQ(read(digits + u"e-2999999"_s), u"1."_s + QString(37, u'1'));
}

TEST(DecimalNumber, MultipliesExactlyWhereTheDigitsSuffice) {
  EXPECT_EQ(decimal(u"3.14159"_s).multipliedBy(DecimalNumber(1024, 0, false)).description(),
            u"3216.98816");
  EXPECT_EQ(decimal(u"-2"_s).multipliedBy(decimal(u"-0.5"_s)), DecimalNumber(1, 0, false));
  EXPECT_EQ(decimal(u"-2"_s).multipliedBy(DecimalNumber()), DecimalNumber());
}

TEST(DecimalNumber, RoundsProducts) {
  // 66666666666666666666666666666666666667 × 1.5 = …000.5
  EXPECT_EQ(decimal(u"66666666666666666666666666666666666667"_s).multipliedBy(decimal(u"1.5"_s)),
            decimal(u"100000000000000000000000000000000000000"_s));
  const DecimalNumber large = decimal(u"99999999999999999999999999999999999999e127"_s);
  EXPECT_TRUE(large.multipliedBy(DecimalNumber(10, 0, false)).isNaN());
  EXPECT_TRUE(large.multipliedBy(DecimalNumber::notANumber()).isNaN());
}

TEST(DecimalNumber, EqualsByValue) {
  EXPECT_EQ(decimal(u"1.50"_s), decimal(u"1.5"_s));
  EXPECT_EQ(decimal(u"1e164"_s), decimal(u"10e163"_s));
  EXPECT_NE(decimal(u"1.5"_s), decimal(u"-1.5"_s));
  EXPECT_NE(DecimalNumber(), DecimalNumber::notANumber());
  EXPECT_EQ(QVariant::fromValue(decimal(u"2.0"_s)), QVariant::fromValue(decimal(u"2"_s)));
}

TEST(DecimalNumber, ConvertsToOtherNumbers) {
  EXPECT_EQ(decimal(u"0.1"_s).doubleValue(), 0.1);
  EXPECT_EQ(decimal(u"1.00000005960464477540"_s).floatValue(), 1.00000012F);
  EXPECT_EQ(decimal(u"-7.99"_s).longLongValue(), -7);
  EXPECT_EQ(decimal(u"1e30"_s).longLongValue(), std::numeric_limits<qlonglong>::max());
  EXPECT_EQ(DecimalNumber::notANumber().longLongValue(), 0);
  EXPECT_TRUE(qIsNaN(DecimalNumber::notANumber().doubleValue()));
}

TEST(Scanner, ReadsDecimalNumbersBehindWhatIsSkipped) {
  Scanner scanner(u" \n 1.25e1 -3x"_s);
  DecimalNumber number;
  EXPECT_TRUE(scanner.scanDecimal(&number));
  EXPECT_EQ(number, decimal(u"12.5"_s));
  EXPECT_TRUE(scanner.scanDecimal());
  EXPECT_EQ(scanner.scanLocation(), 12);
  EXPECT_FALSE(scanner.scanDecimal(&number));
  EXPECT_EQ(number, decimal(u"12.5"_s));
  EXPECT_EQ(scanner.scanLocation(), 12);
}
