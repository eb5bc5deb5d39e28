#include "zqticker/platform/text/CharacterSet.h"

#include <gtest/gtest.h>

#include <QtCore/QString>

using namespace Qt::StringLiterals;
using zq::platform::CharacterSet;

namespace {

CharacterSet setOf(const QString& characters) {
  return CharacterSet::characterSetWithCharactersInString(characters);
}

} // namespace

TEST(CharacterSet, IsEmptyAtFirst) {
  const CharacterSet set;
  for (char32_t c = 0; c <= 0x110000; ++c)
    ASSERT_FALSE(set.longCharacterIsMember(c)) << unsigned(c);
  EXPECT_EQ(set, setOf(QString()));
}

TEST(CharacterSet, LettersAreLettersAndMarksOnly) {
  const CharacterSet& letters = CharacterSet::letterCharacterSet();
  for (const char16_t c :
       u"aZ\u00e9\u01c5\u02b0\u05d0\u65e5\u0301\u0903\u20dd\ufe0f\u0345\u0131"_s.toStdU16String())
    EXPECT_TRUE(letters.characterIsMember(c)) << int(c);
  // Numbers, letter numbers, signs, joiners, halves of pairs.
  for (const char16_t c :
       u"09_-\u00b2\u00b7\u2167\u24b6\u20ac\u200d\u0000 \xd835\xdc00"_s.toStdU16String())
    EXPECT_FALSE(letters.characterIsMember(c)) << int(c);
  EXPECT_TRUE(letters.longCharacterIsMember(U'\U0001D400'));
  EXPECT_TRUE(letters.longCharacterIsMember(U'\U0002A6D6'));
  EXPECT_TRUE(letters.longCharacterIsMember(U'\U0001D165'));
  EXPECT_FALSE(letters.longCharacterIsMember(U'\U0001F600'));
  EXPECT_FALSE(letters.longCharacterIsMember(0x110000));
}

TEST(CharacterSet, WhitespaceIsSpacesAndTabWithoutLineEnds) {
  const QString members = u"\t \u00a0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008"
                          u"\u2009\u200a\u202f\u205f\u3000"_s;
  for (char32_t c = 0; c < 0x110000; ++c)
    ASSERT_EQ(CharacterSet::whitespaceCharacterSet().longCharacterIsMember(c),
              c < 0x10000 && members.contains(QChar(char16_t(c))))
        << unsigned(c);
}

TEST(CharacterSet, NewlinesEndLinesOrPages) {
  const QString members = u"\n\u000b\u000c\r\u0085\u2028\u2029"_s;
  for (char32_t c = 0; c < 0x110000; ++c)
    ASSERT_EQ(CharacterSet::newlineCharacterSet().longCharacterIsMember(c),
              c < 0x10000 && members.contains(QChar(char16_t(c))))
        << unsigned(c);
}

TEST(CharacterSet, WhitespaceAndNewlineIsBoth) {
  const CharacterSet& both = CharacterSet::whitespaceAndNewlineCharacterSet();
  for (char32_t c = 0; c < 0x110000; ++c)
    ASSERT_EQ(both.longCharacterIsMember(c),
              CharacterSet::whitespaceCharacterSet().longCharacterIsMember(c) ||
                  CharacterSet::newlineCharacterSet().longCharacterIsMember(c))
        << unsigned(c);
}

TEST(CharacterSet, DecimalDigitsAreThoseOfEveryScript) {
  const CharacterSet& digits = CharacterSet::decimalDigitCharacterSet();
  for (const char32_t c : U"09\u0663\uff15\U0001D7D8")
    EXPECT_EQ(digits.longCharacterIsMember(c), c != 0) << unsigned(c);
  for (const char32_t c : U"a\u00b2\u2167\u0bf0\u4e09")
    EXPECT_FALSE(digits.longCharacterIsMember(c)) << unsigned(c);
}

TEST(CharacterSet, OfAStringHasItsCodePoints) {
  const CharacterSet set = setOf(u"ca\U0001F600b\xde01"_s);
  for (char32_t c = 0; c < 0x110000; ++c)
    ASSERT_EQ(set.longCharacterIsMember(c),
              c == U'a' || c == U'b' || c == U'c' || c == 0x1F600 || c == 0xDE01)
        << unsigned(c);
  EXPECT_FALSE(set.characterIsMember(0xd83d));
  EXPECT_FALSE(set.characterIsMember(0xde00));
  EXPECT_EQ(set, setOf(u"\xde01\U0001F600bbcaa"_s));
  EXPECT_NE(set, setOf(u"\xde01\U0001F600bc"_s));
}

TEST(CharacterSet, OfAllCodeUnitsInAnyOrderHasThemAll) {
  QString all;
  for (int c = 0xffff; c >= 0; --c)
    all += QChar(char16_t(c));
  const CharacterSet set = setOf(all);
  for (char32_t c = 0; c <= 0xffff; ++c)
    ASSERT_TRUE(set.longCharacterIsMember(c)) << unsigned(c);
  EXPECT_FALSE(set.longCharacterIsMember(0x10000));
}

TEST(CharacterSet, InvertedHasTheOthers) {
  const CharacterSet set = setOf(u"\u0000a\U0001F600\uffff"_s);
  const CharacterSet inverted = set.invertedSet();
  for (char32_t c = 0; c < 0x110000; ++c)
    ASSERT_NE(inverted.longCharacterIsMember(c), set.longCharacterIsMember(c)) << unsigned(c);
  EXPECT_FALSE(inverted.longCharacterIsMember(0x110000));
  EXPECT_TRUE(inverted.characterIsMember(0xd83d));
  EXPECT_EQ(inverted.invertedSet(), set);
  EXPECT_EQ(CharacterSet().invertedSet().invertedSet(), CharacterSet());
}

TEST(CharacterSet, UnionAndIntersectionHaveWhatEitherAndWhatBothHave) {
  const CharacterSet a = setOf(u"abcxyz\U0001F600\U0001F601"_s);
  const CharacterSet b = setOf(u"bcdz0\U0001F601\U0001F602"_s);
  EXPECT_EQ(a.unionWithCharacterSet(b), setOf(u"0abcdxyz\U0001F600\U0001F601\U0001F602"_s));
  EXPECT_EQ(a.intersectionWithCharacterSet(b), setOf(u"bcz\U0001F601"_s));
  EXPECT_EQ(a.unionWithCharacterSet(CharacterSet()), a);
  EXPECT_EQ(a.intersectionWithCharacterSet(a.invertedSet()), CharacterSet());
}

TEST(CharacterSet, FindsMembersAndOthersByCodePoint) {
  const QString text = u"x\U0001F600\xd83dy\xde00"_s;
  const CharacterSet face = setOf(u"\U0001F600"_s);
  EXPECT_EQ(face.indexOfMember(text, 0), 1);
  EXPECT_EQ(face.indexOfOther(text, 1), 3);
  // From its second half on, the pair is none.
  EXPECT_EQ(face.indexOfMember(text, 2), text.size());
  EXPECT_EQ(face.indexOfOther(text, 2), 2);
  const CharacterSet halves = setOf(u"\xde00y\xd83d"_s);
  EXPECT_EQ(halves.indexOfMember(text, 0), 3);
  EXPECT_EQ(halves.indexOfMember(text, 2), 2);
  EXPECT_EQ(halves.indexOfOther(text, 3), text.size());
  EXPECT_EQ(halves.indexOfMember(text, text.size()), text.size());
  EXPECT_EQ(halves.indexOfOther(QString(), 0), 0);
}
