#include "zqticker/foundation_additions/string_additions.h"

#include "tests/support/scanners.h"
#include "zqticker/platform/text/Scanner.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq;
using zq::platform::CharacterSet;
using zq::platform::Scanner;
using zq::testing::scannerOf;
using zq::testing::unskipping;

TEST(CharacterAtScanLocation, IsTheCodeUnitThereWithoutSkipping) {
  EXPECT_EQ(characterAtScanLocation(scannerOf(u"abc"_s, 1)), u"b"_s);
  EXPECT_EQ(characterAtScanLocation(scannerOf(u" \na"_s)), u" "_s);
  EXPECT_EQ(characterAtScanLocation(scannerOf(u" \na"_s, 1)), u"\n"_s);
  EXPECT_EQ(characterAtScanLocation(scannerOf(u"\U0001F600"_s)), u"\xd83d"_s);
  EXPECT_EQ(characterAtScanLocation(scannerOf(u"\U0001F600"_s, 1)), u"\xde00"_s);
  EXPECT_EQ(characterAtScanLocation(scannerOf(QString(QChar(0)))), QString(QChar(0)));
}

TEST(CharacterAtScanLocation, IsNothingAtEnd) {
  EXPECT_EQ(characterAtScanLocation(scannerOf(QString())), std::nullopt);
  EXPECT_EQ(characterAtScanLocation(scannerOf(u"a"_s, 1)), std::nullopt);
  EXPECT_EQ(characterAtScanLocation(scannerOf(u"a \n"_s, 1)), std::nullopt);
  EXPECT_EQ(characterAtScanLocation(unskipping(u"a \n"_s, 1)), u" "_s);
  EXPECT_EQ(characterAtScanLocation(unskipping(u"a"_s, 1)), std::nullopt);
}

TEST(ScanCharacter, StoresOneCodeUnitAndMovesBehindIt) {
  Scanner scanner(u" a\U0001F600"_s);
  QString text;
  for (const auto& expected : {u" "_s, u"a"_s, u"\xd83d"_s, u"\xde00"_s}) {
    EXPECT_TRUE(scanCharacterIntoString(scanner, &text));
    EXPECT_EQ(text, expected);
  }
  EXPECT_EQ(scanner.scanLocation(), 4);
}

TEST(ScanCharacter, LeavesBothAtEnd) {
  QString text = u"kept"_s;
  Scanner scanner = scannerOf(u"a \n"_s, 1);
  EXPECT_FALSE(scanCharacterIntoString(scanner, &text));
  EXPECT_EQ(text, u"kept"_s);
  EXPECT_EQ(scanner.scanLocation(), 1);
}

TEST(ScanCharacter, NeedNotBeStored) {
  Scanner scanner(u"ab"_s);
  EXPECT_TRUE(scanCharacterIntoString(scanner, nullptr));
  EXPECT_EQ(scanner.scanLocation(), 1);
}

TEST(AdvanceOfAScanner, MovesByOneUnlessAtEnd) {
  Scanner scanner(u" a "_s);
  EXPECT_TRUE(advance(scanner));
  EXPECT_TRUE(advance(scanner));
  EXPECT_FALSE(advance(scanner));
  EXPECT_EQ(scanner.scanLocation(), 2);
  scanner.setCharactersToBeSkipped(std::nullopt);
  EXPECT_TRUE(advance(scanner));
  EXPECT_FALSE(advance(scanner));
  EXPECT_EQ(scanner.scanLocation(), 3);
}

// Each asks whether it is at end: looked through every time, the spaces would take hours.
TEST(ScanCharacter, TakesLinearTimeThroughWhiteSpace) {
  constexpr qsizetype Length = 2'000'000;
  Scanner scanner(QString(Length, u' ') + u"x"_s);
  QString text;
  for (qsizetype i = 0; i <= Length; ++i)
    ASSERT_TRUE(scanCharacterIntoString(scanner, &text));
  EXPECT_EQ(text, u"x"_s);
  EXPECT_FALSE(advance(scanner));
}
