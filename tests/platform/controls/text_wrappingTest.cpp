#include "zqticker/platform/controls/text_wrapping_p.h"

#include "zqticker/platform/graphics/Font.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

const double infinity = std::numeric_limits<double>::infinity();

// Every character is as wide as every other, 6.02 at 10 points.
Attributes mono() {
  return {{FontAttributeName, any(Font::fontWithName(u"DejaVu Sans Mono"_s, 10))}};
}

double widthOf(const QString& text) {
  return AttributedString::make(text, mono())->size().width();
}

QStringList textsOf(const QString& text, double width, double height = infinity) {
  QStringList texts;
  for (const WrappedLine& line :
       wrappedLines(*AttributedString::make(text, mono()), {width, height}))
    texts.append(line.text->string());
  return texts;
}

} // namespace

TEST(wrapped_lines, BreakAtSpacesWhichAreLeftOut) {
  const double eight = widthOf(u"12345678"_s) + 0.5;
  EXPECT_EQ(textsOf(u"one two three  four"_s, eight),
            QStringList({u"one two"_s, u"three"_s, u"four"_s}));
  EXPECT_EQ(textsOf(u"one two"_s, infinity), QStringList({u"one two"_s}));
  // Spaces at the end need no room.
  EXPECT_EQ(textsOf(u"12345678   9"_s, eight), QStringList({u"12345678"_s, u"9"_s}));
}

TEST(wrapped_lines, BreakLongWordsBetweenCharacters) {
  const double four = widthOf(u"1234"_s) + 0.5;
  EXPECT_EQ(textsOf(u"a abcdefghij kl"_s, four),
            QStringList({u"a"_s, u"abcd"_s, u"efgh"_s, u"ij"_s, u"kl"_s}));
  // A letter and its mark stay together.
  EXPECT_EQ(textsOf(u"e\u0301e\u0301e\u0301"_s, widthOf(u"1"_s) + 0.5),
            QStringList({u"e\u0301"_s, u"e\u0301"_s, u"e\u0301"_s}));
}

TEST(wrapped_lines, HoldOneCharacterAtLeast) {
  for (const double width : {0.0, -5.0, std::nan("")})
    EXPECT_EQ(textsOf(u"abc"_s, width), QStringList({u"a"_s, u"b"_s, u"c"_s}));
}

TEST(wrapped_lines, EndAtTerminators) {
  EXPECT_EQ(textsOf(u"a\nb\r\nc\rd\u2028e\u2029f\n"_s, 1000),
            QStringList({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"f"_s}));
  EXPECT_EQ(textsOf(u"a\n\nb"_s, 1000), QStringList({u"a"_s, u""_s, u"b"_s}));
  EXPECT_TRUE(textsOf(QString(), 1000).isEmpty());
}

TEST(wrapped_lines, AreAsHighAsTheirFontAlsoWhereEmpty) {
  const double height = Font::fontWithName(u"DejaVu Sans Mono"_s, 10)->lineHeight();
  for (const WrappedLine& line :
       wrappedLines(*AttributedString::make(u"a\n\n \nb"_s, mono()), {1000, infinity}))
    EXPECT_NEAR(line.size.height(), height, 1e-9) << line.text->string().toStdString();
}

TEST(wrapped_lines, StopBelowTheArea) {
  const double height = Font::fontWithName(u"DejaVu Sans Mono"_s, 10)->lineHeight();
  EXPECT_EQ(textsOf(u"a\nb\nc\nd"_s, 1000, height * 1.5), QStringList({u"a"_s, u"b"_s}));
  for (const double none : {0.0, -1.0, std::nan("")})
    EXPECT_TRUE(textsOf(u"a"_s, 1000, none).isEmpty());
}

TEST(wrapped_lines, KeepAttributes) {
  const auto text = MutableAttributedString::make(u"ab cd"_s, mono());
  text->addAttribute(u"mark"_s, 1, {4, 1});
  const auto lines = wrappedLines(*text, {widthOf(u"123"_s), infinity});
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_FALSE(lines[1].text->attributeAtIndex(u"mark"_s, 0).isValid());
  EXPECT_EQ(lines[1].text->attributeAtIndex(u"mark"_s, 1), Any(1));
}

TEST(wrapped_lines, OfHugeTextsAreMeasuredOnlyWhereTheyShow) {
  EXPECT_LT(textsOf(u"word "_s.repeated(200000), 100, 1000).size(), 100);
  EXPECT_LT(textsOf(u"w"_s.repeated(1000000), 100, 1000).size(), 100);
}
