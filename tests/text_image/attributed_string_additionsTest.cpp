#include "zqticker/text_image/attributed_string_additions.h"

#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/TextAttachment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq;
using namespace zq::platform;
using zq::testing::Canvas;
using zq::testing::inkBounds;

namespace {

const Attributes marked{{u"mark"_s, 1}};

// DejaVu Sans: ascent 0.928, descent 0.236 of the em, no leading. At 20 points a line is 23.28 high
// and its baseline 4.72 above its bottom.
Ref<Font> sans() {
  return Font::fontWithName(u"DejaVu Sans"_s, 20);
}

Ref<Image> filled(int width, int height, const QColor& color = Qt::red) {
  QImage bitmap(width, height, QImage::Format_ARGB32_Premultiplied);
  bitmap.fill(color);
  return Image::fromQImage(bitmap);
}

float offsetOf(const AttributedString& text) {
  return text.attributeAtIndex(BaselineOffsetAttributeName, 0).toFloat();
}

QStringList linesOf(const QString& text) {
  QStringList lines;
  for (const Ref<AttributedString>& line :
       componentsSeparatedByLineDelimiter(*AttributedString::make(text)))
    lines.append(line->string());
  return lines;
}

} // namespace

TEST(attributed_string_additions, AStringWithAttributesHasThemOverItsWholeLength) {
  const auto text = attributedStringWithString(u"abc"_s, marked);
  EXPECT_EQ(text->string(), u"abc"_s);
  ASSERT_EQ(text->runs().size(), 1U);
  EXPECT_EQ(text->runs()[0].range, (Range{0, 3}));
  EXPECT_EQ(text->runs()[0].attributes, marked);
  EXPECT_NE(attributedStringWithString(u"abc"_s, marked), text);
  EXPECT_EQ(attributedStringWithString(QString(), marked)->length(), 0);
}

TEST(attributed_string_additions, AnInlineImageIsOneCharacterWithAnAttachment) {
  const auto image = filled(16, 10);
  const auto text = attributedStringWithImage(image, sans());
  EXPECT_EQ(text->string(), QString(QChar(0xfffc)));
  EXPECT_EQ(text->metaObject(), &AttributedString::staticMetaObject);
  const auto attachment =
      objectOf<TextAttachment>(text->attributeAtIndex(AttachmentAttributeName, 0));
  ASSERT_NE(attachment, nullptr);
  EXPECT_EQ(attachment->attachmentCell()->image(), image);
  EXPECT_EQ(text->attributesAtIndex(0).size(), 2);
}

TEST(attributed_string_additions, TheBaselineOffsetIsASinglePrecisionNumber) {
  const auto text = attributedStringWithImage(filled(16, 10), sans());
  EXPECT_EQ(text->attributeAtIndex(BaselineOffsetAttributeName, 0).metaType(),
            QMetaType::fromType<float>());
}

TEST(attributed_string_additions, TheBaselineOffsetPutsTheMiddleOnTheMiddleOfTheLine) {
  // (23.28 − 10) × 0.5 − 4.72 = 1.92; (23.28 − 40) × 0.5 − 4.72 = −13.08
  EXPECT_NEAR(offsetOf(*attributedStringWithImage(filled(16, 10), sans())), 1.92, 0.02);
  EXPECT_NEAR(offsetOf(*attributedStringWithImage(filled(16, 40), sans())), -13.08, 0.02);
}

TEST(attributed_string_additions, TheBaselineOffsetIsRoundedTwice) {
  bool roundingShows = false;
  for (int height = 1; height < 200; ++height) {
    const auto font = Font::fontWithName(u"DejaVu Sans"_s, 7 + height / 13.0);
    const double exact = (font->lineHeight() - height) * 0.5;
    const auto expected = float(double(float(exact)) + font->descender());
    EXPECT_EQ(offsetOf(*attributedStringWithImage(filled(2, height), font)), expected);
    roundingShows |= expected != float(exact + font->descender());
  }
  EXPECT_TRUE(roundingShows);
}

