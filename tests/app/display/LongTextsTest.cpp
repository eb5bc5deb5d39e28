// Texts that take longer than a frame to lay out.
#include "app/display/StripPlayer.h"
#include "tests/app/DisplayFrames.h"
#include "tests/app/FakeItem.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
const QDeadlineTimer AtOnce(0);

class ReadyItem : public FakeItem {
 public:
  using FakeItem::FakeItem;
  bool isReady() override { return ready; }
  bool ready = true;
};

QString longText(qsizetype length) {
  return u"A word, Wave and office; "_s.repeated(length / 25 + 1).left(length);
}

// How many slices it takes.
int prepare(TickerDisplay& display) {
  int slices = 1;
  while (!display.prepareUntil(AtOnce))
    ++slices;
  return slices;
}
} // namespace

TEST(LongTexts, HoldUpTheStripUntilTheyAreReadyAndMoveNothingElse) {
  Strip strip(100, 10);
  const auto late = std::make_shared<ReadyItem>("late", 30);
  late->ready = false;
  strip.queue().append(fake("first", 20));
  strip.queue().append(late);
  strip.queue().append(fake("last", 20));
  strip.advanceTo(5);
  ASSERT_EQ(strip.runs().size(), 1u) << "nothing passes it";
  EXPECT_DOUBLE_EQ(strip.travel() - strip.runs()[0].start, 50);
  late->ready = true;
  strip.advanceTo(5.5);
  ASSERT_EQ(strip.runs().size(), 2u);
  EXPECT_DOUBLE_EQ(strip.travel() - strip.runs()[0].start, 55);
  EXPECT_DOUBLE_EQ(strip.travel() - strip.runs()[1].start, 5) << "from when it was ready on";
  strip.advanceTo(9);
  EXPECT_EQ(strip.runs().size(), 3u);
}

TEST(LongTexts, ArePreparedInSlicesBeforeTheirTurnComes) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.setHoldsUnprepared(true);
  display.addSign(picture(200, 24, Qt::red), 0);
  display.addSign(display.makeTextSign(longText(100'000)), 0);
  display.advanceTo(1);
  EXPECT_EQ(display.strip().runs().size(), 1u);
  EXPECT_FALSE(display.isPrepared());
  EXPECT_GT(prepare(display), 100);
  EXPECT_TRUE(display.isPrepared());
  // From then on as if it had never been held up.
  TickerDisplay other;
  setUp(other, QSizeF(200, 24));
  other.addSign(picture(200, 24, Qt::red), 0);
  other.addSign(other.makeTextSign(longText(100'000)), 0);
  for (double time = 3; time < 10; time += 0.7)
    ASSERT_EQ(shown(display, time), shown(other, time)) << time;
}

TEST(LongTexts, OfLinesAreMadeIntoSignsForThatOnly) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.setHoldsUnprepared(true);
  display.addLine(longText(50'000), 0);
  display.addLine(u"short"_s, 0);
  display.advanceTo(1);
  EXPECT_TRUE(display.strip().runs().empty());
  EXPECT_GT(prepare(display), 50);
  display.advanceTo(1.5);
  ASSERT_EQ(display.strip().runs().size(), 1u);
  EXPECT_EQ(display.queuedSigns(1.5).at(0).text.size(), 50'000);
  EXPECT_NE(display.queuedSigns(1.5).at(0).sign, nullptr);
  EXPECT_EQ(display.queuedSigns(1.5).at(1).sign, nullptr);
}

TEST(LongTexts, OfCombinationsArePreparedToo) {
  for (const bool isAttributed : {true, false}) {
    TickerDisplay display;
    setUp(display, QSizeF(200, 24));
    display.setHoldsUnprepared(true);
    const QString text = longText(50'000);
    const auto sign = ZQComboTickerSign::make(
        isAttributed ? any(AttributedString::make(text)) : Any(text), solid(20, 24, Qt::red));
    display.addSign(sign, 0);
    display.advanceTo(1);
    EXPECT_TRUE(display.strip().runs().empty());
    EXPECT_GT(prepare(display), 50);
    display.advanceTo(2);
    EXPECT_EQ(display.strip().runs().size(), 1u);
    EXPECT_GT(sign->size().width(), 100'000);
  }
}

TEST(LongTexts, EnterAtTheirTurnWhereNothingPreparesThem) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.addSign(display.makeTextSign(longText(50'000)), 0);
  EXPECT_FALSE(display.isPrepared());
  display.advanceTo(1);
  EXPECT_EQ(display.strip().runs().size(), 1u);
}

TEST(LongTexts, ArePreparedByThePlayerWhileItIsInSightOnly) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  StripPlayer player(display);
  display.addLine(longText(100'000), 0);
  player.displayChanged();
  for (int i = 0; i < 20; ++i)
    QCoreApplication::processEvents();
  EXPECT_FALSE(display.isPrepared());
  player.setInSight(true);
  EXPECT_TRUE(zq::testing::waitFor([&] { return !display.strip().runs().empty(); }));
}

TEST(LongTexts, FollowTheDefaultFontBeforeTheyArePrepared) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.setHoldsUnprepared(true);
  display.addSign(display.makeTextSign(longText(50'000)), 0);
  display.advanceTo(1);
  prepare(display);
  display.setDefaultFont(Font::fontWithName(u"DejaVu Sans"_s, 16));
  EXPECT_FALSE(display.isPrepared());
  prepare(display);
  display.advanceTo(2);
  TickerDisplay other;
  setUp(other, QSizeF(200, 24));
  other.setDefaultFont(display.defaultFont());
  ASSERT_EQ(display.strip().runs().size(), 1u);
  EXPECT_EQ(display.strip().runs()[0].length, other.makeTextSign(longText(50'000))->size().width());
}
