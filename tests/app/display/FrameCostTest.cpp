// What a frame does not do: ask for memory, and draw what could have been drawn before.
#include "tests/app/DisplayFrames.h"
#include "tests/app/Probe.h"
#include "tests/app/XServer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

TEST(FrameCost, AsksForNoMemoryWhereNothingComesIntoSight) {
#ifdef ZQTICKER_SANITIZED
  GTEST_SKIP() << "the sanitizer allocates itself";
#endif
  if (!XServer::isInstalled())
    GTEST_SKIP() << "Xvfb is not installed";
  XServer server(900, 200);
  ASSERT_FALSE(server.display().isEmpty()) << "Xvfb does not start";
  Probe probe(QStringLiteral(ZQTICKER_FRAME_PROBE), {u"native"_s}, server);
  ASSERT_TRUE(waitUntil([&] { return probe.hasSaidStart(u"native "_s); }));
  EXPECT_EQ(probe.last(u"painter "_s), u"0"_s);
  EXPECT_EQ(probe.last(u"native "_s), u"0"_s);
}

TEST(FrameCost, DrawsWhatComesNextBetweenFrames) {
  for (const ScrollDirection direction : {ScrollDirection::Left, ScrollDirection::Right,
                                          ScrollDirection::Up, ScrollDirection::Down}) {
    const bool horizontal = isHorizontal(direction);
    TickerDisplay display;
    setUp(display, horizontal ? QSizeF(400, 24) : QSizeF(24, 400), horizontal);
    display.setDirection(direction, 0);
    display.addSign(horizontal ? picture(3000, 24, Qt::red) : picture(24, 3000, Qt::red), 0);
    display.advanceTo(0.5);
    const std::uint64_t first = display.tiles().drawn();
    display.prepareAhead();
    EXPECT_EQ(display.tiles().drawn(), first + 1) << "the next one";
    display.prepareAhead();
    EXPECT_EQ(display.tiles().drawn(), first + 1) << "only that";
    for (double time = 0.5; time < 55; time += 0.1) {
      const std::uint64_t before = display.tiles().drawn();
      display.advanceTo(time);
      ASSERT_EQ(display.tiles().drawn(), before) << "at " << time;
      display.prepareAhead();
      ASSERT_LE(display.tiles().count(), 3u);
    }
    EXPECT_EQ(display.tiles().drawn(), 6u) << "each once";
  }
}

TEST(FrameCost, KeepsPixelsOnlyNearTheStripHoweverMuchWaits) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  for (int i = 0; i < 100'000; ++i)
    display.addLine(u"Line %1"_s.arg(i), 0);
  for (int i = 0; i < 1000; ++i)
    display.addSign(picture(40, 24, Qt::blue), 0);
  std::size_t most = 0;
  for (double time = 0; time < 60; time += 0.25) {
    display.advanceTo(time);
    display.prepareAhead();
    most = std::max(most, display.tiles().count());
  }
  EXPECT_GT(most, 2u);
  EXPECT_LE(most, 20u);
}