TEST(attributed_string_additions, AnInlineImageStandsInTheMiddleOfItsLine) {
  for (const bool flipped : {false, true})
    for (const double scale : {1.0, 1.5, 2.0}) {
      Canvas canvas({80, 40}, scale, flipped);
      const auto text = MutableAttributedString::make(
          u"  "_s, {{FontAttributeName, any(sans())},
                    {ForegroundColorAttributeName, any(Color::deviceRGB(0, 0, 1))}});
      const double x = 10 + text->size().width();
      text->appendAttributedString(*attributedStringWithImage(filled(16, 10), sans()));
      EXPECT_NEAR(text->size().height(), sans()->lineHeight(), 1e-9);
      EXPECT_NEAR(text->size().width(), x - 10 + 16, 1e-9);
      text->drawAtPoint({10, 5});
      const QRect ink = inkBounds(canvas.finished());
      EXPECT_EQ(ink.size(), QSize(16, 10) * scale) << scale;
      EXPECT_NEAR(ink.left(), x * scale, 0.51);
      const double height = text->size().height();
      const double bottom = (flipped ? 40 - 5 - height : 5) + (height - 10) / 2;
      EXPECT_NEAR(ink.top(), bottom * scale, 0.51) << scale << flipped;
      EXPECT_EQ(canvas.pixel(ink.center().x(), ink.center().y()), QColor(Qt::red));
    }
}

TEST(attributed_string_additions, AnInlineImageHigherThanTheLineMakesTheLineAsHigh) {
  Canvas canvas({60, 60});
  const auto text = MutableAttributedString::make(u"x"_s, {{FontAttributeName, any(sans())}});
  const double x = text->size().width();
  text->appendAttributedString(*attributedStringWithImage(filled(16, 40), sans()));
  EXPECT_NEAR(text->size().height(), 40, 1e-5);
  text->drawAtPoint({0, 3});
  canvas.finished();
  const int column = int(x) + 8;
  EXPECT_EQ(canvas.pixel(column, 3), QColor(Qt::red));
  EXPECT_EQ(canvas.pixel(column, 42), QColor(Qt::red));
  EXPECT_EQ(canvas.pixel(column, 2), QColor(Qt::white));
  EXPECT_EQ(canvas.pixel(column, 43), QColor(Qt::white));
}

TEST(attributed_string_additions, AnInlineImageAloneIsAsLargeAsTheImageAndTheBaselineAsk) {
  // 1.92 above the baseline, which belongs to the line.
  const auto small = attributedStringWithImage(filled(16, 10), sans());
  EXPECT_NEAR(small->size().height(), 11.92, 0.02);
  EXPECT_EQ(small->size().width(), 16);
  EXPECT_NEAR(attributedStringWithImage(filled(16, 40), sans())->size().height(), 40, 1e-5);
}

TEST(attributed_string_additions, InlineImagesBearNothingAndNoSize) {
  const auto helvetica = std::make_shared<Font>();
  const auto expected =
      float(double(float(helvetica->lineHeight() * 0.5)) + helvetica->descender());
  for (const Ref<Image>& image : {Ref<Image>(), Image::make(QSizeF(0, 0)),
                                  Image::make(QSizeF(-3, std::nan(""))), Image::make({0, 0})}) {
    const auto text = attributedStringWithImage(image, nullptr);
    EXPECT_EQ(text->length(), 1);
    EXPECT_EQ(offsetOf(*text), expected);
    EXPECT_EQ(text->size().width(), 0);
    Canvas canvas({20, 20});
    text->drawAtPoint({2, 2});
    EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
  }
  // A size without representations takes its place and shows nothing.
  const auto empty = attributedStringWithImage(Image::make(QSizeF(30, 10)), nullptr);
  EXPECT_EQ(empty->size().width(), 30);
  Canvas canvas({40, 20});
  empty->drawAtPoint({2, 2});
  EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
}

