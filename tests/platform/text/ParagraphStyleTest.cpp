#include "zqticker/platform/text/ParagraphStyle.h"

#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::testing {

class StyleRecord : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSParagraphStyle")

 public:
  void encodeWithCoder(Coder& coder) override { write(coder); }
  std::function<void(Coder&)> write;
};

} // namespace zq::testing

namespace {

Ref<ParagraphStyle> read(std::function<void(Coder&)> write) {
  const auto record = std::make_shared<zq::testing::StyleRecord>();
  record->write = std::move(write);
  return KeyedUnarchiver::unarchiveObjectOfClass<ParagraphStyle>(
      KeyedArchiver::archivedDataWithRootObject(record));
}

template <class Style>
void expectRoundTrip(const Ref<Style>& style) {
  const auto decoded = KeyedUnarchiver::unarchiveObjectOfClass<Style>(
      KeyedArchiver::archivedDataWithRootObject(style));
  EXPECT_TRUE(decoded->isEqual(*style));
  EXPECT_EQ(decoded->className(), style->className());
}

} // namespace

TEST(ParagraphStyle, StartsWithTheDefaults) {
  const ParagraphStyle style;
  EXPECT_EQ(style.settings().alignment, TextAlignment::Natural);
  EXPECT_EQ(style.settings().writingDirection, WritingDirection::Natural);
  EXPECT_FALSE(style.tabStops());
}

TEST(ParagraphStyle, ArchivesEverySetting) {
  ParagraphSettings settings;
  settings.alignment = TextAlignment::Center;
  settings.writingDirection = WritingDirection::LeftToRight;
  settings.lineBreakMode = 4;
  double value = 1.25;
  for (double ParagraphSettings::*length :
       {&ParagraphSettings::defaultTabInterval, &ParagraphSettings::headIndent,
        &ParagraphSettings::firstLineHeadIndent, &ParagraphSettings::tailIndent,
        &ParagraphSettings::paragraphSpacing, &ParagraphSettings::paragraphSpacingBefore,
        &ParagraphSettings::lineSpacing, &ParagraphSettings::minimumLineHeight,
        &ParagraphSettings::maximumLineHeight, &ParagraphSettings::lineHeightMultiple,
        &ParagraphSettings::tighteningFactorForTruncation, &ParagraphSettings::hyphenationFactor})
    settings.*length = value *= 1.5;
  settings.allowsTighteningForTruncation = true;
  const ParagraphStyle::TabStops stops{
      {std::make_shared<TextTab>(28, 0), std::make_shared<TextTab>(56.5, 1)}};
  expectRoundTrip(std::make_shared<ParagraphStyle>(settings, stops));
  expectRoundTrip(std::make_shared<MutableParagraphStyle>(settings));
  expectRoundTrip(std::make_shared<ParagraphStyle>(
      settings, ParagraphStyle::TabStops{std::vector<Ref<TextTab>>()}));
  expectRoundTrip(std::make_shared<ParagraphStyle>());
}

TEST(ParagraphStyle, LeavesOutWhatIsZeroButAlwaysNamesItsTabStops) {
  KeyedArchiver archiver;
  ParagraphStyle().encodeWithCoder(archiver);
  KeyedUnarchiver fields(archiver.finishEncoding());
  EXPECT_TRUE(fields.containsValueForKey("NSTabStops"));
  EXPECT_FALSE(fields.decodeObjectForKey("NSTabStops").isValid());
  EXPECT_EQ(fields.decodeIntForKey("NSAlignment"), 4);
  for (const char* key : {"NSHeadIndent", "NSLineSpacing", "NSLineBreakMode", "NSWritingDirection",
                          "NSDefaultTabInterval"})
    EXPECT_FALSE(fields.containsValueForKey(key)) << key;
}

TEST(ParagraphStyle, TheWritingDirectionIsArchivedPlusOne) {
  EXPECT_EQ(
      read([](Coder& c) { c.encodeInt(1, "NSWritingDirection"); })->settings().writingDirection,
      WritingDirection::LeftToRight);
  EXPECT_EQ(
      read([](Coder& c) { c.encodeInt(2, "NSWritingDirection"); })->settings().writingDirection,
      WritingDirection::RightToLeft);
}

TEST(ParagraphStyle, KeepsListsAndBlocks) {
  const auto style =
      read([](Coder& coder) { coder.encodeObject(Any(QVariantList{u"item"_s}), "NSTextLists"); });
  expectRoundTrip(style);
  EXPECT_FALSE(style->isEqual(ParagraphStyle()));
}

TEST(ParagraphStyle, MalformedArchivesRaise) {
  EXPECT_THROW(read([](Coder& c) { c.encodeInt(5, "NSAlignment"); }), ArchiveException);
  EXPECT_THROW(read([](Coder& c) { c.encodeInt(-1, "NSAlignment"); }), ArchiveException);
  EXPECT_THROW(read([](Coder& c) { c.encodeInt(3, "NSWritingDirection"); }), ArchiveException);
  EXPECT_THROW(read([](Coder& c) { c.encodeObject(Any(u"tabs"_s), "NSTabStops"); }),
               ArchiveException);
  EXPECT_THROW(read([](Coder& c) { c.encodeObject(Any(QVariantList{u"tab"_s}), "NSTabStops"); }),
               ArchiveException);
}

TEST(ParagraphStyle, IsEqualByValue) {
  ParagraphSettings settings;
  settings.headIndent = 3;
  EXPECT_TRUE(ParagraphStyle(settings).isEqual(ParagraphStyle(settings)));
  EXPECT_FALSE(ParagraphStyle(settings).isEqual(ParagraphStyle()));
  const auto style = std::make_shared<MutableParagraphStyle>();
  const Ref<Object> copy = style->copy();
  style->setSettings(settings);
  EXPECT_FALSE(copy->isEqual(*style));
}

#include "ParagraphStyleTest.moc"
