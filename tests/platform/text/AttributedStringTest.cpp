#include "zqticker/platform/text/AttributedString.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/string_drawing.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

const Attributes marked{{u"mark"_s, 1}};

// Every unit of the text has exactly one run, and runs lie end to end.
void expectGapless(const AttributedString& text) {
  qsizetype end = 0;
  for (const AttributedString::Run& run : text.runs()) {
    EXPECT_EQ(run.range.location, end);
    EXPECT_GT(run.range.length, 0);
    end = run.range.end();
  }
  EXPECT_EQ(end, text.length());
}

} // namespace

TEST(AttributedString, HoldsCharactersAndAttributes) {
  const auto text = AttributedString::make(u"abc"_s, marked);
  EXPECT_EQ(text->string(), u"abc"_s);
  EXPECT_EQ(text->length(), 3);
  EXPECT_EQ(text->description(), u"abc"_s);
  ASSERT_EQ(text->runs().size(), 1U);
  EXPECT_EQ(text->runs()[0].range, (Range{0, 3}));
  EXPECT_EQ(text->runs()[0].attributes, marked);
  EXPECT_TRUE(AttributedString::make(QString(), marked)->runs().empty());
}

TEST(AttributedString, CountsUtf16Units) {
  EXPECT_EQ(AttributedString::make(u"\U0001D11Ex"_s)->length(), 3);
}

TEST(AttributedString, GivesAttributesWithTheirRange) {
  const auto text = MutableAttributedString::make(u"abcdef"_s);
  text->setAttributes(marked, {1, 2});
  Range range;
  EXPECT_TRUE(text->attributesAtIndex(0, &range).isEmpty());
  EXPECT_EQ(range, (Range{0, 1}));
  EXPECT_EQ(text->attributesAtIndex(2, &range), marked);
  EXPECT_EQ(range, (Range{1, 2}));
  EXPECT_TRUE(text->attributesAtIndex(5, &range).isEmpty());
  EXPECT_EQ(range, (Range{3, 3}));
  EXPECT_EQ(text->attributeAtIndex(u"mark"_s, 1), Any(1));
  EXPECT_FALSE(text->attributeAtIndex(u"mark"_s, 3).isValid());
  for (const qsizetype index : {qsizetype(-1), qsizetype(6)}) {
    EXPECT_THROW(text->attributesAtIndex(index), RangeException);
    EXPECT_THROW(text->attributeAtIndex(u"mark"_s, index), RangeException);
  }
  EXPECT_THROW(AttributedString::make(QString())->attributesAtIndex(0), RangeException);
}

TEST(AttributedString, RangesOutsideTheTextRaise) {
  const auto text = MutableAttributedString::make(u"abc"_s);
  const qsizetype huge = std::numeric_limits<qsizetype>::max();
  for (const Range range :
       {Range{0, 4}, Range{4, 0}, Range{-1, 1}, Range{1, -1}, Range{2, huge}, Range{huge, huge}}) {
    EXPECT_THROW(text->attributedSubstringFromRange(range), RangeException);
    EXPECT_THROW(text->replaceCharactersInRange(range, u"x"_s), RangeException);
    EXPECT_THROW(text->deleteCharactersInRange(range), RangeException);
    EXPECT_THROW(text->setAttributes({}, range), RangeException);
    EXPECT_THROW(text->addAttribute(u"a"_s, 1, range), RangeException);
    EXPECT_THROW(text->removeAttribute(u"a"_s, range), RangeException);
    EXPECT_THROW(text->addAttributes({}, range), RangeException);
  }
  EXPECT_EQ(text->string(), u"abc"_s);
  expectGapless(*text);
}

TEST(AttributedString, GivesPartsWithTheirAttributes) {
  const auto text = MutableAttributedString::make(u"abcdef"_s);
  text->setAttributes(marked, {2, 2});
  const auto part = text->attributedSubstringFromRange({3, 2});
  EXPECT_EQ(part->string(), u"de"_s);
  ASSERT_EQ(part->runs().size(), 2U);
  EXPECT_EQ(part->runs()[0].attributes, marked);
  EXPECT_EQ(part->runs()[1].range, (Range{1, 1}));
  EXPECT_EQ(text->attributedSubstringFromRange({6, 0})->length(), 0);
}

TEST(AttributedString, IsEqualByCharactersAndAttributesHoweverRunsAreCut) {
  const auto whole = AttributedString::make(u"abcdef"_s, marked);
  const auto cut = MutableAttributedString::make(u"abcdef"_s, marked);
  cut->addAttribute(u"mark"_s, 1, {2, 2});
  ASSERT_GT(cut->runs().size(), 1U);
  EXPECT_TRUE(whole->isEqual(*cut));
  EXPECT_TRUE(cut->isEqual(*whole));
  cut->addAttribute(u"mark"_s, 2, {2, 2});
  EXPECT_FALSE(whole->isEqual(*cut));
  EXPECT_FALSE(whole->isEqual(*AttributedString::make(u"abcdeF"_s, marked)));
  EXPECT_FALSE(whole->isEqual(*Color::deviceWhite(0)));
}

TEST(AttributedString, ComparesReferencesAmongAttributesByValue) {
  const auto inFont = [](double size) {
    return AttributedString::make(
        u"a"_s, {{FontAttributeName, any(Font::fontWithName(u"Helvetica"_s, size))}});
  };
  EXPECT_TRUE(inFont(12)->isEqual(*inFont(12)));
  EXPECT_FALSE(inFont(12)->isEqual(*inFont(13)));
}

