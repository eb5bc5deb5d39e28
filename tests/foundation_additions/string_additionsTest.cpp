#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/foundation_additions/random_string_p.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/CharacterSet.h"

#include <gtest/gtest.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

#include <ctime>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq;
using zq::platform::CharacterSet;
using zq::platform::InvalidArgumentException;
using zq::platform::RangeException;

namespace {

CharacterSet setOf(const QString& characters) {
  return CharacterSet::characterSetWithCharactersInString(characters);
}

const CharacterSet& whitespace = CharacterSet::whitespaceCharacterSet();
const CharacterSet& letters = CharacterSet::letterCharacterSet();

} // namespace

TEST(RandomString, HasItsLengthAndOnlyTheCharactersGiven) {
  const QString characters = u"ab\U0001F600"_s;
  const QString string = randomStringOfLength(10'000, characters);
  EXPECT_EQ(string.size(), 10'000);
  for (const QChar c : characters)
    EXPECT_NEAR(double(string.count(c)), 2500, 300);
  EXPECT_EQ(string.count(u'a') + string.count(u'b') + string.count(characters[2]) +
                string.count(characters[3]),
            10'000);
  EXPECT_EQ(randomStringOfLength(5, u"a"_s), u"aaaaa"_s);
}

TEST(RandomString, OfNoLengthIsEmptyWhateverItIsDrawnFrom) {
  EXPECT_EQ(randomStringOfLength(0, u"abc"_s), QString());
  EXPECT_EQ(randomStringOfLength(0, QString()), QString());
}

TEST(RandomString, NeedsCharactersToDrawFrom) {
  EXPECT_THROW(randomStringOfLength(1, QString()), InvalidArgumentException);
}

TEST(RandomString, RefusesALengthThatNoStringHas) {
  EXPECT_THROW(randomStringOfLength(std::numeric_limits<std::size_t>::max(), u"a"_s),
               RangeException);
  EXPECT_THROW(randomStringOfLength(std::numeric_limits<std::size_t>::max() / 2, u"a"_s),
               RangeException);
}

TEST(RandomString, IsTheSameWithinASecond) {
  const QString characters = u"0123456789abcdef"_s;
  QString first;
  QString second;
  std::time_t before = 0;
  do {
    before = std::time(nullptr);
    first = randomStringOfLength(40, characters);
    second = randomStringOfLength(40, characters);
  } while (std::time(nullptr) != before);
  EXPECT_EQ(first, second);
  EXPECT_EQ(first, randomString(40, characters, std::uint32_t(before)));
  EXPECT_EQ(first.first(7), randomString(7, characters, std::uint32_t(before)));
  EXPECT_NE(first, randomString(40, characters, std::uint32_t(before) + 1));
}

TEST(UniqueString, IsACanonicalUuidThatDiffersEveryTime) {
  const QRegularExpression canonical(
      u"^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\z"_s);
  QSet<QString> all;
  for (int i = 0; i < 1000; ++i) {
    const QString string = uniqueString();
    EXPECT_TRUE(canonical.match(string).hasMatch()) << string.toStdString();
    all.insert(string);
  }
  EXPECT_EQ(all.size(), 1000);
}

TEST(ValidString, IsTheVeryStringOrEmptyForNothing) {
  const QString string(3, u'x');
  EXPECT_EQ(validStringFromString(string).constData(), string.constData());
  EXPECT_EQ(validStringFromString(std::nullopt), u""_s);
  EXPECT_EQ(validStringFromString(u""_s), u""_s);
}

TEST(EmptyString, IsOneWithoutCharacters) {
  for (const auto& string : {QString(), u""_s}) {
    EXPECT_TRUE(isEmptyString(string));
    EXPECT_FALSE(isValidString(string));
  }
  for (const auto& string : {u" "_s, u"\n"_s, u"\u200b"_s, u"\xd83d"_s, QString(QChar(0))}) {
    EXPECT_FALSE(isEmptyString(string));
    EXPECT_TRUE(isValidString(string));
  }
}

TEST(LastCharacter, IsTheLastCodeUnitOrNothing) {
  EXPECT_EQ(lastCharacter(QString()), std::nullopt);
  EXPECT_EQ(lastCharacter(u"ab"_s), u"b"_s);
  EXPECT_EQ(lastCharacter(u"e\u0301"_s), u"\u0301"_s);
  EXPECT_EQ(lastCharacter(u"\U0001F600"_s), u"\xde00"_s);
  EXPECT_EQ(lastCharacter(u"a\n"_s), u"\n"_s);
}

TEST(TrimmingWhitespace, TakesSpacesAndTabsOffBothEndsButNoLineEnds) {
  EXPECT_EQ(stringByTrimmingWhitespace(u" \t\u00a0\u3000a b\u2003 "_s), u"a b"_s);
  EXPECT_EQ(stringByTrimmingWhitespace(u" \n a \r "_s), u"\n a \r"_s);
  for (const auto& kept : {u"\n"_s, u"\r\n"_s, u"\u000b"_s, u"\u000c"_s, u"\u0085"_s, u"\u2028"_s,
                           u"\u2029"_s, u"\u200b"_s, u"\ufeff"_s, u"\u180e"_s, u""_s})
    EXPECT_EQ(stringByTrimmingWhitespace(u" "_s + kept + u"\t"_s), kept);
  EXPECT_EQ(stringByTrimmingWhitespace(u" \t "_s), QString());
  const QString untouched(3, u'x');
  EXPECT_EQ(stringByTrimmingWhitespace(untouched).constData(), untouched.constData());
}

TEST(ReplacingCharacters, PutsOneCopyInPlaceOfEveryRun) {
  EXPECT_EQ(stringByReplacingCharactersInSet(u"a--b-c"_s, setOf(u"-"_s), u"+"_s), u"a+b+c"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"--a--"_s, setOf(u"-"_s), u"<>"_s), u"<>a<>"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"a-_-b"_s, setOf(u"-_"_s), QString()), u"ab"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"abc"_s, CharacterSet(), u"+"_s), u"abc"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(QString(), letters, u"+"_s), QString());
  EXPECT_EQ(stringByReplacingCharactersInSet(u"abc"_s, letters, u"abc"_s), u"abc"_s);
}

