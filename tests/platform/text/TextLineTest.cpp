#include "zqticker/platform/text/TextLine_p.h"

#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/ParagraphStyle.h"
#include "zqticker/platform/text/bidi_p.h"
#include "zqticker/platform/text/emoji_p.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

Attributes inFont(const QString& name, double size) {
  return {{FontAttributeName, any(Font::fontWithName(name, size))}};
}

std::shared_ptr<TextLine> lineOf(const QString& text, const Attributes& attributes = {}) {
  return std::make_shared<TextLine>(text, AttributedString::make(text, attributes)->runs(),
                                    attributes);
}

// The width in points of the same text in one QTextLayout, which cuts nothing.
double uncutWidth(const QString& text, const QString& font, double size) {
  QFont reference(font);
  reference.setPixelSize(256);
  reference.setHintingPreference(QFont::PreferNoHinting);
  QTextLayout layout(text, reference);
  QList<QTextLayout::FormatRange> formats;
  for (const Range& range : emojiRanges(text)) {
    QTextCharFormat format;
    QFont emoji = reference;
    emoji.setFamilies({u"Noto Color Emoji"_s});
    format.setFont(emoji);
    formats.append({int(range.location), int(range.length), format});
  }
  layout.setFormats(formats);
  QTextOption option;
  option.setWrapMode(QTextOption::NoWrap);
  option.setUseDesignMetrics(true);
  option.setFlags(QTextOption::IncludeTrailingSpaces);
  layout.setTextOption(option);
  layout.beginLayout();
  QTextLine line = layout.createLine();
  line.setLineWidth(1 << 24);
  layout.endLayout();
  return line.horizontalAdvance() * size / 256;
}

} // namespace

struct Sample {
  const char* name;
  QString text;
  QString font;
};

class TextLineOfScript : public ::testing::TestWithParam<Sample> {};

TEST_P(TextLineOfScript, IsAsWideInSegmentsAsInOnePiece) {
  const auto& [name, text, font] = GetParam();
  const QString lengthened = text.repeated(4000 / text.size() + 1);
  const auto line = lineOf(lengthened, inFont(font, 12.6));
  EXPECT_GT(line->segmentCount(), 3U);
  const double expected = uncutWidth(lengthened, font, 12.6);
  EXPECT_GT(expected, 1000);
  // One unit of the layout is 1/64 pixel of 256 an em.
  EXPECT_NEAR(line->size().width(), expected, 0.001);
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, TextLineOfScript,
    ::testing::Values(
        Sample{"LatinWithKerning", u"AVATAR To Wave, Yet. P.A. "_s, u"DejaVu Sans"_s},
        Sample{"LatinWithLigatures", u"office fluffy affine "_s, u"DejaVu Serif"_s},
        Sample{"LatinWithoutSpaces", u"AVAToffiWave"_s, u"DejaVu Sans"_s},
        Sample{"Arabic", u"السلام عليكم ورحمة الله "_s, u"DejaVu Sans"_s},
        Sample{"ArabicWithoutSpaces", u"السلامعليكمورحمة"_s, u"DejaVu Sans"_s},
        Sample{"HebrewMixedWithLatin", u"abc שלום עולם (12.5 def) "_s, u"DejaVu Sans"_s},
        Sample{"HebrewBeforeLatin", u"שלום abc עולם, 42% "_s, u"DejaVu Sans"_s},
        Sample{"Devanagari", u"नमस्ते दुनिया क्षत्रिय "_s, u"Lohit Devanagari"_s},
        Sample{"EmojiJoined", u"👩‍👩‍👧‍👦 👍🏽 🇩🇪🇫🇷 "_s,
               u"DejaVu Sans"_s},
        Sample{"CombiningMarks", u"é́ ñ̃ x̧̌ "_s, u"DejaVu Sans"_s}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(TextLine, IsLinearInTheSize) {
  const double unit = lineOf(u"AVATAR office"_s, inFont(u"DejaVu Sans"_s, 1))->size().width();
  for (const double size : {9.0, 12.0, 12.6, 13.0, 400.0})
    EXPECT_DOUBLE_EQ(lineOf(u"AVATAR office"_s, inFont(u"DejaVu Sans"_s, size))->size().width(),
                     unit * size);
}

TEST(TextLine, IsAsHighAsItsFontsLine) {
  for (const double size : {9.0, 12.6, 40.0}) {
    const Ref<Font> font = Font::fontWithName(u"DejaVu Sans"_s, size);
    EXPECT_DOUBLE_EQ(lineOf(u"any"_s, {{FontAttributeName, any(font)}})->size().height(),
                     font->lineHeight());
  }
}

TEST(TextLine, IsAsHighAsTheHighestOfItsRuns) {
  auto text = MutableAttributedString::make(u"small LARGE"_s, inFont(u"DejaVu Sans"_s, 10));
  text->addAttribute(FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, 30)), {6, 5});
  EXPECT_DOUBLE_EQ(text->size().height(), Font::fontWithName(u"DejaVu Sans"_s, 30)->lineHeight());
}

