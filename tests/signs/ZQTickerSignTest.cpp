#include "zqticker/signs/ZQTickerSign.h"

#include "tests/signs/SignTestSupport.h"
#include "zqticker/platform/archiving/PortCoder.h"

#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

static Ref<ZQTickerSign> newSign() {
  return std::make_shared<ZQTickerSign>();
}

TEST(TickerSign, EndlessLoopCountHasAllBitsSet) {
  EXPECT_EQ(ZQEndlessLoopCount, -1);
  EXPECT_EQ(sizeof ZQEndlessLoopCount, 4U);
}

TEST(TickerSign, ANewSignHasEveryFieldZeroOrNothing) {
  const auto sign = newSign();
  EXPECT_EQ(sign->identifier(), std::nullopt);
  EXPECT_EQ(sign->display(), nullptr);
  EXPECT_EQ(sign->scrollDirection(), 0);
  EXPECT_FALSE(sign->continuousScrolling());
  EXPECT_EQ(sign->loopCount(), 0);
  EXPECT_EQ(sign->loopDelay(), 0.0);
  EXPECT_EQ(sign->size(), QSizeF(0, 0));
  EXPECT_EQ(sign->actionType(), 0);
  EXPECT_EQ(sign->actionString(), std::nullopt);
  EXPECT_FALSE(sign->needsLayout());
}

