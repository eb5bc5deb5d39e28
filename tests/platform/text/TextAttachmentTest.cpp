#include "zqticker/platform/text/TextAttachment.h"

#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/archiving/KeyedArchive.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/string_drawing.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::Canvas;
using zq::testing::inkBounds;
using zq::testing::maximumDifference;

namespace {

const QString character(QChar(0xfffc));

Ref<Image> filled(int width, int height, const QColor& color = Qt::red) {
  QImage bitmap(width, height, QImage::Format_ARGB32_Premultiplied);
  bitmap.fill(color);
  return Image::fromQImage(bitmap);
}

Attributes showing(const Ref<Image>& image) {
  return {{AttachmentAttributeName, any(TextAttachment::make(image))}};
}

Attributes with(Attributes attributes, QLatin1StringView name, const Any& value) {
  attributes.insert(name, value);
  return attributes;
}

// The ink of `text` drawn at (4, 4) of a canvas of 60 by 40.
QRect inkOf(const AttributedString& text, bool flipped = false) {
  Canvas canvas({60, 40}, 1, flipped);
  text.drawAtPoint({4, 4});
  return inkBounds(canvas.finished());
}

template <class T>
Ref<T> throughAnArchive(const Ref<T>& object) {
  return KeyedUnarchiver::unarchiveObjectOfClass<T>(
      KeyedArchiver::archivedDataWithRootObject(object));
}

} // namespace

TEST(TextAttachment, ShowsAnImageThroughItsCell) {
  const auto image = filled(8, 6);
  const auto attachment = TextAttachment::make(image);
  ASSERT_NE(attachment->attachmentCell(), nullptr);
  EXPECT_EQ(attachment->attachmentCell()->image(), image);
  EXPECT_EQ(attachment->attachmentCell()->cellSize(), QSizeF(8, 6));
  EXPECT_EQ(TextAttachmentCell().cellSize(), QSizeF(0, 0));
  EXPECT_EQ(TextAttachment().attachmentCell(), nullptr);
}

TEST(TextAttachment, CopiesShareTheImage) {
  const auto attachment = TextAttachment::make(filled(8, 6));
  const auto copy = copyOf(attachment);
  EXPECT_NE(copy, attachment);
  EXPECT_NE(copy->attachmentCell(), attachment->attachmentCell());
  EXPECT_EQ(copy->attachmentCell()->image(), attachment->attachmentCell()->image());
  EXPECT_TRUE(copy->isEqual(*attachment));
  copy->attachmentCell()->setImage(filled(8, 6, Qt::blue));
  EXPECT_FALSE(copy->isEqual(*attachment));
  EXPECT_FALSE(TextAttachment().isEqual(*attachment));
  EXPECT_TRUE(TextAttachment().isEqual(TextAttachment()));
}

TEST(TextAttachment, ArchivesUnderItsNamesAndKeys) {
  const auto attachment = TextAttachment::make(filled(8, 6));
  EXPECT_TRUE(throughAnArchive(attachment)->isEqual(*attachment));
  EXPECT_EQ(throughAnArchive(std::make_shared<TextAttachment>())->attachmentCell(), nullptr);
  const auto blank = throughAnArchive(TextAttachment::make(nullptr));
  ASSERT_NE(blank->attachmentCell(), nullptr);
  EXPECT_EQ(blank->attachmentCell()->image(), nullptr);
  const QByteArray data = KeyedArchiver::archivedDataWithRootObject(attachment);
  for (const char* name : {"NSTextAttachment", "NSTextAttachmentCell", "NSFileWrapper", "NSCell",
                           "NSCellFlags", "NSCellFlags2", "NSContents"})
    EXPECT_TRUE(data.contains(name)) << name;
}

namespace zq::testing {

// A cell as other writers make it.
class AttachmentCellRecord : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSTextAttachmentCell")

 public:
  void encodeWithCoder(Coder& coder) override {
    coder.encodeObject(contents, "NSContents");
    coder.encodeObject(support, "NSSupport");
  }
  Any contents;
  Any support;
};

} // namespace zq::testing

