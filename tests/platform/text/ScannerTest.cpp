#include "zqticker/platform/text/Scanner.h"

#include "tests/support/scanners.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using zq::platform::CharacterSet;
using zq::platform::RangeException;
using zq::platform::Scanner;
using zq::testing::scannerOf;
using zq::testing::unskipping;

namespace {

CharacterSet setOf(const QString& characters) {
  return CharacterSet::characterSetWithCharactersInString(characters);
}

} // namespace

TEST(Scanner, BeginsAtTheStartAndSkipsWhiteSpaceAndNewlines) {
  const Scanner scanner(u" a"_s);
  EXPECT_EQ(scanner.string(), u" a"_s);
  EXPECT_EQ(scanner.scanLocation(), 0);
  EXPECT_EQ(scanner.charactersToBeSkipped(), CharacterSet::whitespaceAndNewlineCharacterSet());
}

TEST(Scanner, IsAtEndWhereOnlySkippedCharactersRemain) {
  EXPECT_TRUE(Scanner(QString()).isAtEnd());
  EXPECT_TRUE(Scanner(u" \t\n\u000b\u000c\r\u0085\u00a0\u2028\u2029"_s).isAtEnd());
  EXPECT_FALSE(Scanner(u" \u200b"_s).isAtEnd());
  EXPECT_FALSE(unskipping(u" "_s).isAtEnd());
  EXPECT_TRUE(unskipping(u" "_s, 1).isAtEnd());
  Scanner scanner(u"  xx"_s);
  scanner.setCharactersToBeSkipped(setOf(u"x "_s));
  EXPECT_TRUE(scanner.isAtEnd());
  EXPECT_EQ(scanner.scanLocation(), 0);
}

TEST(Scanner, LooksAgainWhenOtherCharactersAreSkipped) {
  Scanner scanner(u"  x"_s);
  EXPECT_FALSE(scanner.isAtEnd());
  scanner.setCharactersToBeSkipped(setOf(u" x"_s));
  EXPECT_TRUE(scanner.isAtEnd());
  scanner.setScanLocation(3);
  EXPECT_TRUE(scanner.isAtEnd());
  scanner.setCharactersToBeSkipped(setOf(u"y"_s));
  scanner.setScanLocation(0);
  EXPECT_TRUE(scanner.scanString(u" "));
}

TEST(Scanner, TakesOnlyLocationsWithinTheString) {
  Scanner scanner(u"ab"_s);
  scanner.setScanLocation(2);
  EXPECT_THROW(scanner.setScanLocation(3), RangeException);
  EXPECT_THROW(scanner.setScanLocation(-1), RangeException);
  EXPECT_EQ(scanner.scanLocation(), 2);
}

TEST(Scanner, SkipsBeforeItScansAndStoresOnlyWhatItScanned) {
  QString text = u"kept"_s;
  Scanner scanner(u"  abc 1 <> 12"_s);
  EXPECT_TRUE(scanner.scanCharactersFromSet(CharacterSet::letterCharacterSet(), &text));
  EXPECT_EQ(text, u"abc"_s);
  EXPECT_EQ(scanner.scanLocation(), 5);
  EXPECT_TRUE(scanner.scanUpToCharactersFromSet(setOf(u"<"_s), &text));
  EXPECT_EQ(text, u"1 "_s);
  EXPECT_TRUE(scanner.scanUpToString(u">", &text));
  EXPECT_EQ(text, u"<"_s);
  EXPECT_TRUE(scanner.scanString(u">", &text));
  EXPECT_EQ(text, u">"_s);
  qint64 value = 0;
  EXPECT_TRUE(scanner.scanLongLong(&value));
  EXPECT_EQ(value, 12);
  EXPECT_TRUE(scanner.isAtEnd());
}