TEST(attributed_string_additions, AnInlineImageSurvivesAnArchive) {
  const auto text = attributedStringWithImage(filled(16, 10), sans());
  const auto read = KeyedUnarchiver::unarchiveObjectOfClass<AttributedString>(
      KeyedArchiver::archivedDataWithRootObject(text));
  ASSERT_NE(read, nullptr);
  EXPECT_TRUE(read->isEqual(*text));
  EXPECT_EQ(read->size(), text->size());
  EXPECT_EQ(offsetOf(*read), offsetOf(*text));
}

TEST(attributed_string_additions, LinesComeWithoutTheirTerminators) {
  EXPECT_EQ(linesOf(u"a\nb\nc"_s), QStringList({u"a"_s, u"b"_s, u"c"_s}));
}

TEST(attributed_string_additions, EmptyTextIsOneEmptyLine) {
  EXPECT_EQ(linesOf(QString()), QStringList({QString()}));
}

TEST(attributed_string_additions, ATerminatorAtTheEndAddsNoLine) {
  EXPECT_EQ(linesOf(u"a\n"_s), QStringList({u"a"_s}));
  EXPECT_EQ(linesOf(u"\n"_s), QStringList({u""_s}));
  EXPECT_EQ(linesOf(u"a\r\n"_s), QStringList({u"a"_s}));
  EXPECT_EQ(linesOf(u"a\r"_s), QStringList({u"a"_s}));
  EXPECT_EQ(linesOf(u"\n\n"_s), QStringList({u""_s, u""_s}));
}

TEST(attributed_string_additions, EveryLineTerminatorCounts) {
  for (const QString& terminator : {u"\n"_s, u"\r"_s, u"\r\n"_s, u"\u2028"_s, u"\u2029"_s})
    EXPECT_EQ(linesOf(u"a"_s + terminator + u"b"), QStringList({u"a"_s, u"b"_s}));
  // Two of them apart are two lines, only CR LF is a pair.
  EXPECT_EQ(linesOf(u"a\n\rb"_s), QStringList({u"a"_s, u""_s, u"b"_s}));
  EXPECT_EQ(linesOf(u"a\r\r\nb"_s), QStringList({u"a"_s, u""_s, u"b"_s}));
}

TEST(attributed_string_additions, OtherSeparatorsDoNotEndALine) {
  const QString text = u"a\u0085b\vc\fd\te"_s + QChar(0) + u"f\u001eg";
  EXPECT_EQ(linesOf(text), QStringList({text}));
}

TEST(attributed_string_additions, LinesKeepTheirAttributes) {
  const auto text = MutableAttributedString::make(u"ab\ncd\nef"_s);
  text->setAttributes(marked, {1, 3});
  const auto lines = componentsSeparatedByLineDelimiter(*text);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_TRUE(lines[0]->attributesAtIndex(0).isEmpty());
  EXPECT_EQ(lines[0]->attributesAtIndex(1), marked);
  EXPECT_EQ(lines[1]->attributesAtIndex(0), marked);
  EXPECT_TRUE(lines[1]->attributesAtIndex(1).isEmpty());
  ASSERT_EQ(lines[2]->runs().size(), 1U);
  EXPECT_TRUE(lines[2]->attributesAtIndex(0).isEmpty());
}

TEST(attributed_string_additions, HugeTextsOfManyRunsAreSplit) {
  constexpr int count = 1 << 18;
  QString characters;
  for (int i = 0; i < count; ++i)
    characters += u"ab\r\n";
  const auto text = MutableAttributedString::make(characters);
  // From the start, so that a cut has no runs behind it to move.
  for (int i = 0; i < count; ++i)
    text->setAttributes(marked, {i * 4 + 1, 1});
  const auto lines = componentsSeparatedByLineDelimiter(*text);
  ASSERT_EQ(lines.size(), std::size_t(count));
  for (const std::size_t i : {std::size_t(0), std::size_t(count / 2), std::size_t(count - 1)}) {
    EXPECT_EQ(lines[i]->string(), u"ab"_s);
    ASSERT_EQ(lines[i]->runs().size(), 2U);
    EXPECT_EQ(lines[i]->runs()[1].attributes, marked);
  }
}
