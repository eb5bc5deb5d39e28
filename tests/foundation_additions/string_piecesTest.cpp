#include "zqticker/foundation_additions/string_additions.h"

#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq;
using zq::platform::RangeException;

namespace {

constexpr qsizetype HundredMebibytes = 50 << 20;
// Enough to take hours where every one were to pass all before it.
constexpr qsizetype Pieces = 2 << 20;

} // namespace

TEST(InitialCharacters, AreTheFirstLettersOfWords) {
  EXPECT_EQ(initialCharacters(u"Hello World"_s), u"HW"_s);
  EXPECT_EQ(initialCharacters(u"  one,two\n(three)four"_s), u"ottf"_s);
  EXPECT_EQ(initialCharacters(u"\u00e9t\u00e9 \u65e5\u672c \u0416"_s), u"\u00e9\u65e5\u0416"_s);
  EXPECT_EQ(initialCharacters(u"a1b2c"_s), u"abc"_s);
}

TEST(InitialCharacters, MarksAreLettersAndNumbersAreNot) {
  EXPECT_EQ(initialCharacters(u"e\u0301x"_s), u"e"_s);
  EXPECT_EQ(initialCharacters(u"\u0301a"_s), u"\u0301"_s);
  EXPECT_EQ(initialCharacters(u"x\u2167y"_s), u"xy"_s);
}

TEST(InitialCharacters, OfAPairIsItsFirstHalf) {
  EXPECT_EQ(initialCharacters(u"\U0001D400b \U0001F600 c"_s), u"\xd835"_s + u"c"_s);
}

TEST(InitialCharacters, TrailingCharactersRepeatTheLastInitial) {
  EXPECT_EQ(initialCharacters(u"ab 1"_s), u"aa"_s);
  EXPECT_EQ(initialCharacters(u"ab 1 2"_s), u"aa"_s);
  EXPECT_EQ(initialCharacters(u"_a_b_"_s), u"abb"_s);
  EXPECT_EQ(initialCharacters(u"a \xd83d"_s), u"aa"_s);
  EXPECT_EQ(initialCharacters(u"ab \n\t"_s), u"a"_s);
}

TEST(InitialCharacters, OfNothingButWhiteSpaceAreNone) {
  EXPECT_EQ(initialCharacters(QString()), QString());
  EXPECT_EQ(initialCharacters(u" \n\u00a0\u2029"_s), QString());
}

TEST(InitialCharacters, WithoutALetterAreOutOfRange) {
  for (const auto& string :
       {u"12"_s, u"..."_s, u" 1 "_s, u"\xd83d"_s, u"\U0001F600"_s, u"\u00b2"_s})
    EXPECT_THROW(initialCharacters(string), RangeException);
  EXPECT_THROW(initialCharacters(QString(QChar(0))), RangeException);
}

TEST(InitialCharacters, TakeLinearTime) {
  EXPECT_EQ(initialCharacters(u"a "_s.repeated(Pieces)), QString(Pieces, u'a'));
  EXPECT_EQ(initialCharacters(QString(HundredMebibytes, u' ')), QString());
  EXPECT_EQ(initialCharacters(QString(HundredMebibytes, u'a')), u"a"_s);
}

TEST(LinesOfAString, AreWithoutTheirTerminators) {
  EXPECT_EQ(componentsSeparatedByLineDelimiter(u"a\nb\rc\r\nd\u2028e\u2029f"_s),
            (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"f"_s}));
  EXPECT_EQ(componentsSeparatedByLineDelimiter(u"a\n\rb\u000b\u000c\u0085\u001e c"_s),
            (QStringList{u"a"_s, QString(), u"b\u000b\u000c\u0085\u001e c"_s}));
}

TEST(LinesOfAString, TheEmptyStringIsOne) {
  EXPECT_EQ(componentsSeparatedByLineDelimiter(QString()), QStringList{QString()});
}

TEST(LinesOfAString, ATerminatorAtTheEndAddsNone) {
  EXPECT_EQ(componentsSeparatedByLineDelimiter(u"a\n"_s), QStringList{u"a"_s});
  EXPECT_EQ(componentsSeparatedByLineDelimiter(u"a\r\n\r\n"_s), (QStringList{u"a"_s, QString()}));
}

