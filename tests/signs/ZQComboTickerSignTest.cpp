#include "zqticker/signs/ZQComboTickerSign.h"

#include "tests/signs/SignTestSupport.h"
#include "zqticker/platform/archiving/PortCoder.h"
#include "zqticker/platform/text/string_drawing.h"

#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

Ref<Font> testFont(double size) {
  return Font::fontWithName("DejaVu Sans", size);
}

Ref<AttributedString> attributed(const QString& string, double size) {
  return AttributedString::make(string, {{FontAttributeName, any(testFont(size))}});
}

QSizeF plainSize(const QString& string, const Ref<Font>& font) {
  return sizeWithAttributes(string, {{FontAttributeName, any(font)}});
}

Ref<AttributedString> attributedTextOf(const Ref<ZQComboTickerSign>& sign) {
  return objectOf<AttributedString>(sign->text());
}

double fontSizeAt(const Ref<AttributedString>& text, qsizetype index) {
  return objectOf<Font>(text->attributesAtIndex(index, nullptr).value(FontAttributeName))
      ->pointSize();
}

} // namespace

TEST(ComboTickerSign, ANewSignHasItsDefaults) {
  const auto image = solidImage(4, 4);
  const auto sign = ZQComboTickerSign::make(u"text"_s, image);
  EXPECT_EQ(sign->image(), image);
  EXPECT_EQ(sign->text().toString(), u"text"_s);
  EXPECT_EQ(sign->imagePosition(), 2U);
  EXPECT_TRUE(sign->needsLayout());
  EXPECT_EQ(sign->font(), nullptr);
  EXPECT_EQ(sign->textColor(), nullptr);
  EXPECT_EQ(sign->lastUsedFont(), nullptr);
}

TEST(ComboTickerSign, ScrollDirectionOfANewSignStaysZero) {
  EXPECT_EQ(ZQComboTickerSign::make(u"text"_s, nullptr)->scrollDirection(), 0);
}

TEST(ComboTickerSign, EveryPropertyKeepsWhatIsSet) {
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  const auto image = solidImage(1, 1);
  const auto font = testFont(9);
  const auto color = Color::deviceRGB(1, 0, 0);
  sign->setImage(image);
  sign->setFont(font);
  sign->setTextColor(color);
  sign->setImagePosition(5);
  sign->setLastUsedFont(font);
  EXPECT_EQ(sign->image(), image);
  EXPECT_EQ(sign->font(), font);
  EXPECT_EQ(sign->textColor(), color);
  EXPECT_EQ(sign->imagePosition(), 5U);
  EXPECT_EQ(sign->lastUsedFont(), font);
}

TEST(ComboTickerSignText, AMutableTextIsCopied) {
  const auto text = attributed(u"before"_s, 12)->mutableCopy();
  const auto sign = ZQComboTickerSign::make(any(text), nullptr);
  text->replaceCharactersInRange({0, 6}, u"after"_s);
  EXPECT_EQ(attributedTextOf(sign)->string(), u"before"_s);
  EXPECT_NE(attributedTextOf(sign), text);
}

TEST(ComboTickerSignText, SettingTheVeryObjectThatIsHeldDoesNothing) {
  const auto sign = ZQComboTickerSign::make(any(attributed(u"held"_s, 12)), nullptr);
  const auto held = attributedTextOf(sign);
  sign->setText(any(held));
  EXPECT_EQ(attributedTextOf(sign), held);
}

TEST(ComboTickerSignText, SettingAnEqualButDifferentObjectStoresAFreshCopy) {
  const auto sign = ZQComboTickerSign::make(any(attributed(u"held"_s, 12)), nullptr);
  const auto held = attributedTextOf(sign);
  sign->setText(any(attributed(u"held"_s, 12)));
  EXPECT_NE(attributedTextOf(sign), held);
}

TEST(ComboTickerSignText, NeitherTextNorImageSetsNeedsLayout) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"one"_s, nullptr);
  sign->setDisplay(&display);
  const QSizeF before = sign->size();
  sign->setText(u"one and a lot more"_s);
  sign->setImage(solidImage(10, 10));
  EXPECT_FALSE(sign->needsLayout());
  EXPECT_EQ(sign->size(), before);
  sign->setNeedsLayout(true);
  EXPECT_GT(sign->size().width(), before.width());
}

