#include "zqticker/foundation_additions/string_additions.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq;

namespace {

const Entities further{{u"copy"_s, u"\u00a9"_s}, {u"euro"_s, u"\u20ac"_s},
                       {u"e"_s, QString()},      {u"co"_s, u"Example & Sons"_s},
                       {u"loop"_s, u"&loop;"_s}, {u"a.b-c \u00e9"_s, u"\U0001F600"_s}};

} // namespace

TEST(EscapingEntities, ReplacesTheFivePredefinedOnes) {
  EXPECT_EQ(stringByEscapingEntities(u"<a href=\"x\">T&C's</a>"_s),
            u"&lt;a href=&quot;x&quot;&gt;T&amp;C&apos;s&lt;/a&gt;"_s);
  EXPECT_EQ(stringByEscapingEntities(u"&amp;"_s), u"&amp;amp;"_s);
}

TEST(EscapingEntities, LeavesEverythingElse) {
  const QString others = u"a \u00e9\u00a0\u2028\u203c\u0126\U0001F600\xd83d`()"_s + QChar(0);
  EXPECT_EQ(stringByEscapingEntities(others), others);
  EXPECT_EQ(stringByEscapingEntities(others, Entities()), others);
  EXPECT_EQ(stringByEscapingEntities(QString()), QString());
  EXPECT_EQ(stringByEscapingEntities(u"\xd83d&\xde00"_s), u"\xd83d&amp;\xde00"_s);
}

TEST(EscapingEntities, PutsFurtherNamesInPlaceOfTheirExpansions) {
  EXPECT_EQ(stringByEscapingEntities(u"\u00a9 5 \u20ac <\U0001F600>"_s, further),
            u"&copy; 5 &euro; &lt;&a.b-c \u00e9;&gt;"_s);
  EXPECT_EQ(stringByEscapingEntities(u"\u00a9 5 \u20ac"_s), u"\u00a9 5 \u20ac"_s);
}

TEST(EscapingEntities, TheLongestExpansionCountsThenThePredefinedEntityThenTheName) {
  const Entities entities{{u"z"_s, u"ab"_s},  {u"y"_s, u"ab"_s},    {u"long"_s, u"abc"_s},
                          {u"and"_s, u"&"_s}, {u"both"_s, u"&&"_s}, {u"b"_s, u"b"_s}};
  EXPECT_EQ(stringByEscapingEntities(u"abcabacb"_s, entities), u"&long;&y;ac&b;"_s);
  EXPECT_EQ(stringByEscapingEntities(u"&&&"_s, entities), u"&both;&amp;"_s);
}

TEST(EscapingEntities, PassesOverEntriesThatCouldNotBeReadBack) {
  const Entities entities{{u"amp"_s, u"x"_s}, {QString(), u"x"_s}, {u"#120"_s, u"x"_s},
                          {u"a;b"_s, u"x"_s}, {u"a&b"_s, u"x"_s},  {u"empty"_s, QString()}};
  EXPECT_EQ(stringByEscapingEntities(u"x<x"_s, entities), u"x&lt;x"_s);
}

TEST(EscapingEntities, IsUndoneByUnescaping) {
  for (const auto& string : {u"<a href=\"x\">T&C's \u00a9 Example & Sons</a>"_s, u"&loop;"_s,
                             u"&copy;&#65;&;&"_s, u"\xd83d\U0001F600\xde00"_s}) {
    EXPECT_EQ(stringByUnescapingEntities(stringByEscapingEntities(string)), string);
    EXPECT_EQ(stringByUnescapingEntities(stringByEscapingEntities(string, further), further),
              string);
  }
}

TEST(UnescapingEntities, ReplacesPredefinedEntities) {
  EXPECT_EQ(stringByUnescapingEntities(u"&lt;a&gt;&quot;&apos;&amp;"_s), u"<a>\"'&"_s);
}