TEST(TextAttachment, ReadsCellsOfOtherKinds) {
  const auto record = std::make_shared<zq::testing::AttachmentCellRecord>();
  const auto read = [&] {
    return KeyedUnarchiver::unarchiveObjectOfClass<TextAttachmentCell>(
        KeyedArchiver::archivedDataWithRootObject(record));
  };
  record->contents = Any(u"text"_s);
  EXPECT_EQ(read()->image(), nullptr);
  record->support = any(Font::fontWithName(u"Helvetica"_s, 12));
  EXPECT_EQ(read()->image(), nullptr);
  record->support = any(filled(8, 6));
  ASSERT_NE(read()->image(), nullptr);
  EXPECT_EQ(read()->image()->size(), QSizeF(8, 6));
}

TEST(TextAttachment, IsOneCharacterOfAText) {
  const auto attachment = TextAttachment::make(filled(8, 6));
  const auto text = AttributedString::attributedStringWithAttachment(attachment);
  EXPECT_EQ(text->string(), character);
  EXPECT_EQ(objectOf(text->attributeAtIndex(AttachmentAttributeName, 0)), attachment);
  EXPECT_TRUE(
      AttributedString::attributedStringWithAttachment(nullptr)->attributesAtIndex(0).isEmpty());
}

TEST(TextAttachment, StandsOnTheBaselineAtItsOwnSize) {
  const auto text = AttributedString::make(character, showing(filled(8, 6)));
  EXPECT_EQ(text->size(), QSizeF(8, 6));
  EXPECT_EQ(inkOf(*text), QRect(4, 4, 8, 6));
  // The lower edge of the box is at 40 − 4 − 6 of a flipped context.
  EXPECT_EQ(inkOf(*text, true), QRect(4, 30, 8, 6));
}

TEST(TextAttachment, IsUprightInEveryContext) {
  QImage halves(4, 4, QImage::Format_ARGB32_Premultiplied);
  halves.fill(Qt::blue);
  for (int x = 0; x < 4; ++x)
    for (int y = 0; y < 2; ++y)
      halves.setPixelColor(x, y, Qt::red);
  const auto text = AttributedString::make(character, showing(Image::fromQImage(halves)));
  for (const bool flipped : {false, true}) {
    Canvas canvas({4, 4}, 1, flipped);
    text->drawAtPoint({0, 0});
    canvas.finished();
    EXPECT_EQ(canvas.pixel(1, 3), QColor(Qt::red));
    EXPECT_EQ(canvas.pixel(1, 0), QColor(Qt::blue));
  }
}

TEST(TextAttachment, IsRaisedAndLoweredByTheBaselineOffset) {
  const auto raised = AttributedString::make(
      character, with(showing(filled(8, 6)), BaselineOffsetAttributeName, 5));
  // The baseline belongs to the line.
  EXPECT_EQ(raised->size(), QSizeF(8, 11));
  EXPECT_EQ(inkOf(*raised), QRect(4, 9, 8, 6));
  const auto lowered = AttributedString::make(
      character, with(showing(filled(8, 6)), BaselineOffsetAttributeName, -4));
  EXPECT_EQ(lowered->size(), QSizeF(8, 6));
  EXPECT_EQ(inkOf(*lowered), QRect(4, 4, 8, 6));
}

TEST(TextAttachment, MakesRoomAmongLetters) {
  const Attributes sans{{FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, 10))}};
  const auto text = MutableAttributedString::make(u"ab"_s, sans);
  const QSizeF letters = text->size();
  text->replaceCharactersInRange({1, 0},
                                 *AttributedString::make(character, showing(filled(8, 30))));
  EXPECT_NEAR(text->size().width(), letters.width() + 8, 0.01);
  const double descent = -Font::fontWithName(u"DejaVu Sans"_s, 10)->descender();
  EXPECT_NEAR(text->size().height(), 30 + descent, 1e-9);
}

TEST(TextAttachment, ItsOwnFontDoesNotMakeTheLineHigher) {
  const auto text =
      AttributedString::make(character, with(showing(filled(8, 6)), FontAttributeName,
                                             any(Font::fontWithName(u"DejaVu Sans"_s, 100))));
  EXPECT_EQ(text->size(), QSizeF(8, 6));
}

