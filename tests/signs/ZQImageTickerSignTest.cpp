#include "zqticker/signs/ZQImageTickerSign.h"

#include "tests/signs/SignTestSupport.h"
#include "zqticker/platform/archiving/PortCoder.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

TEST(ImageTickerSign, ANewSignScrollsHorizontally) {
  EXPECT_EQ(ZQImageTickerSign::make()->scrollDirection(), 1);
  EXPECT_EQ(ZQImageTickerSign::make(solidImage(2, 2))->scrollDirection(), 1);
}

TEST(ImageTickerSign, EveryOtherFieldIsThatOfTheBase) {
  const auto sign = ZQImageTickerSign::make();
  EXPECT_EQ(sign->image(), nullptr);
  EXPECT_EQ(sign->textRepresentation(), std::nullopt);
  EXPECT_EQ(sign->loopCount(), 0);
  EXPECT_EQ(sign->identifier(), std::nullopt);
  EXPECT_FALSE(sign->needsLayout());
}

TEST(ImageTickerSign, SharesTheImageItIsGiven) {
  const auto image = solidImage(3, 4);
  EXPECT_EQ(ZQImageTickerSign::make(image)->image(), image);
}

TEST(ImageTickerSign, SizeIsThatOfTheImage) {
  EXPECT_EQ(ZQImageTickerSign::make(solidImage(30, 14))->size(), QSizeF(30, 14));
}

TEST(ImageTickerSign, SizeIsZeroWithoutAnImage) {
  EXPECT_EQ(ZQImageTickerSign::make()->size(), QSizeF(0, 0));
}

TEST(ImageTickerSign, TheSizeOfTheBaseIsNotConsulted) {
  const auto sign = ZQImageTickerSign::make(solidImage(30, 14));
  sign->setSize(QSizeF(500, 500));
  EXPECT_EQ(sign->size(), QSizeF(30, 14));
}

TEST(ImageTickerSign, DescribesItselfByItsTextRepresentation) {
  const auto sign = ZQImageTickerSign::make(solidImage(2, 2));
  sign->setTextRepresentation(u"sunny"_s);
  EXPECT_EQ(sign->description(), u"sunny"_s);
  sign->setTextRepresentation(u""_s);
  EXPECT_EQ(sign->description(), u""_s);
}

TEST(ImageTickerSign, DescribesItselfByDefaultWithoutATextRepresentation) {
  const auto sign = ZQImageTickerSign::make(solidImage(2, 2));
  EXPECT_EQ(sign->description(), sign->defaultDescription());
  EXPECT_TRUE(sign->description().startsWith(u"<ZQImageTickerSign: 0x"_s));
}

TEST(ImageTickerSignCopy, HoldsTheVeryImageThatTheSourceHeld) {
  const auto image = solidImage(5, 6);
  const auto sign = ZQImageTickerSign::make(image);
  sign->setTextRepresentation(u"five by six"_s);
  const auto copy = copyOf(sign);
  EXPECT_EQ(copy->image(), image);
  EXPECT_EQ(copy->textRepresentation(), u"five by six"_s);
  EXPECT_EQ(sign->textRepresentation(), u"five by six"_s);
}

TEST(ImageTickerSignCopy, TheSourceGoesOnWithAFreshEqualImage) {
  const auto image = solidImage(5, 6);
  const auto sign = ZQImageTickerSign::make(image);
  copyOf(sign);
  ASSERT_NE(sign->image(), nullptr);
  EXPECT_NE(sign->image(), image);
  EXPECT_TRUE(sign->image()->isEqual(*image));
}

TEST(ImageTickerSignCopy, AChangeOfTheCopysImageDoesNotReachTheSource) {
  const auto sign = ZQImageTickerSign::make(solidImage(5, 6));
  const auto copy = copyOf(sign);
  copy->image()->setSize(QSizeF(50, 60));
  EXPECT_EQ(copy->size(), QSizeF(50, 60));
  EXPECT_EQ(sign->size(), QSizeF(5, 6));
}

TEST(ImageTickerSignCopy, ASignWithoutAnImageCopiesToo) {
  const auto copy = copyOf(ZQImageTickerSign::make());
  EXPECT_EQ(copy->image(), nullptr);
  EXPECT_EQ(copy->scrollDirection(), 1);
}

TEST(ImageTickerSignArchive, PictureAndTextRepresentationComeBack) {
  const auto sign = ZQImageTickerSign::make(solidImage(7, 3, 0xff00ff00));
  sign->setTextRepresentation(u"green"_s);
  sign->setIdentifier(u"pic"_s);
  const auto read = archived(sign);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->size(), QSizeF(7, 3));
  EXPECT_EQ(read->textRepresentation(), u"green"_s);
  EXPECT_EQ(read->identifier(), u"pic"_s);
  EXPECT_EQ(read->scrollDirection(), 1);
  const QImage pixels = read->image()->rasterised(1);
  ASSERT_EQ(pixels.size(), QSize(7, 3));
  EXPECT_EQ(pixels.pixel(0, 0), 0xff00ff00U);
  EXPECT_EQ(pixels.pixel(6, 2), 0xff00ff00U);
}

TEST(ImageTickerSignArchive, NoImageComesBackAsNone) {
  const auto read = archived(ZQImageTickerSign::make());
  EXPECT_EQ(read->image(), nullptr);
  EXPECT_EQ(read->textRepresentation(), std::nullopt);
  EXPECT_EQ(read->size(), QSizeF(0, 0));
}

TEST(ImageTickerSignArchive, ACoderWithoutKeysIsRefusedWhenWritingAndReading) {
  SequentialArchiver archiver;
  expectAssertion([&] { ZQImageTickerSign::make()->encodeWithCoder(archiver); },
                  u"keyed coding support is required"_s);
  SequentialUnarchiver unarchiver(archiver.encodedData());
  expectAssertion([&] { ZQImageTickerSign::make()->initWithCoder(unarchiver); },
                  u"keyed coding support is required"_s);
}

TEST(ImageTickerSignPortCoder, TravelsByValueWhenTheMessageIsByCopy) {
  const auto sign = ZQImageTickerSign::make();
  PortCoder byCopy(PortCoder::Passing::ByCopy);
  PortCoder byReference(PortCoder::Passing::ByReference);
  EXPECT_EQ(sign->replacementObjectForPortCoder(byCopy), sign);
  EXPECT_NE(sign->replacementObjectForPortCoder(byReference), sign);
}
