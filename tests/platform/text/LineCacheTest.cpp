#include "zqticker/platform/text/LineCache_p.h"

#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/TextAttachment.h"
#include "zqticker/platform/text/TextLine_p.h"

#include <gtest/gtest.h>

#include <QtGui/QPainter>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

Ref<AttributedString> text(const QString& characters) {
  return AttributedString::make(
      characters, {{FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, 14))}});
}

QImage drawn(const AttributedString& string) {
  QImage image(600, 24, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  const GraphicsContext context(&painter, QSizeF(600, 24));
  string.drawAtPoint(QPointF(3.3, 4));
  return image;
}

// Measures so many other texts that none of those before is at hand.
void measureManyOthers() {
  for (int i = 0; i < 2 * LineCache::MaximumCost / (LineCache::LineCost + 36); ++i)
    text(u"another headline of characters %1"_s.arg(i, 4))->size();
}

} // namespace

TEST(LineCache, TakesNoMoreThanItsMaximumHoweverManyTextsAreMeasured) {
  std::vector<Ref<AttributedString>> texts;
  for (int i = 0; i < 3000; ++i) {
    texts.push_back(text(u"a headline of some forty characters %1"_s.arg(i, 4)));
    texts.back()->size();
    ASSERT_LE(LineCache::shared().cost(), LineCache::MaximumCost);
  }
  EXPECT_GT(LineCache::shared().cost(), LineCache::MaximumCost / 2);
}

TEST(LineCache, GivesATextTheSameSizeAndPixelsWhenItIsLaidOutAgain) {
  for (const QString& characters :
       {u"AVATAR office, Wave"_s, u"abc שלום עולם (12.5 def)"_s, u"السلام عليكم"_s,
        u"x 👩‍👩‍👧‍👦 🇩🇪 1️⃣ y"_s}) {
    const Ref<AttributedString> string = text(characters);
    const QSizeF size = string->size();
    const QImage before = drawn(*string);
    const Ref<Image> recorded = Image::make(QSizeF(600, 24));
    {
      const ImageFocus focus(*recorded);
      string->drawAtPoint(QPointF(3, 4));
    }
    const QImage pixels = recorded->rasterised(1);
    measureManyOthers();
    EXPECT_EQ(string->size(), size);
    EXPECT_EQ(drawn(*string), before);
    measureManyOthers();
    EXPECT_EQ(recorded->rasterised(1), pixels);
  }
}

TEST(LineCache, KeepsLongLinesMeasuredAndLetsTheirGlyphsGo) {
  const auto line = std::make_shared<const TextLine>(
      u"word and Wave, "_s.repeated(1000), text(u"word and Wave, "_s.repeated(1000))->runs());
  ASSERT_TRUE(line->isToBeKept());
  LineCache::shared().use(line);
  EXPECT_GT(line->laidOutLength(), 1000);
  const QSizeF size = line->size();
  measureManyOthers();
  EXPECT_EQ(line->laidOutLength(), 0);
  EXPECT_EQ(line->size(), size);
}

TEST(LineCache, KeepsATextWithAPictureThatHasChangedMeanwhile) {
  QImage pixels(20, 10, QImage::Format_RGB32);
  pixels.fill(Qt::red);
  const auto attachment = TextAttachment::make(Image::fromQImage(pixels));
  const auto string = AttributedString::attributedStringWithAttachment(attachment);
  const QImage before = drawn(*string);
  attachment->attachmentCell()->image()->setSize(QSizeF(40, 20));
  measureManyOthers();
  EXPECT_EQ(string->size().width(), 20);
  EXPECT_EQ(drawn(*string), before);
}

TEST(LineCache, LeavesARecordedTextAsItWasWhenItIsChanged) {
  const auto string =
      MutableAttributedString::make(u"before"_s, text(u"x"_s)->runs()[0].attributes);
  const Ref<Image> recorded = Image::make(QSizeF(600, 24));
  {
    const ImageFocus focus(*recorded);
    string->drawAtPoint(QPointF(3, 4));
  }
  const QImage pixels = recorded->rasterised(1);
  string->replaceCharactersInRange({0, 6}, u"after, and longer"_s);
  measureManyOthers();
  EXPECT_EQ(std::static_pointer_cast<Image>(recorded->copy())->rasterised(1), pixels);
  EXPECT_NE(drawn(*string), drawn(*text(u"before"_s)));
}
