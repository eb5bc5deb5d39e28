#include "zqticker/signs/ZQTextTickerSign.h"

#include "tests/signs/SignTestSupport.h"
#include "zqticker/platform/archiving/PortCoder.h"
#include "zqticker/platform/text/TextAttachment.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

static Ref<AttributedString> styled(const QString& string, double size) {
  return AttributedString::make(
      string, {{FontAttributeName, any(Font::fontWithName("DejaVu Sans", size))}});
}

TEST(TextTickerSign, ANewSignScrollsHorizontally) {
  EXPECT_EQ(ZQTextTickerSign::make(u"hello"_s)->scrollDirection(), 1);
  EXPECT_EQ(std::make_shared<ZQTextTickerSign>()->scrollDirection(), 1);
}

TEST(TextTickerSign, WithoutATextItHasNoImageAndZeroSize) {
  const auto sign = ZQTextTickerSign::make(Ref<AttributedString>());
  EXPECT_EQ(sign->text(), nullptr);
  EXPECT_EQ(sign->image(), nullptr);
  EXPECT_EQ(sign->size(), QSizeF(0, 0));
}

TEST(TextTickerSign, AStringIsWrappedWithoutAttributes) {
  const auto sign = ZQTextTickerSign::make(u"plain"_s);
  ASSERT_NE(sign->text(), nullptr);
  EXPECT_EQ(sign->text()->string(), u"plain"_s);
  EXPECT_TRUE(sign->text()->attributesAtIndex(0, nullptr).isEmpty());
}

TEST(TextTickerSign, IsAsWideAsItsTextPlusOneLineHeight) {
  for (const double pointSize : {9.0, 12.0, 12.6, 40.0}) {
    const auto text = styled(u"The quick brown fox"_s, pointSize);
    const QSizeF measured = text->size();
    ASSERT_GT(measured.width(), 0);
    const auto sign = ZQTextTickerSign::make(text);
    EXPECT_EQ(sign->size(), QSizeF(measured.width() + measured.height(), measured.height()));
  }
}

TEST(TextTickerSign, AOneLineSizeOf200By14GivesASignOf214By14) {
  const auto font =
      Font::fontWithName("DejaVu Sans", 14 / Font::fontWithName("DejaVu Sans", 1)->lineHeight());
  const QString characters = u"two hundred wide"_s;
  const double natural =
      AttributedString::make(characters, {{FontAttributeName, any(font)}})->size().width();
  const auto text = AttributedString::make(
      characters, {{FontAttributeName, any(font)},
                   {KernAttributeName, (200 - natural) / double(characters.size())}});
  // Kerning is kept in 1/64 of a pixel at the em of layout.
  ASSERT_NEAR(text->size().width(), 200, 0.02);
  ASSERT_NEAR(text->size().height(), 14, 1e-9);
  const auto sign = ZQTextTickerSign::make(text);
  EXPECT_NEAR(sign->size().width(), 214, 0.02);
  EXPECT_NEAR(sign->size().height(), 14, 1e-9);
}

TEST(TextTickerSign, TheTextIsNotCopied) {
  const auto text = styled(u"shared"_s, 12);
  EXPECT_EQ(ZQTextTickerSign::make(text)->text(), text);
}

TEST(TextTickerSign, SettingTheSameObjectAgainRendersNothing) {
  const auto text = styled(u"once"_s, 12);
  const auto sign = ZQTextTickerSign::make(text);
  const auto buffer = sign->image();
  sign->setText(text);
  EXPECT_EQ(sign->image(), buffer);
}

TEST(TextTickerSign, SettingAnEqualButDifferentObjectRendersAgain) {
  const auto sign = ZQTextTickerSign::make(styled(u"twice"_s, 12));
  const auto buffer = sign->image();
  const auto equal = styled(u"twice"_s, 12);
  sign->setText(equal);
  EXPECT_EQ(sign->text(), equal);
  EXPECT_NE(sign->image(), buffer);
}

TEST(TextTickerSign, SettingAnotherTextChangesTheSize) {
  const auto sign = ZQTextTickerSign::make(styled(u"short"_s, 12));
  const QSizeF before = sign->size();
  sign->setText(styled(u"a good deal longer"_s, 12));
  EXPECT_GT(sign->size().width(), before.width());
}