TEST(ComboTickerSignText, AnythingButATextFailsAnAssertion) {
  const auto sign = ZQComboTickerSign::make(u"stays"_s, nullptr);
  const QString message = u"text must be NSString or NSAttributedString"_s;
  expectAssertion([&] { sign->setText(Any()); }, message);
  expectAssertion([&] { sign->setText(Any(5)); }, message);
  expectAssertion([&] { sign->setText(Any(QByteArray("text"))); }, message);
  expectAssertion([&] { sign->setText(any(testFont(12))); }, message);
  expectAssertion([&] { ZQComboTickerSign::make(Any(), nullptr); }, message);
  EXPECT_EQ(sign->text().toString(), u"stays"_s);
}

TEST(ComboTickerSignText, AnEmptyStringIsAText) {
  const auto sign = ZQComboTickerSign::make(QString(), nullptr);
  EXPECT_TRUE(sign->text().isValid());
}

TEST(ComboTickerSignDefaults, FontAndColourAreTheDisplaysUnlessTheSignHasItsOwn) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setDisplay(&display);
  EXPECT_EQ(sign->font(), display.theFont);
  EXPECT_EQ(sign->textColor(), display.theColor);
  const auto font = testFont(30);
  const auto color = Color::deviceRGB(0, 1, 0);
  sign->setFont(font);
  sign->setTextColor(color);
  EXPECT_EQ(sign->font(), font);
  EXPECT_EQ(sign->textColor(), color);
}

TEST(ComboTickerSignLayout, HorizontallyPictureGapTextAndTrailingGapAddUp) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"one hundred"_s, solidImage(40, 40));
  sign->setDisplay(&display);
  const qreal textWidth = plainSize(u"one hundred"_s, display.theFont).width();
  EXPECT_EQ(sign->size(), QSizeF(20 + 5 + textWidth + 10, 20));
}

TEST(ComboTickerSignLayout, WithoutAPictureOnlyTextAndTrailingGapCount) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setDisplay(&display);
  EXPECT_EQ(sign->size(), QSizeF(plainSize(u"text"_s, display.theFont).width() + 10, 20));
}

TEST(ComboTickerSignLayout, VerticallyTheTextStandsAboveThePicture) {
  TestDisplay display;
  display.theSize = QSizeF(100, 300);
  display.theDirection = 2;
  const auto sign = ZQComboTickerSign::make(u"eighty"_s, solidImage(200, 50));
  sign->setDisplay(&display);
  const qreal textHeight = plainSize(u"eighty"_s, display.theFont).height();
  EXPECT_EQ(sign->size(), QSizeF(100, 25 + 3 + textHeight + 3));
}

TEST(ComboTickerSignLayout, FollowsTheDisplaysDirectionNotTheSigns) {
  TestDisplay display;
  display.theDirection = 0;
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setDisplay(&display);
  sign->setScrollDirection(1);
  EXPECT_EQ(sign->size().width(), display.theSize.width());
}

TEST(ComboTickerSignLayout, APlainTextIsMeasuredInTheSignsOwnFont) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setDisplay(&display);
  const auto font = testFont(31);
  sign->setFont(font);
  EXPECT_EQ(sign->size().width(), plainSize(u"text"_s, font).width() + 10);
}

TEST(ComboTickerSignLayout, AnAttributedTextIsMeasuredInItsOwnFonts) {
  TestDisplay display;
  const auto text = attributed(u"text"_s, 31);
  const auto sign = ZQComboTickerSign::make(any(text), nullptr);
  sign->setDisplay(&display);
  EXPECT_EQ(sign->size().width(), text->size().width() + 10);
}

TEST(ComboTickerSignLayout, ClearsNeedsLayoutAndRemembersTheFont) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setDisplay(&display);
  sign->calculateLayout();
  EXPECT_FALSE(sign->needsLayout());
  EXPECT_EQ(sign->lastUsedFont(), display.theFont);
}