TEST(AttributedString, CopiesAreOtherObjects) {
  const auto text = MutableAttributedString::make(u"abc"_s, marked);
  const Ref<Object> copy = text->copy();
  EXPECT_NE(copy, text);
  EXPECT_EQ(std::dynamic_pointer_cast<MutableAttributedString>(copy), nullptr);
  EXPECT_TRUE(copy->isEqual(*text));
  const Ref<MutableAttributedString> changeable = text->mutableCopy();
  changeable->deleteCharactersInRange({0, 1});
  EXPECT_EQ(text->string(), u"abc"_s);
  EXPECT_TRUE(copy->isEqual(*text));
  const auto immutable = AttributedString::make(u"abc"_s);
  EXPECT_NE(immutable->copy(), immutable);
}

TEST(AttributedString, MeasuresLikeAPlainStringOfTheSameAttributes) {
  const Attributes attributes{{FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, 12.6))}};
  EXPECT_EQ(AttributedString::make(u"AVATAR"_s, attributes)->size(),
            sizeWithAttributes(u"AVATAR"_s, attributes));
  EXPECT_EQ(sizeWithAttributes(QString(), attributes),
            QSizeF(0, Font::fontWithName(u"DejaVu Sans"_s, 12.6)->lineHeight()));
}

TEST(MutableAttributedString, MeasuresAnewAfterEveryChange) {
  const auto text = MutableAttributedString::make(u"abc"_s);
  const double before = text->size().width();
  text->appendAttributedString(*AttributedString::make(u"def"_s));
  const double longer = text->size().width();
  EXPECT_GT(longer, before);
  text->addAttribute(FontAttributeName, any(Font::fontWithName(u"Helvetica"_s, 40)), {0, 6});
  EXPECT_GT(text->size().width(), longer * 2);
  text->setAttributes({}, {0, 6});
  EXPECT_EQ(text->size().width(), longer);
  text->addAttributes({{KernAttributeName, 3}}, {0, 6});
  EXPECT_GT(text->size().width(), longer + 10);
  text->removeAttribute(KernAttributeName, {0, 6});
  EXPECT_EQ(text->size().width(), longer);
}

TEST(MutableAttributedString, NewCharactersTakeTheAttributesOfThoseTheyReplace) {
  const auto text = MutableAttributedString::make(u"abcdef"_s);
  text->setAttributes(marked, {2, 2});
  text->replaceCharactersInRange({3, 2}, u"xyz"_s);
  EXPECT_EQ(text->string(), u"abcxyzf"_s);
  EXPECT_EQ(text->attributesAtIndex(5), marked);
  EXPECT_TRUE(text->attributesAtIndex(6).isEmpty());
  text->replaceCharactersInRange({6, 0}, u"!"_s);
  EXPECT_EQ(text->attributesAtIndex(6), marked);
  text->replaceCharactersInRange({0, 0}, u"<"_s);
  EXPECT_TRUE(text->attributesAtIndex(0).isEmpty());
  expectGapless(*text);
}

TEST(MutableAttributedString, MayBePutIntoItself) {
  const auto text = MutableAttributedString::make(u"ab"_s, marked);
  text->replaceCharactersInRange({1, 0}, *text);
  EXPECT_EQ(text->string(), u"aabb"_s);
  expectGapless(*text);
  text->appendAttributedString(*text);
  EXPECT_EQ(text->string(), u"aabbaabb"_s);
  expectGapless(*text);
}

TEST(MutableAttributedString, NothingAsAValueRemovesTheAttribute) {
  const auto text = MutableAttributedString::make(u"ab"_s, marked);
  text->addAttribute(u"mark"_s, Any(), {0, 1});
  EXPECT_TRUE(text->attributesAtIndex(0).isEmpty());
  text->addAttributes({{u"mark"_s, Any()}, {u"other"_s, 2}}, {1, 1});
  EXPECT_EQ(text->attributesAtIndex(1), (Attributes{{u"other"_s, 2}}));
}

TEST(MutableAttributedString, AgreesWithAPlainModelThroughRandomChanges) {
  std::mt19937 random(11);
  const auto upTo = [&](qsizetype limit) { return qsizetype(random() % std::uint32_t(limit + 1)); };
  const auto text = MutableAttributedString::make(QString());
  // One value of the attribute for each unit; 0 is none.
  QString characters;
  std::vector<int> values;
  for (int round = 0; round < 2000; ++round) {
    const qsizetype location = upTo(text->length());
    const Range range{location, upTo(std::min<qsizetype>(5, text->length() - location))};
    const auto from = values.begin() + range.location;
    const int value = int(random() % 3);
    switch (random() % 4) {
    case 0: {
      const QString added(upTo(4), QChar(char16_t(u'a' + random() % 26)));
      const Attributes attributes = value ? Attributes{{u"mark"_s, value}} : Attributes();
      text->replaceCharactersInRange(range, *AttributedString::make(added, attributes));
      characters.replace(range.location, range.length, added);
      values.erase(from, from + range.length);
      values.insert(values.begin() + range.location, std::size_t(added.size()), value);
      break;
    }
    case 1:
      text->addAttribute(u"mark"_s, value ? Any(value) : Any(), range);
      std::fill(from, from + range.length, value);
      break;
    case 2:
      text->setAttributes(value ? Attributes{{u"mark"_s, value}} : Attributes(), range);
      std::fill(from, from + range.length, value);
      break;
    default:
      text->deleteCharactersInRange(range);
      characters.remove(range.location, range.length);
      values.erase(from, from + range.length);
    }
    ASSERT_EQ(text->string(), characters);
    expectGapless(*text);
    for (qsizetype i = 0; i < text->length(); ++i)
      ASSERT_EQ(text->attributeAtIndex(u"mark"_s, i).toInt(), values[std::size_t(i)]);
  }
}