TEST(LinesOfAString, AnEmptyFirstOneKeepsItsTerminator) {
  EXPECT_EQ(componentsSeparatedByLineDelimiter(u"\nb"_s), (QStringList{u"\n"_s, u"b"_s}));
  EXPECT_EQ(componentsSeparatedByLineDelimiter(u"\r\n\r\nb"_s),
            (QStringList{u"\r\n"_s, QString(), u"b"_s}));
  EXPECT_EQ(componentsSeparatedByLineDelimiter(u"\u2029"_s), QStringList{u"\u2029"_s});
}

TEST(LinesOfAString, TakeLinearTime) {
  EXPECT_EQ(componentsSeparatedByLineDelimiter(QString(HundredMebibytes, u'x')).size(), 1);
  EXPECT_EQ(componentsSeparatedByLineDelimiter(QString(Pieces, u'\r')).size(), Pieces);
}

TEST(LastKeyComponent, IsBehindTheLastPoint) {
  EXPECT_EQ(lastKeyComponent(u"a.b.c"_s), u"c"_s);
  EXPECT_EQ(lastKeyComponent(u"a."_s), QString());
  EXPECT_EQ(lastKeyComponent(u".a"_s), u"a"_s);
  EXPECT_EQ(lastKeyComponent(u"."_s), QString());
  EXPECT_EQ(lastKeyComponent(QString()), QString());
  EXPECT_EQ(lastKeyComponent(u"a\u2024b"_s), u"a\u2024b"_s);
  const QString whole(3, u'x');
  EXPECT_EQ(lastKeyComponent(whole).constData(), whole.constData());
}

TEST(FirstComponents, AreFollowedByTheEllipsisWhereThereAreMore) {
  EXPECT_EQ(stringWithFirst(u"a,b,c"_s, 2, u","_s, u"..."_s), u"a,b..."_s);
  EXPECT_EQ(stringWithFirst(u"a,b"_s, 2, u","_s, u"..."_s), u"a,b"_s);
  EXPECT_EQ(stringWithFirst(u"a,b"_s, 3, u","_s, u"..."_s), u"a,b"_s);
  EXPECT_EQ(stringWithFirst(u"a,b,"_s, 2, u","_s, u"..."_s), u"a,b..."_s);
  EXPECT_EQ(stringWithFirst(u",,,"_s, 2, u","_s, u"..."_s), u",..."_s);
  EXPECT_EQ(stringWithFirst(u"a, b, c"_s, 1, u", "_s, u"\u2026"_s), u"a\u2026"_s);
}

TEST(FirstComponents, WithoutAnEllipsisAreCutOff) {
  EXPECT_EQ(stringWithFirst(u"a,b,c"_s, 2, u","_s), u"a,b"_s);
  EXPECT_EQ(stringWithFirst(u"a,b"_s, 2, u","_s), u"a,b"_s);
}

TEST(FirstComponents, NoneLeaveTheEllipsisAlone) {
  EXPECT_EQ(stringWithFirst(u"a,b"_s, 0, u","_s, u"..."_s), u"..."_s);
  EXPECT_EQ(stringWithFirst(u"a"_s, 0, u","_s, u"..."_s), u"..."_s);
  EXPECT_EQ(stringWithFirst(QString(), 0, u","_s, u"..."_s), u"..."_s);
  EXPECT_EQ(stringWithFirst(u"a,b"_s, 0, u","_s), QString());
}

TEST(FirstComponents, SeparatorsAreFoundFromTheStart) {
  EXPECT_EQ(stringWithFirst(u"aaaa"_s, 2, u"aa"_s, u"!"_s), u"aa!"_s);
  EXPECT_EQ(stringWithFirst(u"aaa"_s, 1, u"aa"_s, u"!"_s), u"!"_s);
  EXPECT_EQ(stringWithFirst(u"a---b"_s, 1, u"--"_s, u"!"_s), u"a!"_s);
}

TEST(FirstComponents, SeparatorsAreComparedByCodeUnit) {
  EXPECT_EQ(stringWithFirst(u"AaA"_s, 1, u"a"_s, u"!"_s), u"A!"_s);
  EXPECT_EQ(stringWithFirst(u"\u00e9,e\u0301,x"_s, 1, u"e\u0301"_s), u"\u00e9,"_s);
  EXPECT_EQ(stringWithFirst(u"a\U0001F600b"_s, 1, u"\xde00"_s), u"a\xd83d"_s);
}

TEST(FirstComponents, AnEmptySeparatorSeparatesNothing) {
  EXPECT_EQ(stringWithFirst(u"abc"_s, 1, QString(), u"!"_s), u"abc"_s);
  EXPECT_EQ(stringWithFirst(u"abc"_s, 0, QString(), u"!"_s), u"!"_s);
}