TEST(TextLine, MakesRoomForTheFontsThatStandIn) {
  // Qt looks for the script in each font in turn, and says so.
  zq::testing::allowLog(u"OpenType support missing"_s);
  const auto line = lineOf(u"abc नमस्ते"_s, inFont(u"DejaVu Sans"_s, 20));
  const Ref<Font> devanagari = Font::fontWithName(u"Lohit Devanagari"_s, 20);
  EXPECT_NEAR(line->descent(), -devanagari->descender(), 0.02);
  EXPECT_NEAR(line->ascent(), devanagari->ascender(), 0.02);
}

TEST(TextLine, EmptyTextHasTheHeightOfItsFont) {
  EXPECT_EQ(lineOf(QString())->size(), QSizeF(0, std::make_shared<Font>()->lineHeight()));
  const Ref<Font> font = Font::fontWithName(u"DejaVu Sans"_s, 31);
  EXPECT_EQ(lineOf(QString(), {{FontAttributeName, any(font)}})->size(),
            QSizeF(0, font->lineHeight()));
}

TEST(TextLine, TextWithoutAFontIsHelveticaAtTwelve) {
  EXPECT_EQ(lineOf(u"text"_s)->size(), lineOf(u"text"_s, inFont(u"Helvetica"_s, 12))->size());
  // A value that is no font is none.
  EXPECT_EQ(lineOf(u"text"_s, {{FontAttributeName, u"Helvetica"_s}})->size(),
            lineOf(u"text"_s)->size());
}

TEST(TextLine, TerminatorsAndTabsAreOneSpace) {
  const QSizeF expected = lineOf(u"a b"_s)->size();
  for (const QString& text : {u"a\nb"_s, u"a\rb"_s, u"a\r\nb"_s, u"a\tb"_s, u"a\vb"_s, u"a\fb"_s,
                              u"a\u0085b"_s, u"a\u2028b"_s, u"a\u2029b"_s})
    EXPECT_EQ(lineOf(text)->size(), expected);
  EXPECT_EQ(lineOf(u"a\n\rb"_s)->size(), lineOf(u"a  b"_s)->size());
}

TEST(TextLine, ControlCharactersTakeNoRoom) {
  const QSizeF expected = lineOf(u"ab"_s)->size();
  for (char16_t c = 0; c < 0xa0; ++c) {
    const bool isControl = c < 0x20 || c >= 0x7f;
    const bool isTerminator = c == 0x85 || (c >= u'\t' && c <= u'\r');
    if (isControl && !isTerminator) {
      EXPECT_EQ(lineOf(u"a"_s + QChar(c) + u'b')->size(), expected) << int(c);
    }
  }
  for (const char16_t c : {0x202a, 0x202b, 0x202d, 0x2066, 0x2067, 0x200b, 0x2060})
    EXPECT_EQ(lineOf(u"a"_s + QChar(c) + u'b')->size(), expected) << int(c);
}

TEST(TextLine, LoneSurrogatesShowAsTheReplacementCharacter) {
  const QSizeF expected = lineOf(u"a\ufffdb"_s)->size();
  EXPECT_EQ(lineOf(u"a"_s + QChar(0xd800) + u'b')->size(), expected);
  EXPECT_EQ(lineOf(u"a"_s + QChar(0xdc00) + u'b')->size(), expected);
  EXPECT_EQ(lineOf(QString(QChar(0xd83d)))->size(), lineOf(u"\ufffd"_s)->size());
}

TEST(TextLine, CountsTrailingSpaces) {
  EXPECT_DOUBLE_EQ(lineOf(u"ab  "_s)->size().width() - lineOf(u"ab"_s)->size().width(),
                   lineOf(u"  "_s)->size().width());
}

TEST(TextLine, KernIsAddedAfterEachCharacter) {
  Attributes wide = inFont(u"DejaVu Sans"_s, 12);
  const double plain = lineOf(u"lmnop"_s, wide)->size().width();
  wide.insert(KernAttributeName, 1.5);
  EXPECT_NEAR(lineOf(u"lmnop"_s, wide)->size().width(), plain + 5 * 1.5, 0.01);
  wide.insert(KernAttributeName, std::numeric_limits<double>::infinity());
  EXPECT_DOUBLE_EQ(lineOf(u"lmnop"_s, wide)->size().width(), plain);
  wide.insert(KernAttributeName, 1e30);
  EXPECT_LT(lineOf(u"lmnop"_s, wide)->size().width(), 1000);
}

TEST(TextLine, RunsOfAnotherColourDoNotMoveAnything) {
  const QString text = u"lmnop qrstu"_s;
  auto coloured = MutableAttributedString::make(text, inFont(u"DejaVu Sans"_s, 12));
  for (qsizetype i = 0; i < text.size(); i += 2)
    coloured->addAttribute(ForegroundColorAttributeName, any(Color::deviceRGB(1, 0, 0)), {i, 1});
  EXPECT_NEAR(coloured->size().width(), lineOf(text, inFont(u"DejaVu Sans"_s, 12))->size().width(),
              1e-6);
}

