#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/platform/text/CharacterSet.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq;
using zq::platform::CharacterSet;

namespace {

QString keeping(QString string, const CharacterSet& set) {
  removeCharactersNotInSet(string, set);
  return string;
}

QString keeping(const QString& string, const QString& characters) {
  return keeping(string, CharacterSet::characterSetWithCharactersInString(characters));
}

QString deletedFrom(QString string, std::size_t index) {
  deleteCharactersFromIndex(string, index);
  return string;
}

} // namespace

TEST(AppendNilString, AppendsAStringAndNothingForNothing) {
  QString string = u"a"_s;
  appendNilString(string, u"b"_s);
  EXPECT_EQ(string, u"ab"_s);
  appendNilString(string, std::nullopt);
  EXPECT_EQ(string, u"ab"_s);
  appendNilString(string, QString());
  EXPECT_EQ(string, u"ab"_s);
  appendNilString(string, string);
  EXPECT_EQ(string, u"abab"_s);
}

TEST(RemoveCharacters, KeepsThoseOfTheSet) {
  EXPECT_EQ(keeping(u"+49 (30) 123-45"_s, u"0123456789"_s), u"493012345"_s);
  EXPECT_EQ(keeping(u"a1b2c3"_s, CharacterSet::letterCharacterSet()), u"abc"_s);
  EXPECT_EQ(keeping(u"abc"_s, u"xyz"_s), QString());
  EXPECT_EQ(keeping(u"abc"_s, QString()), QString());
  EXPECT_EQ(keeping(QString(), u"abc"_s), QString());
  EXPECT_EQ(keeping(u"abc"_s, u"abc"_s), u"abc"_s);
}

TEST(RemoveCharacters, DropsWhiteSpaceAtTheStartAndBehindOtherCharacters) {
  EXPECT_EQ(keeping(u" a b "_s, u"ab "_s), u"a b "_s);
  EXPECT_EQ(keeping(u"a- b"_s, u"ab "_s), u"ab"_s);
  EXPECT_EQ(keeping(u"a -b"_s, u"ab "_s), u"a b"_s);
  EXPECT_EQ(keeping(u"a\n b"_s, u"ab "_s), u"ab"_s);
  EXPECT_EQ(keeping(u" \n"_s, u" \n"_s), QString());
  EXPECT_EQ(keeping(u"- \u2029"_s, CharacterSet::whitespaceAndNewlineCharacterSet()), QString());
}

TEST(RemoveCharacters, TakesPairsAsOneCharacter) {
  EXPECT_EQ(keeping(u"a\U0001F600b\U0001F601"_s, u"\U0001F600"_s), u"\U0001F600"_s);
  EXPECT_EQ(keeping(u"a\xd83d b\U0001F600"_s, u"\xd83d"_s), u"\xd83d"_s);
}

TEST(RemoveCharacters, TakesLinearTime) {
  constexpr qsizetype Length = 50 << 20;
  constexpr qsizetype Pieces = 2 << 20;
  EXPECT_EQ(keeping(u"a-"_s.repeated(Pieces), u"a"_s), QString(Pieces, u'a'));
  EXPECT_EQ(keeping(QString(Length, u' '), u"a"_s), QString());
  EXPECT_EQ(keeping(u"a "_s.repeated(Pieces), u"a"_s), QString(Pieces, u'a'));
}

TEST(DeleteCharacters, FromAnIndexWithinTheString) {
  EXPECT_EQ(deletedFrom(u"abc"_s, 1), u"a"_s);
  EXPECT_EQ(deletedFrom(u"abc"_s, 0), QString());
  EXPECT_EQ(deletedFrom(u"\U0001F600"_s, 1), u"\xd83d"_s);
}

TEST(DeleteCharacters, NoneFromTheEndOrBehindIt) {
  EXPECT_EQ(deletedFrom(u"abc"_s, 3), u"abc"_s);
  EXPECT_EQ(deletedFrom(u"abc"_s, 4), u"abc"_s);
  EXPECT_EQ(deletedFrom(u"abc"_s, std::numeric_limits<std::size_t>::max()), u"abc"_s);
  EXPECT_EQ(deletedFrom(QString(), 0), QString());
}

TEST(DeleteCharacters, All) {
  QString string = u"abc"_s;
  deleteAllCharacters(string);
  EXPECT_EQ(string, QString());
  deleteAllCharacters(string);
  EXPECT_EQ(string, QString());
}

TEST(MutableStrings, LeaveCopiesOfThemselvesAlone) {
  QString string(4, u'x');
  const QString copy = string;
  deleteCharactersFromIndex(string, 2);
  appendNilString(string, u"y"_s);
  removeCharactersNotInSet(string, CharacterSet::letterCharacterSet());
  EXPECT_EQ(string, u"xxy"_s);
  EXPECT_EQ(copy, u"xxxx"_s);
}