TEST(TextTickerSign, TakingTheTextAwayLeavesAnEmptyBuffer) {
  const auto sign = ZQTextTickerSign::make(u"gone"_s);
  sign->setText(nullptr);
  EXPECT_EQ(sign->text(), nullptr);
  EXPECT_EQ(sign->size(), QSizeF(0, 0));
  EXPECT_EQ(sign->description(), QString());
}

TEST(TextTickerSign, AMutableTextShowsItsChangeOnlyWhenTheBufferIsUpdated) {
  const auto text = styled(u"wide"_s, 12)->mutableCopy();
  const auto sign = ZQTextTickerSign::make(text);
  const QSizeF before = sign->size();
  text->replaceCharactersInRange({0, 4}, u"wider and wider"_s);
  EXPECT_EQ(sign->size(), before);
  sign->updateBuffer();
  EXPECT_GT(sign->size().width(), before.width());
}

TEST(TextTickerSign, UpdatingTheBufferMakesAFreshImage) {
  const auto sign = ZQTextTickerSign::make(u"fresh"_s);
  const auto buffer = sign->image();
  sign->updateBuffer();
  EXPECT_NE(sign->image(), buffer);
  EXPECT_EQ(sign->size(), buffer->size());
}

TEST(TextTickerSign, DescribesItselfByItsCharacters) {
  EXPECT_EQ(ZQTextTickerSign::make(styled(u"grüß 𝄞"_s, 20))->description(), u"grüß 𝄞"_s);
}

TEST(TextTickerSign, ATextRepresentationDoesNotChangeTheDescription) {
  const auto sign = ZQTextTickerSign::make(u"characters"_s);
  sign->setTextRepresentation(u"representation"_s);
  EXPECT_EQ(sign->description(), u"characters"_s);
}

// The lowest row of `image` that is not empty, counted in pixels from the lower edge.
static int lowestInk(const Ref<Image>& image, double scale) {
  const QImage pixels = image->rasterised(scale);
  for (int y = pixels.height() - 1; y >= 0; --y)
    for (int x = 0; x < pixels.width(); ++x)
      if (qAlpha(pixels.pixel(x, y)) > 128)
        return pixels.height() - 1 - y;
  return -1;
}

TEST(TextTickerSignBuffer, TheTextStandsAtTheDisplaysTextOffset) {
  TestDisplay display;
  const auto sign = ZQTextTickerSign::make(styled(u"HHH"_s, 40));
  const int without = lowestInk(sign->image(), 1);
  const int withoutAtTwo = lowestInk(sign->image(), 2);
  ASSERT_GT(without, 0);
  display.theTextOffset = 5;
  sign->setDisplay(&display);
  sign->updateBuffer();
  EXPECT_EQ(lowestInk(sign->image(), 1), without + 5);
  EXPECT_EQ(lowestInk(sign->image(), 2), withoutAtTwo + 10);
}

TEST(TextTickerSignBuffer, ADisplayThatIsSetLaterDoesNotRenderItAgain) {
  TestDisplay display;
  display.theTextOffset = 5;
  const auto sign = ZQTextTickerSign::make(styled(u"HHH"_s, 40));
  const auto buffer = sign->image();
  const int before = lowestInk(buffer, 1);
  sign->setDisplay(&display);
  EXPECT_EQ(sign->image(), buffer);
  EXPECT_EQ(lowestInk(sign->image(), 1), before);
}

TEST(TextTickerSignBuffer, ChangesOfTheOffsetAfterRenderingDoNotShow) {
  TestDisplay display;
  const auto sign = ZQTextTickerSign::make(styled(u"HHH"_s, 40));
  sign->setDisplay(&display);
  sign->updateBuffer();
  const int before = lowestInk(sign->image(), 2);
  display.theTextOffset = 9;
  EXPECT_EQ(lowestInk(sign->image(), 2), before);
}

TEST(TextTickerSignBuffer, TheGapAfterTheTextIsEmpty) {
  const auto text = styled(u"HHH"_s, 40);
  const auto sign = ZQTextTickerSign::make(text);
  const QImage pixels = sign->image()->rasterised(1);
  for (int x = int(text->size().width()) + 1; x < pixels.width(); ++x)
    for (int y = 0; y < pixels.height(); ++y)
      ASSERT_EQ(qAlpha(pixels.pixel(x, y)), 0) << x << ", " << y;
}