TEST(TickerSign, EveryPropertyKeepsWhatIsSet) {
  const auto sign = newSign();
  TestDisplay display;
  sign->setIdentifier(u"news-7"_s);
  sign->setDisplay(&display);
  sign->setScrollDirection(-3);
  sign->setContinuousScrolling(true);
  sign->setLoopCount(5'000'000'000);
  sign->setLoopDelay(0.1);
  sign->setSize(QSizeF(12.5, 3));
  sign->setActionType(9);
  sign->setActionString(u""_s);
  sign->setNeedsLayout(true);
  EXPECT_EQ(sign->identifier(), u"news-7"_s);
  EXPECT_EQ(sign->display(), &display);
  EXPECT_EQ(sign->scrollDirection(), -3);
  EXPECT_TRUE(sign->continuousScrolling());
  EXPECT_EQ(sign->loopCount(), 5'000'000'000);
  EXPECT_EQ(sign->loopDelay(), 0.1);
  EXPECT_EQ(sign->size(), QSizeF(12.5, 3));
  EXPECT_EQ(sign->actionType(), 9);
  EXPECT_EQ(sign->actionString(), u""_s);
  EXPECT_TRUE(sign->needsLayout());
}

TEST(TickerSign, SettingTheDisplayHasNoOtherEffect) {
  const auto sign = newSign();
  TestDisplay display;
  sign->setDisplay(&display);
  EXPECT_FALSE(sign->needsLayout());
  EXPECT_EQ(sign->scrollDirection(), 0);
}

TEST(TickerSign, ADisplayThatHasGoneReadsAsNone) {
  const auto sign = newSign();
  {
    TestDisplay display;
    sign->setDisplay(&display);
  }
  EXPECT_EQ(sign->display(), nullptr);
}

TEST(TickerSign, NeedsLayoutMayBeReadWhileAnotherThreadWritesIt) {
  const auto sign = newSign();
  std::thread writer([&] {
    for (int i = 0; i < 1000; ++i)
      sign->setNeedsLayout(i % 2 == 0);
    sign->setNeedsLayout(true);
  });
  for (int i = 0; i < 1000; ++i)
    static_cast<void>(sign->needsLayout());
  writer.join();
  EXPECT_TRUE(sign->needsLayout());
}

TEST(TickerSign, DrawingTheBaseFailsAnAssertion) {
  expectAssertion([] { newSign()->drawAtPoint(QPointF(1, 2)); },
                  u"subclasses of ZQTickerSign need to overwrite -drawAtPoint:"_s);
}

TEST(TickerSign, DescribesItselfByDefault) {
  EXPECT_TRUE(newSign()->description().startsWith(u"<ZQTickerSign: 0x"_s));
}

TEST(TickerSign, ACopyHasEveryFieldOfItsSource) {
  const auto sign = newSign();
  TestDisplay display;
  sign->setIdentifier(u"id"_s);
  sign->setDisplay(&display);
  sign->setScrollDirection(1);
  sign->setContinuousScrolling(true);
  sign->setLoopCount(ZQEndlessLoopCount);
  sign->setLoopDelay(2.5);
  sign->setSize(QSizeF(10, 20));
  sign->setActionType(1);
  sign->setActionString(u"https://example.org/"_s);
  sign->setNeedsLayout(true);
  const auto copy = copyOf(sign);
  ASSERT_NE(copy, sign);
  EXPECT_EQ(copy->identifier(), u"id"_s);
  EXPECT_EQ(copy->display(), &display);
  EXPECT_EQ(copy->scrollDirection(), 1);
  EXPECT_TRUE(copy->continuousScrolling());
  EXPECT_EQ(copy->loopCount(), -1);
  EXPECT_EQ(copy->loopDelay(), 2.5);
  EXPECT_EQ(copy->size(), QSizeF(10, 20));
  EXPECT_EQ(copy->actionType(), 1);
  EXPECT_EQ(copy->actionString(), u"https://example.org/"_s);
  EXPECT_TRUE(copy->needsLayout());
}

TEST(TickerSign, AChangeOfTheCopyDoesNotReachTheSource) {
  const auto sign = newSign();
  sign->setIdentifier(u"source"_s);
  const auto copy = copyOf(sign);
  copy->setIdentifier(u"copy"_s);
  copy->setLoopCount(3);
  EXPECT_EQ(sign->identifier(), u"source"_s);
  EXPECT_EQ(sign->loopCount(), 0);
}

namespace zq::testing {
class ForgetfulSign : public ZQTickerSign {
  Q_GADGET
  ZQ_OBJECT
};
} // namespace zq::testing

TEST(TickerSign, ASubclassWithoutACopyOfItsOwnFailsAnAssertionRatherThanLoseItsClass) {
  EXPECT_THROW(std::make_shared<ForgetfulSign>()->copy(), InternalInconsistencyException);
}

TEST(TickerSignArchive, EveryArchivedFieldComesBack) {
  const auto sign = newSign();
  sign->setIdentifier(u"weather"_s);
  sign->setScrollDirection(1);
  sign->setContinuousScrolling(true);
  sign->setLoopCount(7);
  sign->setLoopDelay(0.5);
  sign->setSize(QSizeF(123.25, 20));
  sign->setActionType(-2);
  sign->setActionString(u"grüß 𝄞"_s);
  const auto read = archived(sign);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->identifier(), u"weather"_s);
  EXPECT_EQ(read->scrollDirection(), 1);
  EXPECT_TRUE(read->continuousScrolling());
  EXPECT_EQ(read->loopCount(), 7);
  EXPECT_EQ(read->loopDelay(), 0.5);
  EXPECT_EQ(read->size(), QSizeF(123.25, 20));
  EXPECT_EQ(read->actionType(), -2);
  EXPECT_EQ(read->actionString(), u"grüß 𝄞"_s);
}

TEST(TickerSignArchive, NothingComesBackAsNothingAndEmptyAsEmpty) {
  const auto sign = newSign();
  sign->setActionString(u""_s);
  const auto read = archived(sign);
  EXPECT_EQ(read->identifier(), std::nullopt);
  EXPECT_EQ(read->actionString(), u""_s);
}

TEST(TickerSignArchive, LoopCountIsCutToItsLow32Bits) {
  const auto sign = newSign();
  sign->setLoopCount(5'000'000'000);
  EXPECT_EQ(archived(sign)->loopCount(), 705'032'704);
  sign->setLoopCount(0x80000000);
  EXPECT_EQ(archived(sign)->loopCount(), std::numeric_limits<std::int32_t>::min());
}

TEST(TickerSignArchive, EndlessLoopCountSurvives) {
  const auto sign = newSign();
  sign->setLoopCount(ZQEndlessLoopCount);
  EXPECT_EQ(archived(sign)->loopCount(), -1);
}

TEST(TickerSignArchive, LoopDelayIsNarrowedToSinglePrecision) {
  const auto sign = newSign();
  sign->setLoopDelay(0.1);
  EXPECT_EQ(archived(sign)->loopDelay(), 0.10000000149011612);
}

TEST(TickerSignArchive, DisplayAndNeedsLayoutAreNotArchived) {
  const auto sign = newSign();
  TestDisplay display;
  sign->setDisplay(&display);
  sign->setNeedsLayout(true);
  const auto read = archived(sign);
  EXPECT_EQ(read->display(), nullptr);
  EXPECT_FALSE(read->needsLayout());
}

TEST(TickerSignArchive, ACoderWithoutKeysIsRefusedWhenWritingAndReading) {
  SequentialArchiver archiver;
  expectAssertion([&] { newSign()->encodeWithCoder(archiver); },
                  u"keyed coding support is required"_s);
  SequentialUnarchiver unarchiver(archiver.encodedData());
  expectAssertion([&] { newSign()->initWithCoder(unarchiver); },
                  u"keyed coding support is required"_s);
}

TEST(TickerSignPortCoder, TravelsByValueWhenTheMessageIsByCopy) {
  const auto sign = newSign();
  PortCoder byCopy(PortCoder::Passing::ByCopy);
  EXPECT_EQ(sign->replacementObjectForPortCoder(byCopy), sign);
}

TEST(TickerSignPortCoder, StaysBehindAProxyOtherwise) {
  const auto sign = newSign();
  PortCoder byReference(PortCoder::Passing::ByReference);
  const auto proxy =
      std::dynamic_pointer_cast<ObjectProxy>(sign->replacementObjectForPortCoder(byReference));
  ASSERT_NE(proxy, nullptr);
  EXPECT_EQ(proxy->target(), sign);
}

#include "ZQTickerSignTest.moc"