TEST(UnescapingEntities, ReplacesNumericReferences) {
  EXPECT_EQ(stringByUnescapingEntities(u"&#65;&#233;&#8364;&#128512;&#9;&#1;"_s),
            u"A\u00e9\u20ac\U0001F600\t\u0001"_s);
  EXPECT_EQ(stringByUnescapingEntities(u"&#x41;&#xE9;&#xe9;&#x20aC;&#x1F600;&#x10FFFF;&#xFFFF;"_s),
            u"A\u00e9\u00e9\u20ac\U0001F600\U0010FFFF\uffff"_s);
  EXPECT_EQ(stringByUnescapingEntities(u"&#0000000000000000000065;&#x"_s + QString(1 << 20, u'0') +
                                       u"41;"_s),
            u"AA"_s);
}

TEST(UnescapingEntities, LeavesWhatIsNoCharacter) {
  for (const auto& string : {u"&#0;"_s,          u"&#x0;"_s,
                             u"&#xD800;"_s,      u"&#xDFFF;"_s,
                             u"&#55357;"_s,      u"&#x110000;"_s,
                             u"&#1114112;"_s,    u"&#4294967361;"_s,
                             u"&#x100000041;"_s, u"&#18446744073709551681;"_s,
                             u"&#;"_s,           u"&#x;"_s,
                             u"&#X41;"_s,        u"&#-65;"_s,
                             u"&#+65;"_s,        u"&# 65;"_s,
                             u"&#65 ;"_s,        u"&#6A;"_s,
                             u"&#xG;"_s,         u"&#\u0666\u0665;"_s,
                             u"&#x\uff14;"_s})
    EXPECT_EQ(stringByUnescapingEntities(string), string);
}

TEST(UnescapingEntities, LeavesWhatItDoesNotKnow) {
  for (const auto& string : {u"&"_s, u"&;"_s, u"&&"_s, u"&amp"_s, u"&AMP;"_s, u"& amp;"_s,
                             u"&amp ;"_s, u"&copy;"_s, u"&unterminated"_s, u"a;b"_s, u""_s})
    EXPECT_EQ(stringByUnescapingEntities(string), string);
  EXPECT_EQ(stringByUnescapingEntities(u"&a&amp;&b;&lt;&"_s), u"&a&&b;<&"_s);
  EXPECT_EQ(stringByUnescapingEntities(u"\xd83d&lt;\xde00"_s), u"\xd83d<\xde00"_s);
}

TEST(UnescapingEntities, DoesNotReadAgainWhatCameOut) {
  EXPECT_EQ(stringByUnescapingEntities(u"&amp;lt;&#38;gt;&amp;#65;"_s), u"&lt;&gt;&#65;"_s);
  EXPECT_EQ(stringByUnescapingEntities(u"&loop;"_s, further), u"&loop;"_s);
}

TEST(UnescapingEntities, ReplacesFurtherEntities) {
  EXPECT_EQ(stringByUnescapingEntities(u"&copy;&euro;[&e;]&co;&a.b-c \u00e9;&lt;&#65;"_s, further),
            u"\u00a9\u20ac[]Example & Sons\U0001F600<A"_s);
  EXPECT_EQ(stringByUnescapingEntities(u"&COPY;&nbsp;"_s, further), u"&COPY;&nbsp;"_s);
}

TEST(UnescapingEntities, FurtherOnesOverrideNeitherThePredefinedNorNumbers) {
  const Entities entities{{u"amp"_s, u"x"_s}, {u"#65"_s, u"x"_s}, {u"#z"_s, u"x"_s}};
  EXPECT_EQ(stringByUnescapingEntities(u"&amp;&#65;&#z;"_s, entities), u"&A&#z;"_s);
}

TEST(UnescapingEntities, TakesLinearTime) {
  constexpr qsizetype Length = 50 << 20;
  constexpr qsizetype Pieces = 4 << 20;
  const QString ampersands(Pieces, u'&');
  EXPECT_EQ(stringByUnescapingEntities(ampersands, further), ampersands);
  EXPECT_EQ(stringByEscapingEntities(ampersands), u"&amp;"_s.repeated(Pieces));
  const QString numbers = u"&#"_s.repeated(Pieces);
  EXPECT_EQ(stringByUnescapingEntities(numbers), numbers);
  const QString plain(Length, u';');
  EXPECT_EQ(stringByUnescapingEntities(plain), plain);
  EXPECT_EQ(stringByEscapingEntities(plain, further), plain);
}