TEST(Scanner, AScanThatConsumesNothingChangesNothing) {
  QString text = u"kept"_s;
  QStringView view = text;
  qint64 value = 7;
  bool isOutOfRange = true;
  Scanner scanner(u"  -x"_s);
  EXPECT_FALSE(scanner.scanCharactersFromSet(CharacterSet::letterCharacterSet(), &text));
  EXPECT_FALSE(scanner.scanCharactersFromSet(CharacterSet::letterCharacterSet(), &view));
  EXPECT_FALSE(scanner.scanUpToCharactersFromSet(setOf(u"-"_s), &text));
  EXPECT_FALSE(scanner.scanUpToCharactersFromSet(setOf(u"-"_s), &view));
  EXPECT_FALSE(scanner.scanString(u"x", &text));
  EXPECT_FALSE(scanner.scanString(u"", &text));
  EXPECT_FALSE(scanner.scanString(u"-xy", &text));
  EXPECT_FALSE(scanner.scanUpToString(u"-x", &text));
  EXPECT_FALSE(scanner.scanUpToString(u"-x", &view));
  EXPECT_FALSE(scanner.scanLongLong(&value, &isOutOfRange));
  EXPECT_EQ(text, u"kept"_s);
  EXPECT_EQ(view, u"kept");
  EXPECT_EQ(value, 7);
  EXPECT_TRUE(isOutOfRange);
  EXPECT_EQ(scanner.scanLocation(), 0);
}

TEST(Scanner, FindsNothingAtTheEnd) {
  Scanner scanner(u"a \n"_s);
  EXPECT_TRUE(scanner.scanString(u"a"));
  EXPECT_FALSE(scanner.scanUpToString(u"x"));
  EXPECT_FALSE(scanner.scanUpToCharactersFromSet(setOf(u"x"_s)));
  EXPECT_FALSE(scanner.scanCharactersFromSet(setOf(u" \n"_s)));
  EXPECT_FALSE(scanner.scanLongLong());
  EXPECT_EQ(scanner.scanLocation(), 1);
}

TEST(Scanner, ScansToTheEndWhereNothingStopsIt) {
  QString text;
  EXPECT_TRUE(Scanner(u" ab "_s).scanUpToString(u"b c", &text));
  EXPECT_EQ(text, u"ab "_s);
  EXPECT_TRUE(Scanner(u" ab "_s).scanUpToString(u"", &text));
  EXPECT_EQ(text, u"ab "_s);
  EXPECT_TRUE(Scanner(u" ab "_s).scanUpToCharactersFromSet(CharacterSet(), &text));
  EXPECT_EQ(text, u"ab "_s);
}

TEST(Scanner, EveryCharacterCountsWhereNoneIsSkipped) {
  QString text;
  Scanner scanner = unskipping(u" \n1"_s);
  EXPECT_FALSE(scanner.scanLongLong());
  EXPECT_TRUE(scanner.scanUpToString(u"1", &text));
  EXPECT_EQ(text, u" \n"_s);
  EXPECT_TRUE(scanner.scanLongLong());
}

TEST(Scanner, ComparesStringsByCodeUnit) {
  EXPECT_FALSE(Scanner(u"ABC"_s).scanString(u"abc"));
  EXPECT_FALSE(Scanner(u"e\u0301"_s).scanString(u"\u00e9"));
  EXPECT_TRUE(Scanner(u"\U0001F600"_s).scanString(u"\xd83d"_s));
}

TEST(Scanner, StoresViewsOfItsString) {
  QStringView text;
  Scanner scanner(u" ab,"_s);
  EXPECT_TRUE(scanner.scanUpToString(u",", &text));
  EXPECT_EQ(text.utf16(), QStringView(scanner.string()).utf16() + 1);
  EXPECT_EQ(text.size(), 2);
}