TEST(FirstComponents, AnyNumberMayBeAskedFor) {
  EXPECT_EQ(stringWithFirst(u"a,b,c"_s, std::numeric_limits<std::size_t>::max(), u","_s, u"!"_s),
            u"a,b,c"_s);
}

TEST(FirstComponents, TakeLinearTime) {
  const QString text(HundredMebibytes, u'a');
  EXPECT_EQ(stringWithFirst(text, Pieces, u"a"_s, u"!"_s), QString(Pieces - 1, u'a') + u"!"_s);
  const QString separator = QString(HundredMebibytes / 16, u'a') + u"b"_s;
  EXPECT_EQ(stringWithFirst(text, 1, separator, u"!"_s), text);
}

TEST(RemovingHTML, JoinsTheTextBetweenTags) {
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"Hello <b>big</b> world"_s, u" "_s),
            u"Hello  big world"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<b>c</b>d"_s, u", "_s), u"a, c, d"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<b>c</b>d"_s, QString()), u"acd"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<b>c</b>d"_s, std::nullopt), u"acd"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"no tags > here"_s, u"|"_s), u"no tags > here"_s);
}

TEST(RemovingHTML, EndsAtATagWithoutTextBeforeIt) {
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"<p>x</p>"_s, u" "_s), QString());
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u" \n<p>x"_s, u" "_s), QString());
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<b> <c>d"_s, u"|"_s), u"a"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<b>1</b><c>2"_s, u"|"_s), u"a|1"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(QString(), u"|"_s), QString());
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u" "_s, u"|"_s), QString());
}

TEST(RemovingHTML, SkipsWhiteSpaceAtTheStartOfAPieceOnly) {
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u" \na \n<b> \u2029c d <e>\tf"_s, u"|"_s),
            u"a \n|c d |f"_s);
}

TEST(RemovingHTML, ATagThatIsNotClosedTakesTheRest) {
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<b>c<d e"_s, u"|"_s), u"a|c"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<"_s, u"|"_s), u"a"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<b<c>d"_s, u"|"_s), u"a|d"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<b \"x>y\">c"_s, u"|"_s), u"a|y\">c"_s);
}

TEST(RemovingHTML, TakesLinearTime) {
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a<b>"_s.repeated(Pieces), QString()),
            QString(Pieces, u'a'));
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(u"a"_s + QString(HundredMebibytes, u'<'), u"|"_s),
            u"a"_s);
  EXPECT_EQ(stringByRemovingHTMLUsingDelimiter(QString(HundredMebibytes, u' ') + u"a"_s, u"|"_s),
            u"a"_s);
}

TEST(FirstURLComponent, IsSchemeAndHost) {
  EXPECT_EQ(stringWithFirstURLComponent(u"http://server/a/b"_s), u"http://server"_s);
  EXPECT_EQ(stringWithFirstURLComponent(u"http://server"_s), u"http://server"_s);
  EXPECT_EQ(stringWithFirstURLComponent(u"http://u:p@server:80?q#f/x"_s),
            u"http://u:p@server:80?q#f"_s);
  EXPECT_EQ(stringWithFirstURLComponent(u"file:///a"_s), u"file://"_s);
  EXPECT_EQ(stringWithFirstURLComponent(u"a://b://c"_s), u"a://b:"_s);
}

TEST(FirstURLComponent, WithoutSchemeIsTheWholeStringBeforeSlashes) {
  EXPECT_EQ(stringWithFirstURLComponent(u"server"_s), u"server://"_s);
  EXPECT_EQ(stringWithFirstURLComponent(u"mailto:a@b/c"_s), u"mailto:a@b/c://"_s);
  EXPECT_EQ(stringWithFirstURLComponent(u":/"_s), u":/://"_s);
  EXPECT_EQ(stringWithFirstURLComponent(QString()), u"://"_s);
  EXPECT_EQ(stringWithFirstURLComponent(u"://server/a"_s), u"://"_s);
}

TEST(FirstURLComponent, HasNoWhiteSpaceAtTheStartOfEitherPart) {
  EXPECT_EQ(stringWithFirstURLComponent(u" \nhttp ://\u3000 server /a"_s), u"http ://server "_s);
  EXPECT_EQ(stringWithFirstURLComponent(u" \t"_s), u"://"_s);
  EXPECT_EQ(stringWithFirstURLComponent(u"  ://a"_s), u"://"_s);
}