TEST(TextAttachment, DoesNothingToOtherCharacters) {
  const auto text = AttributedString::make(u"ab"_s, showing(filled(8, 6)));
  EXPECT_EQ(text->size(), AttributedString::make(u"ab"_s)->size());
  // Nor does the character without one, or with something else in its place.
  EXPECT_EQ(AttributedString::make(character, {{AttachmentAttributeName, 1}})->size(),
            AttributedString::make(character)->size());
  const auto mixed = AttributedString::make(u"ab" + character + u"ab", showing(filled(8, 6)));
  EXPECT_NEAR(mixed->size().width(), 2 * text->size().width() + 8, 0.01);
}

TEST(TextAttachment, IsShownForEachOfItsCharacters) {
  const auto text = AttributedString::make(character.repeated(3), showing(filled(8, 6)));
  EXPECT_EQ(text->size(), QSizeF(24, 6));
  EXPECT_EQ(inkOf(*text), QRect(4, 4, 24, 6));
}

TEST(TextAttachment, NeitherTakesNorGivesMarksAndJoiners) {
  // A mark, a joiner and a skin tone do not make what follows a part of what stands before.
  for (const QString& joined : {u"\u0301"_s, u"\u200d"_s, u"\U0001F3FD"_s}) {
    const auto text = MutableAttributedString::make(u"a" + joined);
    text->appendAttributedString(*AttributedString::make(character, showing(filled(20, 6))));
    const double before = AttributedString::make(u"a" + joined)->size().width();
    EXPECT_NEAR(text->size().width(), before + 20, 0.01);
    const auto after = MutableAttributedString::make(character, showing(filled(20, 6)));
    after->appendAttributedString(*AttributedString::make(joined));
    EXPECT_GE(after->size().width(), 20);
  }
}

TEST(TextAttachment, StandsInTheOrderOfItsText) {
  const auto picture = [](const QColor& color) {
    return AttributedString::make(character, showing(filled(8, 6, color)));
  };
  // Two pictures within Hebrew letters run from right to left.
  const auto text = MutableAttributedString::make(u"\u05d0"_s);
  text->appendAttributedString(*picture(Qt::red));
  text->appendAttributedString(*picture(Qt::blue));
  text->appendAttributedString(*AttributedString::make(u"\u05d1"_s));
  const double letter = AttributedString::make(u"\u05d1"_s)->size().width();
  Canvas canvas({60, 40});
  text->drawAtPoint({0, 10});
  canvas.finished();
  const int row = 10 - int(Font().descender()) + 3;
  EXPECT_EQ(canvas.pixel(int(letter) + 4, row), QColor(Qt::blue));
  EXPECT_EQ(canvas.pixel(int(letter) + 12, row), QColor(Qt::red));
}

TEST(TextAttachment, IsFollowedByItsKern) {
  const auto pair = [](double kern) {
    return AttributedString::make(character.repeated(2),
                                  with(showing(filled(8, 6)), KernAttributeName, kern));
  };
  EXPECT_EQ(pair(3)->size().width(), 22);
  EXPECT_EQ(pair(-3)->size().width(), 10);
  // Never backwards; the pictures stay as wide as they are.
  EXPECT_EQ(pair(-50)->size().width(), 0);
  EXPECT_EQ(inkOf(*pair(-50)), QRect(4, 4, 8, 6));
}

TEST(TextAttachment, HasTheBackgroundOfItsRun) {
  const auto text = AttributedString::make(
      character, with(showing(filled(8, 6, QColor(255, 0, 0, 0))), BackgroundColorAttributeName,
                      any(Color::deviceRGB(0, 0, 1))));
  EXPECT_EQ(inkOf(*text), QRect(4, 4, 8, 6));
  EXPECT_EQ(inkOf(*text, true), QRect(4, 30, 8, 6));
}

TEST(TextAttachment, CastsOneShadowWithItsLine) {
  Canvas canvas({40, 30});
  const auto shadow = std::make_shared<Shadow>();
  shadow->setShadowOffset({12, -10});
  shadow->setShadowBlurRadius(0);
  shadow->setShadowColor(Color::deviceWhite(0, 0.5));
  canvas.context->setShadow(shadow.get());
  AttributedString::make(character, showing(filled(8, 6)))->drawAtPoint({4, 20});
  EXPECT_NE(canvas.context->shadow(), nullptr);
  canvas.finished();
  EXPECT_EQ(canvas.pixel(8, 22), QColor(Qt::red));
  // Half black once, not twice.
  EXPECT_NEAR(canvas.pixel(20, 13).red(), 128, 2);
  EXPECT_EQ(canvas.pixel(30, 5), QColor(Qt::white));
}