TEST(TextTickerSignCopy, HasItsOwnTextAndItsOwnBuffer) {
  const auto text = styled(u"copied"_s, 14);
  const auto sign = ZQTextTickerSign::make(text);
  const auto copy = copyOf(sign);
  EXPECT_EQ(sign->text(), text);
  ASSERT_NE(copy->text(), nullptr);
  EXPECT_NE(copy->text(), text);
  EXPECT_TRUE(copy->text()->isEqual(*text));
  EXPECT_NE(copy->image(), sign->image());
  EXPECT_EQ(copy->size(), sign->size());
}

TEST(TextTickerSignCopy, TheSourceGoesOnWithAFreshBuffer) {
  const auto sign = ZQTextTickerSign::make(u"source"_s);
  const auto buffer = sign->image();
  const auto copy = copyOf(sign);
  EXPECT_NE(sign->image(), buffer);
  EXPECT_NE(copy->image(), buffer);
  EXPECT_TRUE(sign->image()->isEqual(*buffer));
}

TEST(TextTickerSignCopy, ASignWithoutATextCopiesToo) {
  const auto copy = copyOf(ZQTextTickerSign::make(Ref<AttributedString>()));
  EXPECT_EQ(copy->text(), nullptr);
  EXPECT_EQ(copy->image(), nullptr);
}

TEST(TextTickerSignCopy, IsRenderedAtTheOffsetOfTheSharedDisplay) {
  TestDisplay display;
  const auto sign = ZQTextTickerSign::make(styled(u"HHH"_s, 40));
  sign->setDisplay(&display);
  const int without = lowestInk(sign->image(), 1);
  display.theTextOffset = 4;
  EXPECT_EQ(lowestInk(copyOf(sign)->image(), 1), without + 4);
}

TEST(TextTickerSignArchive, TextWithItsStyleComesBackAndIsRendered) {
  const auto text = styled(u"styled"_s, 18);
  const auto sign = ZQTextTickerSign::make(text);
  const auto read = archived(sign);
  ASSERT_NE(read, nullptr);
  ASSERT_NE(read->text(), nullptr);
  EXPECT_TRUE(read->text()->isEqual(*text));
  EXPECT_EQ(read->size(), sign->size());
  EXPECT_EQ(read->scrollDirection(), 1);
}

TEST(TextTickerSignArchive, TheDecodedPictureIsReplacedByTheRenderedText) {
  const auto sign = ZQTextTickerSign::make(u"rendered"_s);
  const QSizeF rendered = sign->size();
  sign->setImage(solidImage(3, 3));
  EXPECT_EQ(archived(sign)->size(), rendered);
}

TEST(TextTickerSignArchive, IsRenderedWithoutADisplaysOffset) {
  TestDisplay display;
  const auto sign = ZQTextTickerSign::make(styled(u"HHH"_s, 40));
  const int without = lowestInk(sign->image(), 1);
  display.theTextOffset = 6;
  sign->setDisplay(&display);
  sign->updateBuffer();
  EXPECT_EQ(lowestInk(archived(sign)->image(), 1), without);
}

TEST(TextTickerSignArchive, WithoutATextTheArchivedPictureStays) {
  const auto sign = ZQTextTickerSign::make(Ref<AttributedString>());
  sign->setImage(solidImage(8, 2));
  const auto read = archived(sign);
  EXPECT_EQ(read->text(), nullptr);
  EXPECT_EQ(read->size(), QSizeF(8, 2));
}

TEST(TextTickerSignArchive, ACoderWithoutKeysIsRefusedWhenWritingAndReading) {
  SequentialArchiver archiver;
  expectAssertion([&] { ZQTextTickerSign::make(u"x"_s)->encodeWithCoder(archiver); },
                  u"keyed coding support is required"_s);
  SequentialUnarchiver unarchiver(archiver.encodedData());
  expectAssertion([&] { std::make_shared<ZQTextTickerSign>()->initWithCoder(unarchiver); },
                  u"keyed coding support is required"_s);
}

TEST(TextTickerSignPortCoder, TravelsByValueWhenTheMessageIsByCopy) {
  const auto sign = ZQTextTickerSign::make(u"by value"_s);
  PortCoder byCopy(PortCoder::Passing::ByCopy);
  PortCoder byReference(PortCoder::Passing::ByReference);
  EXPECT_EQ(sign->replacementObjectForPortCoder(byCopy), sign);
  EXPECT_NE(sign->replacementObjectForPortCoder(byReference), sign);
}