TEST(ComboTickerSignLayout, ANewFontLaysOutAgainAlthoughNeedsLayoutIsNotSet) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setDisplay(&display);
  const QSizeF before = sign->size();
  sign->setFont(testFont(24));
  EXPECT_FALSE(sign->needsLayout());
  EXPECT_GT(sign->size().width(), before.width());
  EXPECT_FALSE(sign->needsLayout());
}

TEST(ComboTickerSignLayout, AnEqualButDifferentFontObjectLaysOutAgain) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setDisplay(&display);
  static_cast<void>(sign->size());
  const auto equal = testFont(12);
  ASSERT_TRUE(equal->isEqual(*display.theFont));
  display.theFont = equal;
  static_cast<void>(sign->size());
  EXPECT_EQ(sign->lastUsedFont(), equal);
}

TEST(ComboTickerSignLayout, ALastUsedFontThatIsTheFontKeepsAFreshLayout) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setDisplay(&display);
  static_cast<void>(sign->size());
  sign->setSize(QSizeF(1, 2));
  EXPECT_EQ(sign->size(), QSizeF(1, 2));
  sign->setLastUsedFont(nullptr);
  EXPECT_NE(sign->size(), QSizeF(1, 2));
}

TEST(ComboTickerSignLayout, AChangeOfTheDisplayDoesNotShowUntilNeedsLayoutIsSet) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, solidImage(40, 40));
  sign->setDisplay(&display);
  const QSizeF before = sign->size();
  display.theSize = QSizeF(400, 40);
  EXPECT_EQ(sign->size(), before);
  sign->setNeedsLayout(true);
  EXPECT_EQ(sign->size().height(), 40);
}

TEST(ComboTickerSignLayout, WithoutADisplayEveryAnswerIsZero) {
  const auto sign = ZQComboTickerSign::make(u"text"_s, solidImage(40, 30));
  const qreal textHeight = sizeWithAttributes(u"text"_s, {}).height();
  EXPECT_EQ(sign->size(), QSizeF(0, textHeight));
  EXPECT_EQ(sign->lastUsedFont(), nullptr);
}

TEST(ComboTickerSignLayout, ADisplayThatHasGoneCountsAsNone) {
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  {
    TestDisplay display;
    sign->setDisplay(&display);
    EXPECT_EQ(sign->size().height(), 20);
  }
  sign->setNeedsLayout(true);
  EXPECT_EQ(sign->size().width(), 0);
}

TEST(ComboTickerSignLayout, ImagePositionChangesNothing) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, solidImage(40, 40));
  sign->setDisplay(&display);
  const QSizeF before = sign->size();
  for (const quintptr position : {0, 1, 3, 4, 5, 6}) {
    sign->setImagePosition(position);
    sign->setNeedsLayout(true);
    EXPECT_EQ(sign->size(), before);
  }
}

TEST(ComboTickerSignAutoscale, ShrinksEveryRunByTheSmallestRatio) {
  FixedFitFontManager fonts(16);
  TestDisplay display;
  display.theSize = QSizeF(400, 18);
  display.autoscales = true;
  const auto text = attributed(u"bigsmall"_s, 24)->mutableCopy();
  text->addAttribute(FontAttributeName, any(testFont(12)), {3, 5});
  const auto sign = ZQComboTickerSign::make(any(text), nullptr);
  sign->setDisplay(&display);
  const QSizeF size = sign->size();
  EXPECT_DOUBLE_EQ(fontSizeAt(attributedTextOf(sign), 0), 16);
  EXPECT_DOUBLE_EQ(fontSizeAt(attributedTextOf(sign), 3), 8);
  EXPECT_EQ(size.width(), attributedTextOf(sign)->size().width() + 9);
}

TEST(ComboTickerSignAutoscale, LeavesTheTextAloneWhenTheDisplayDoesNotAskForIt) {
  TestDisplay display;
  display.theSize = QSizeF(400, 10);
  const auto sign = ZQComboTickerSign::make(any(attributed(u"tall"_s, 40)), nullptr);
  sign->setDisplay(&display);
  const auto held = attributedTextOf(sign);
  static_cast<void>(sign->size());
  EXPECT_EQ(attributedTextOf(sign), held);
  EXPECT_EQ(fontSizeAt(held, 0), 40);
}

