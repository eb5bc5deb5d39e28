#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtCore/QLocale>

#include <utility>

using namespace Qt::StringLiterals;
using namespace zq;
using zq::platform::InvalidArgumentException;

namespace {

const QString nul = QString(QChar(0));

std::optional<QByteArray> bytes(const char* hexadecimal) {
  return QByteArray::fromHex(hexadecimal);
}

} // namespace

TEST(UnsignedLongValue, IsTheIntegerThatTheStringBeginsWith) {
  for (const auto& [string, value] :
       {std::pair(u"42"_s, 42UL), std::pair(u"+5"_s, 5UL), std::pair(u"  7x"_s, 7UL),
        std::pair(u" \n\u00a0\u20287"_s, 7UL), std::pair(u"007"_s, 7UL), std::pair(u"42-"_s, 42UL),
        std::pair(u"1.9"_s, 1UL), std::pair(u"0x10"_s, 0UL), std::pair(u"1e3"_s, 1UL)})
    EXPECT_EQ(unsignedLongValue(string), value) << string.toStdString();
}

TEST(UnsignedLongValue, IsZeroWithoutAnInteger) {
  for (const auto& string : {u""_s, u"abc"_s, u" "_s, u"-"_s, u"+-1"_s, u"- 1"_s, u"x42"_s,
                             u"\u0664\u0662"_s, u"\uff14"_s, u"\xd83d"_s, u".5"_s})
    EXPECT_EQ(unsignedLongValue(string), 0UL) << string.toStdString();
}

TEST(UnsignedLongValue, IsZeroForNegativeNumbers) {
  EXPECT_EQ(unsignedLongValue(u"-1"_s), 0UL);
  EXPECT_EQ(unsignedLongValue(u"-9223372036854775808"_s), 0UL);
  EXPECT_EQ(unsignedLongValue(u"-99999999999999999999"_s), 0UL);
}

TEST(UnsignedLongValue, IsZeroBeyondItsRange) {
  const bool isWide = sizeof(unsigned long) > 4;
  EXPECT_EQ(unsignedLongValue(u"4294967295"_s), 4294967295UL);
  EXPECT_EQ(unsignedLongValue(u"4294967296"_s), isWide ? 4294967296ULL : 0);
  EXPECT_EQ(unsignedLongValue(u"9223372036854775807"_s), isWide ? 9223372036854775807ULL : 0);
  EXPECT_EQ(unsignedLongValue(u"9223372036854775808"_s), 0UL);
  EXPECT_EQ(unsignedLongValue(u"18446744073709551615"_s), 0UL);
  EXPECT_EQ(unsignedLongValue(u"18446744073709551617"_s), 0UL);
  EXPECT_EQ(unsignedLongValue(QString(50 << 20, u'9')), 0UL);
}

TEST(UnsignedLongValue, DoesNotDependOnTheLocale) {
  const QLocale before;
  QLocale::setDefault(QLocale(QLocale::German));
  EXPECT_EQ(unsignedLongValue(u"1.000"_s), 1UL);
  QLocale::setDefault(before);
}

TEST(BoolValue, IsFalseForZeroAlone) {
  EXPECT_FALSE(boolValue(u"0"_s));
  for (const auto& string : {u""_s, u"1"_s, u"yes"_s, u"YES"_s, u"NO"_s, u"no"_s, u"false"_s,
                             u"true"_s, u"00"_s, u" 0"_s, u"0 "_s, u"0.0"_s, u"-0"_s, u"\u0660"_s})
    EXPECT_TRUE(boolValue(string)) << string.toStdString();
  EXPECT_TRUE(boolValue(u"0"_s + nul));
  EXPECT_TRUE(boolValue(QString()));
}

TEST(HexValue, IsTheBytesSpelt) {
  EXPECT_EQ(hexValue(u"0aFF"_s), bytes("0aff"));
  EXPECT_EQ(hexValue(u"0123456789abcdefABCDEF"_s), bytes("0123456789abcdefabcdef"));
  EXPECT_EQ(hexValue(u"00"_s), QByteArray(1, '\0'));
}

TEST(HexValue, IsNothingForTheEmptyString) {
  EXPECT_EQ(hexValue(QString()), std::nullopt);
  EXPECT_EQ(hexValue(u""_s), std::nullopt);
}

TEST(HexValue, AnOddDigitIsTheLowHalfOfTheLastByte) {
  EXPECT_EQ(hexValue(u"ABC"_s), bytes("ab0c"));
  EXPECT_EQ(hexValue(u"F"_s), bytes("0f"));
}

TEST(HexValue, OtherCharactersCountAsZero) {
  EXPECT_EQ(hexValue(u"zz"_s), bytes("00"));
  EXPECT_EQ(hexValue(u"g"_s), bytes("00"));
  EXPECT_EQ(hexValue(u"@A`a/0:9G1\u007ff"_s), bytes("0a0a0009010f"));
  EXPECT_EQ(hexValue(u"0x1F"_s), bytes("001f"));
  EXPECT_EQ(hexValue(u" 1 2"_s), bytes("0102"));
}

TEST(HexValue, IsReadUpToTheFirstNulAndZeroBehind) {
  EXPECT_EQ(hexValue(nul + u"ff"_s), bytes("0000"));
  EXPECT_EQ(hexValue(nul), bytes("00"));
  EXPECT_EQ(hexValue(u"ff"_s + nul + u"fff"_s), bytes("ff0000"));
  EXPECT_EQ(hexValue(u"fff"_s + nul + u"ff"_s), bytes("ff0f00"));
}

TEST(HexValue, RefusesCharactersOutsideAscii) {
  for (const auto& string : {u"\u0080"_s, u"ff\u00e9"_s, u"f\uff11"_s, u"\xd83d"_s, u"abc\u0661"_s})
    EXPECT_THROW(hexValue(string), InvalidArgumentException);
  EXPECT_THROW(hexValue(nul + u"\u00e9"_s), InvalidArgumentException);
  EXPECT_THROW(hexValue(u"ff"_s + nul + u"\u0100"_s), InvalidArgumentException);
}

TEST(HexValue, TakesLongStrings) {
  constexpr qsizetype Count = 25 << 20;
  EXPECT_EQ(hexValue(u"5A"_s.repeated(Count)), QByteArray(Count, 'Z'));
}