TEST(TextLine, KeepsFewLayoutsOfALongText) {
  const QString text = u"word and Wave, "_s.repeated(70000).left(1000000);
  const auto line = lineOf(text, inFont(u"DejaVu Sans"_s, 12));
  EXPECT_LE(line->laidOutLength(), 16384);
  EXPECT_GT(line->segmentCount(), 1000U);
  const double word = lineOf(u"word and Wave, "_s, inFont(u"DejaVu Sans"_s, 12))->size().width();
  EXPECT_NEAR(line->size().width(), word * 1000000 / 15, word);
}

TEST(TextLine, TakesTextOfAnyKindWithoutHarm) {
  zq::testing::allowLog(u"OpenType support missing"_s);
  const QString samples[] = {
      QString(20000, QChar(0x301)),
      u"\u200d"_s.repeated(20000),
      u"\u202b"_s.repeated(20000) + u"x",
      u"\u2067"_s.repeated(20000),
      u"aא"_s.repeated(3000),
      u"👩‍"_s.repeated(3000),
      QString(20000, QChar(0xd83d)),
      QString(20000, QChar(0xfffc)),
      QString(5000, QChar(0)),
  };
  for (const QString& sample : samples) {
    const QSizeF size = lineOf(sample)->size();
    EXPECT_GE(size.width(), 0);
    EXPECT_GT(size.height(), 0);
  }
  std::mt19937 random(7);
  for (int round = 0; round < 40; ++round) {
    QString text(300, Qt::Uninitialized);
    for (QChar& c : text)
      c = QChar(char16_t(random() % (round % 2 ? 0x10000 : 0x700)));
    EXPECT_GT(lineOf(text)->size().height(), 0);
  }
}

TEST(TextLine, FollowsTheWritingDirectionOfItsParagraph) {
  ParagraphSettings settings;
  settings.writingDirection = WritingDirection::RightToLeft;
  Attributes attributes = inFont(u"DejaVu Sans"_s, 12);
  attributes.insert(ParagraphStyleAttributeName, any(std::make_shared<ParagraphStyle>(settings)));
  EXPECT_EQ(directionRuns(u"ab."_s, true).front().start, 2);
  EXPECT_NEAR(lineOf(u"ab."_s, attributes)->size().width(),
              lineOf(u"ab."_s, inFont(u"DejaVu Sans"_s, 12))->size().width(), 0.5);
}

TEST(bidi, GivesRunsFromLeftToRight) {
  const auto runs = directionRuns(u"abשל12 x"_s);
  ASSERT_EQ(runs.size(), 4U);
  EXPECT_EQ(runs[0].start, 0);
  EXPECT_FALSE(runs[0].rightToLeft);
  // The digits stand to the left of the letters that they follow.
  EXPECT_EQ(runs[1].start, 4);
  EXPECT_FALSE(runs[1].rightToLeft);
  EXPECT_EQ(runs[2].start, 2);
  EXPECT_TRUE(runs[2].rightToLeft);
  EXPECT_EQ(runs[3].start, 6);
}

TEST(bidi, TakesTheDirectionOfTheFirstStrongCharacter) {
  EXPECT_EQ(directionRuns(u"12 שלום abc"_s).back().rightToLeft, false);
  EXPECT_EQ(directionRuns(u"12 שלום abc"_s).front().start, 8);
  EXPECT_TRUE(directionRuns(QString()).empty());
}

TEST(emoji, AreFoundWithAllTheirParts) {
  struct Row {
    QString text;
    std::vector<Range> ranges;
  };
  const Row rows[] = {
      {u"plain text, 42 #1"_s, {}},
      {u"a😀b"_s, {{1, 2}}},
      {u"😀😀"_s, {{0, 4}}},
      {u"x👍🏽y"_s, {{1, 4}}},
      {u"👩‍👩‍👧‍👦!"_s, {{0, 11}}},
      {u"🇩🇪🇫🇷"_s, {{0, 8}}},
      {u"🇩x"_s, {}},
      {u"1\ufe0f\u20e3 2"_s, {{0, 3}}},
      {u"1\u20e3"_s, {}},
      {u"❤ ❤\ufe0f ⌚ ⌚\ufe0e"_s, {{2, 2}, {5, 1}}},
      {u"👩‍❤️‍👩"_s, {{0, 8}}},
      {u"🏴\U000e0067\U000e0062\U000e007f."_s, {{0, 8}}},
      {u"😀\u200d"_s, {{0, 2}}},
      {u"😀\u200dx"_s, {{0, 2}}},
      {QString(QChar(0xd83d)) + u'x', {}},
  };
  for (const Row& row : rows)
    EXPECT_EQ(emojiRanges(row.text), row.ranges) << row.text.toStdString();
}