TEST(ReplacingCharacters, DropsWhiteSpaceAtTheStartAndBehindRuns) {
  const CharacterSet hyphen = setOf(u"-"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u" \n a b- \u2029c - d "_s, hyphen, u"+"_s),
            u"a b+c +d "_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u" - "_s, hyphen, u"+"_s), u"+"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u" \t\n"_s, hyphen, u"+"_s), QString());
  EXPECT_EQ(stringByReplacingCharactersInSet(u"- -"_s, hyphen, u"+"_s), u"++"_s);
}

TEST(ReplacingCharacters, WhiteSpaceOfTheSetIsPartOfARun) {
  EXPECT_EQ(stringByReplacingCharactersInSet(u" a b "_s, whitespace, u"_"_s), u"_a_b_"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"a \n b"_s, whitespace, u"_"_s), u"a__b"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"\n a"_s, whitespace, u"_"_s), u"_a"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"- -"_s, setOf(u" -"_s), u"_"_s), u"_"_s);
}

TEST(ReplacingCharacters, TakesPairsAsOneCharacter) {
  EXPECT_EQ(stringByReplacingCharactersInSet(u"a\U0001F600b"_s, setOf(u"\U0001F600"_s), u"+"_s),
            u"a+b"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"a\U0001F600b"_s, setOf(u"\U0001F601"_s), u"+"_s),
            u"a\U0001F600b"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"a\xd83d z\xde00"_s, setOf(u"\xd83d"_s), u"+"_s),
            u"a+z\xde00"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"\U0001D400x1"_s, letters, u"+"_s), u"+1"_s);
}

TEST(ReplacingCharacters, MayMakeTheStringLonger) {
  const QString replacement(1000, u'+');
  EXPECT_EQ(
      stringByReplacingCharactersInSet(u"-a"_s.repeated(50) + u"b"_s, setOf(u"-"_s), replacement),
      QString(replacement + u"a"_s).repeated(50) + u"b"_s);
}

TEST(ReplacingCharacters, KeepsNoRoomForWhatItDropped) {
  const QString string = u"a"_s + QString(1 << 20, u'-');
  EXPECT_LT(stringByReplacingCharactersInSet(string, setOf(u"-"_s), QString()).capacity(), 1000);
}

TEST(ReplacingCharacters, TakesLinearTime) {
  constexpr qsizetype Length = 50 << 20;
  constexpr qsizetype Pieces = 2 << 20;
  const QString spaces(Length, u' ');
  EXPECT_EQ(stringByReplacingCharactersInSet(spaces, letters, u"+"_s), QString());
  EXPECT_EQ(stringByReplacingCharactersInSet(spaces, whitespace, u"+"_s), u"+"_s);
  EXPECT_EQ(stringByReplacingCharactersInSet(u"-a"_s.repeated(Pieces), setOf(u"-"_s), u"+"_s),
            u"+a"_s.repeated(Pieces));
}

TEST(Ellipsis, IsOneCharacterBehindTheString) {
  EXPECT_EQ(stringByAppendingEllipsis(QString()), u"\u2026"_s);
  EXPECT_EQ(stringByAppendingEllipsis(u"a "_s), u"a \u2026"_s);
}