TEST(Scanner, SkipsPairsAndTheirHalvesAsTheCharactersThatTheyAre) {
  Scanner pairs(u"\U0001F600\U0001F600x"_s);
  pairs.setCharactersToBeSkipped(setOf(u"\U0001F600"_s));
  EXPECT_TRUE(pairs.scanString(u"x"));
  pairs.setScanLocation(1);
  EXPECT_FALSE(pairs.scanString(u"x"));
  EXPECT_TRUE(pairs.scanString(u"\xde00"_s));
  EXPECT_TRUE(pairs.scanString(u"x"));

  Scanner others(u"\U0001F600\U0001F600x"_s);
  others.setCharactersToBeSkipped(setOf(u"x"_s).invertedSet());
  for (qsizetype location = 0; location <= 4; ++location) {
    others.setScanLocation(location);
    EXPECT_TRUE(others.scanString(u"x")) << location;
  }
  others.setCharactersToBeSkipped(setOf(u"x"_s).invertedSet().intersectionWithCharacterSet(
      setOf(u"\U0001F600"_s).invertedSet()));
  others.setScanLocation(1);
  EXPECT_TRUE(others.scanString(u"\U0001F600"_s));
}

TEST(Scanner, ReadsIntegersUpToTheEndsOf64Bits) {
  qint64 value = 0;
  bool isOutOfRange = true;
  for (const auto& [text, expected] :
       {std::pair(u"0"_s, qint64(0)), std::pair(u"+5"_s, qint64(5)), std::pair(u"-0"_s, qint64(0)),
        std::pair(u" \n007x"_s, qint64(7)), std::pair(u"1-2"_s, qint64(1)),
        std::pair(u"9223372036854775807"_s, std::numeric_limits<qint64>::max()),
        std::pair(u"-9223372036854775808"_s, std::numeric_limits<qint64>::min())}) {
    EXPECT_TRUE(Scanner(text).scanLongLong(&value, &isOutOfRange)) << text.toStdString();
    EXPECT_EQ(value, expected);
    EXPECT_FALSE(isOutOfRange);
  }
}

TEST(Scanner, ReadsIntegersBeyond64BitsAsTheNearest) {
  qint64 value = 0;
  bool isOutOfRange = false;
  for (const auto& digits : {u"9223372036854775808"_s, u"9223372036854775810"_s,
                             u"18446744073709551616"_s, QString(1000, u'9')}) {
    Scanner scanner(digits + u"x"_s);
    EXPECT_TRUE(scanner.scanLongLong(&value, &isOutOfRange));
    EXPECT_EQ(value, std::numeric_limits<qint64>::max());
    EXPECT_TRUE(isOutOfRange);
    EXPECT_EQ(scanner.scanLocation(), digits.size());
  }
  EXPECT_TRUE(Scanner(u"-9223372036854775809"_s).scanLongLong(&value, &isOutOfRange));
  EXPECT_EQ(value, std::numeric_limits<qint64>::min());
  EXPECT_TRUE(isOutOfRange);
}

TEST(Scanner, ReadsNoIntegerFromSignsAloneOrOtherDigits) {
  for (const auto& text : {u"-"_s, u"+"_s, u"+-1"_s, u"- 1"_s, u"\u0663"_s, u"\uff15"_s, u"x1"_s,
                           u".5"_s, u"\u22125"_s}) {
    Scanner scanner(text);
    EXPECT_FALSE(scanner.scanLongLong()) << text.toStdString();
    EXPECT_EQ(scanner.scanLocation(), 0);
  }
}

// Skipped again at every look, they would take hours.
TEST(Scanner, PassesManySkippedCharactersInLinearTime) {
  constexpr qsizetype Length = 2'000'000;
  Scanner scanner(QString(Length, u' ') + u"x"_s);
  for (qsizetype i = 0; i < Length; ++i) {
    scanner.setScanLocation(i);
    ASSERT_FALSE(scanner.isAtEnd());
    ASSERT_FALSE(scanner.scanLongLong());
  }
  EXPECT_TRUE(scanner.scanString(u"x"));
}

TEST(Scanner, PassesSkippedPairsInLinearTime) {
  constexpr qsizetype Count = 1'000'000;
  Scanner scanner(u"\U0001F600"_s.repeated(Count) + u"x"_s);
  scanner.setCharactersToBeSkipped(setOf(u"x"_s).invertedSet());
  for (qsizetype i = 0; i < 2 * Count; ++i) {
    scanner.setScanLocation(i);
    ASSERT_FALSE(scanner.isAtEnd());
  }
}