TEST(ComboTickerSignAutoscale, LeavesAPlainTextAlone) {
  TestDisplay display;
  display.autoscales = true;
  display.theSize = QSizeF(400, 5);
  const auto sign = ZQComboTickerSign::make(u"plain"_s, nullptr);
  sign->setDisplay(&display);
  EXPECT_EQ(sign->size().width(), plainSize(u"plain"_s, display.theFont).width() + 2.5);
}

TEST(ComboTickerSignAutoscale, TheScaledTextFitsTheDisplay) {
  TestDisplay display;
  display.theSize = QSizeF(400, 18);
  display.autoscales = true;
  const auto sign = ZQComboTickerSign::make(any(attributed(u"too tall"_s, 64)), nullptr);
  sign->setDisplay(&display);
  static_cast<void>(sign->size());
  const qreal height = attributedTextOf(sign)->size().height();
  EXPECT_LE(height, 18);
  EXPECT_GT(height, 17.5);
}

TEST(ComboTickerSignAutoscale, DoesNotTouchTheTextThatTheCallerHolds) {
  TestDisplay display;
  display.theSize = QSizeF(400, 10);
  display.autoscales = true;
  const auto text = attributed(u"mine"_s, 40);
  const auto sign = ZQComboTickerSign::make(any(text), nullptr);
  sign->setDisplay(&display);
  static_cast<void>(sign->size());
  EXPECT_EQ(fontSizeAt(text, 0), 40);
}

TEST(ComboTickerSign, DescribesItselfByClassAddressAndCharacters) {
  const auto plain = ZQComboTickerSign::make(u"plain"_s, nullptr);
  const auto styled = ZQComboTickerSign::make(any(attributed(u"styled"_s, 9)), nullptr);
  const auto expected = [](const Ref<ZQComboTickerSign>& sign, const QString& characters) {
    return u"<ZQComboTickerSign: 0x%1> %2"_s.arg(QString::number(quintptr(sign.get()), 16),
                                                 characters);
  };
  EXPECT_EQ(plain->description(), expected(plain, u"plain"_s));
  EXPECT_EQ(styled->description(), expected(styled, u"styled"_s));
}

TEST(ComboTickerSignCopy, HoldsTheVeryObjectsThatTheSourceHeld) {
  const auto sign = ZQComboTickerSign::make(any(attributed(u"text"_s, 12)), solidImage(4, 4));
  const auto image = sign->image();
  const auto text = attributedTextOf(sign);
  const auto copy = copyOf(sign);
  EXPECT_EQ(copy->image(), image);
  EXPECT_EQ(attributedTextOf(copy), text);
  EXPECT_EQ(copy->imagePosition(), 2U);
}

TEST(ComboTickerSignCopy, TheSourceGoesOnWithFreshEqualObjects) {
  const auto sign = ZQComboTickerSign::make(any(attributed(u"text"_s, 12)), solidImage(4, 4));
  const auto image = sign->image();
  const auto text = attributedTextOf(sign);
  copyOf(sign);
  EXPECT_NE(sign->image(), image);
  EXPECT_TRUE(sign->image()->isEqual(*image));
  EXPECT_NE(attributedTextOf(sign), text);
  EXPECT_TRUE(attributedTextOf(sign)->isEqual(*text));
}

TEST(ComboTickerSignCopy, TheSourceNeedsLayoutAndTheCopyKeepsItsFlagAndLayout) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, solidImage(40, 40));
  sign->setDisplay(&display);
  const QSizeF size = sign->size();
  const auto copy = copyOf(sign);
  EXPECT_TRUE(sign->needsLayout());
  EXPECT_FALSE(copy->needsLayout());
  EXPECT_EQ(copy->lastUsedFont(), display.theFont);
  EXPECT_EQ(copy->size(), size);
}