// What the buffer shows, at two pixels a point.
static QImage pixelsOf(const Ref<ZQTextTickerSign>& sign) {
  return sign->image()->rasterised(2);
}

TEST(TextTickerSignBuffer, IsTheSameWhenItHasBeenReleased) {
  TestDisplay display;
  display.theTextOffset = 3;
  const auto sign = ZQTextTickerSign::make(styled(u"released"_s, 20));
  sign->setDisplay(&display);
  sign->updateBuffer();
  const Ref<Image> buffer = sign->image();
  const QSizeF size = sign->size();
  const QImage pixels = pixelsOf(sign);
  display.theTextOffset = 9;
  sign->releaseBuffer();
  EXPECT_EQ(sign->size(), size);
  EXPECT_NE(sign->image(), buffer);
  EXPECT_EQ(pixelsOf(sign), pixels) << "at the offset of the moment in which it was rendered";
  EXPECT_TRUE(sign->image()->isEqual(*buffer));
}

TEST(TextTickerSignBuffer, ShowsTheOffsetOfTheMomentAlsoWhereItIsAskedForLater) {
  TestDisplay display;
  const auto sign = ZQTextTickerSign::make(styled(u"HHH"_s, 40));
  sign->setDisplay(&display);
  display.theTextOffset = 5;
  sign->updateBuffer();
  display.theTextOffset = 0;
  const auto other = ZQTextTickerSign::make(styled(u"HHH"_s, 40));
  EXPECT_EQ(lowestInk(sign->image(), 1), lowestInk(other->image(), 1) + 5);
}

TEST(TextTickerSignBuffer, StaysWhereItWouldNotBeMadeAgain) {
  // A picture that was set, or drawn over, is not the text's rendering.
  const auto sign = ZQTextTickerSign::make(styled(u"replaced"_s, 20));
  const auto set = solidImage(3, 3);
  sign->setImage(set);
  sign->releaseBuffer();
  EXPECT_EQ(sign->image(), set);

  const auto drawnOver = ZQTextTickerSign::make(styled(u"drawn over"_s, 20));
  const auto buffer = drawnOver->image();
  {
    const ImageFocus focus(*buffer);
    solidImage(3, 3)->dissolveToPoint(QPointF(), 1);
  }
  drawnOver->releaseBuffer();
  EXPECT_EQ(drawnOver->image(), buffer);

  // A text that has changed since.
  const auto text = MutableAttributedString::make(u"before"_s);
  const auto changing = ZQTextTickerSign::make(text);
  const QSizeF size = changing->size();
  const QImage pixels = pixelsOf(changing);
  text->replaceCharactersInRange({0, 6}, u"after, and longer"_s);
  changing->releaseBuffer();
  EXPECT_EQ(changing->size(), size);
  EXPECT_EQ(pixelsOf(changing), pixels);
}

TEST(TextTickerSignBuffer, ShowsAMutableTextAsItWasWhenItWasSet) {
  const auto text = MutableAttributedString::make(u"before"_s);
  const auto sign = ZQTextTickerSign::make(text);
  text->replaceCharactersInRange({0, 6}, u"after, and longer"_s);
  EXPECT_EQ(sign->size(), ZQTextTickerSign::make(u"before"_s)->size());
}

TEST(TextTickerSignBuffer, ShowsAnAttachmentAsItWasWhenTheTextWasSet) {
  const auto attachment = TextAttachment::make(solidImage(20, 10));
  const auto sign =
      ZQTextTickerSign::make(AttributedString::attributedStringWithAttachment(attachment));
  attachment->attachmentCell()->image()->setSize(QSizeF(40, 20));
  EXPECT_EQ(sign->text()->size().width(), 20);
}

TEST(TextTickerSignBuffer, OfACopyIsTheOneThatTheSourceHad) {
  const auto sign = ZQTextTickerSign::make(styled(u"copied"_s, 20));
  const auto copy = copyOf(sign);
  copy->releaseBuffer();
  sign->releaseBuffer();
  EXPECT_EQ(pixelsOf(copy), pixelsOf(sign));
}