TEST(TextAttachment, FollowsTheContextsOperationAndOpacity) {
  Canvas canvas({8, 6});
  canvas.context->setFraction(0.5);
  AttributedString::make(character, showing(filled(8, 6)))->drawAtPoint({0, 0});
  canvas.finished();
  EXPECT_NEAR(canvas.pixel(3, 3).green(), 128, 2);
  EXPECT_EQ(canvas.pixel(3, 3).red(), 255);
}

TEST(TextAttachment, IsTakenAsItIsWhenTheTextIsMeasured) {
  const auto image = filled(8, 6);
  const auto text = AttributedString::make(character, showing(image));
  EXPECT_EQ(text->size(), QSizeF(8, 6));
  image->setSize({20, 20});
  {
    const ImageFocus focus(*image);
    GraphicsContext::currentContext()->setFillColor(Color::deviceRGB(0, 0, 1));
    GraphicsContext::currentContext()->fillRect({0, 0, 20, 20});
  }
  EXPECT_EQ(text->size(), QSizeF(8, 6));
  Canvas canvas({10, 10});
  text->drawAtPoint({0, 0});
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(0, 0, 8, 6));
  EXPECT_EQ(canvas.pixel(1, 1), QColor(Qt::red));
  EXPECT_EQ(AttributedString::make(character, showing(image))->size(), QSizeF(20, 20));
}

TEST(TextAttachment, IsRecordedWithItsText) {
  const auto text = AttributedString::make(character, showing(filled(8, 6)));
  const auto image = Image::make(QSizeF(20, 20));
  {
    const ImageFocus focus(*image);
    text->drawAtPoint({4, 4});
  }
  EXPECT_EQ(inkBounds(image->rasterised(1), QColor(0, 0, 0, 0)), QRect(4, 4, 8, 6));
  EXPECT_EQ(inkBounds(image->rasterised(2), QColor(0, 0, 0, 0)), QRect(8, 8, 16, 12));
}

TEST(TextAttachment, ShowsInPlainStringsWithAttributes) {
  const Attributes attributes = showing(filled(8, 6));
  EXPECT_EQ(sizeWithAttributes(character, attributes), QSizeF(8, 6));
  Canvas canvas({20, 20});
  drawAtPoint(character, {4, 4}, attributes);
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(4, 4, 8, 6));
}

TEST(TextAttachment, TakesNoPlaceWithoutACellOrAnImage) {
  for (const Ref<TextAttachment>& attachment :
       {std::make_shared<TextAttachment>(), TextAttachment::make(nullptr)}) {
    const auto text = AttributedString::attributedStringWithAttachment(attachment);
    EXPECT_EQ(text->size(), QSizeF(0, 0));
    EXPECT_TRUE(inkOf(*text).isNull());
  }
}

TEST(TextAttachment, BearsSizesBeyondAllMeasure) {
  for (const QSizeF size : {QSizeF(1e300, 1e300), QSizeF(1e9, 1), QSizeF(1, 1e9)}) {
    const auto image = filled(8, 6);
    image->setSize(size);
    const auto text = AttributedString::make(character.repeated(2), showing(image));
    EXPECT_TRUE(std::isfinite(text->size().width()));
    Canvas canvas({10, 10});
    text->drawAtPoint({0, 0});
    text->drawAtPoint({-1e8, -1e8});
  }
}

TEST(TextAttachment, ALineMayHoldHundredsOfThousands) {
  constexpr int count = 200000;
  const auto text = AttributedString::make(character.repeated(count), showing(filled(8, 6)));
  EXPECT_EQ(text->size(), QSizeF(8.0 * count, 6));
  // Any part of it is drawn without the rest.
  Canvas canvas({60, 40});
  text->drawAtPoint({4 - 8.0 * (count - 2), 4});
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(0, 4, 20, 6));
}

#include "TextAttachmentTest.moc"