TEST(ComboTickerSignCopy, ACopyOfASignThatNeedsLayoutNeedsItToo) {
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  EXPECT_TRUE(copyOf(sign)->needsLayout());
}

TEST(ComboTickerSignCopy, SharesFontAndColour) {
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setFont(testFont(15));
  sign->setTextColor(Color::deviceRGB(0, 0, 1));
  const auto copy = copyOf(sign);
  EXPECT_EQ(copy->font(), sign->font());
  EXPECT_EQ(copy->textColor(), sign->textColor());
  EXPECT_EQ(copy->text().toString(), u"text"_s);
}

TEST(ComboTickerSignArchive, PictureAndPlainTextComeBack) {
  const auto sign = ZQComboTickerSign::make(u"grüß 𝄞"_s, solidImage(6, 4, 0xff0000ff));
  const auto read = archived(sign);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->text().toString(), u"grüß 𝄞"_s);
  ASSERT_NE(read->image(), nullptr);
  EXPECT_EQ(read->image()->size(), QSizeF(6, 4));
  EXPECT_EQ(read->image()->rasterised(1).pixel(3, 2), 0xff0000ffU);
}

TEST(ComboTickerSignArchive, AttributedTextComesBackWithItsStyle) {
  const auto sign = ZQComboTickerSign::make(any(attributed(u"styled"_s, 17)), nullptr);
  const auto read = archived(sign);
  ASSERT_NE(attributedTextOf(read), nullptr);
  EXPECT_TRUE(attributedTextOf(read)->isEqual(*attributedTextOf(sign)));
  EXPECT_EQ(read->image(), nullptr);
}

TEST(ComboTickerSignArchive, ADecodedSignNeedsLayout) {
  TestDisplay display;
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setDisplay(&display);
  static_cast<void>(sign->size());
  EXPECT_TRUE(archived(sign)->needsLayout());
}

TEST(ComboTickerSignArchive, ImagePositionFontAndColourAreNotArchived) {
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  sign->setFont(testFont(15));
  sign->setTextColor(Color::deviceRGB(0, 0, 1));
  const auto read = archived(sign);
  EXPECT_EQ(read->imagePosition(), 0U);
  EXPECT_EQ(read->font(), nullptr);
  EXPECT_EQ(read->textColor(), nullptr);
  TestDisplay display;
  read->setDisplay(&display);
  EXPECT_EQ(read->font(), display.theFont);
}

TEST(ComboTickerSignArchive, ACoderWithoutKeysIsRefusedWhenWritingAndReading) {
  SequentialArchiver archiver;
  expectAssertion([&] { ZQComboTickerSign::make(u"x"_s, nullptr)->encodeWithCoder(archiver); },
                  u"keyed coding support is required"_s);
  SequentialUnarchiver unarchiver(archiver.encodedData());
  expectAssertion([&] { std::make_shared<ZQComboTickerSign>()->initWithCoder(unarchiver); },
                  u"keyed coding support is required"_s);
}

TEST(ComboTickerSignPortCoder, TravelsByValueWhenTheMessageIsByCopy) {
  const auto sign = ZQComboTickerSign::make(u"by value"_s, nullptr);
  PortCoder byCopy(PortCoder::Passing::ByCopy);
  PortCoder byReference(PortCoder::Passing::ByReference);
  EXPECT_EQ(sign->replacementObjectForPortCoder(byCopy), sign);
  EXPECT_NE(sign->replacementObjectForPortCoder(byReference), sign);
}

TEST(ComboTickerSign, LastUsedFontMayBeReadWhileAnotherThreadWritesIt) {
  const auto sign = ZQComboTickerSign::make(u"text"_s, nullptr);
  const auto one = testFont(10);
  const auto other = testFont(11);
  std::thread writer([&] {
    for (int i = 0; i < 1000; ++i)
      sign->setLastUsedFont(i % 2 ? one : other);
  });
  for (int i = 0; i < 1000; ++i) {
    const auto font = sign->lastUsedFont();
    EXPECT_TRUE(!font || font == one || font == other);
  }
  writer.join();
  EXPECT_EQ(sign->lastUsedFont(), one);
}
