#include "tests/app/DisplayFrames.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

TEST(TickerDisplay, AnswersWhatSignsAsk) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  const auto font = Font::fontWithName(u"DejaVu Sans"_s, 10);
  display.setDefaultFont(font);
  EXPECT_EQ(display.size(), QSizeF(400, 24));
  EXPECT_EQ(display.scrollDirection(), 1);
  EXPECT_EQ(display.defaultFont(), font);
  EXPECT_DOUBLE_EQ(display.textOffset(), (24 - font->lineHeight()) / 2);
  EXPECT_FALSE(display.shouldAutoscale());
  display.setShouldAutoscale(true);
  EXPECT_TRUE(display.shouldAutoscale());
  display.setDirection(ScrollDirection::Up, 0);
  EXPECT_NE(display.scrollDirection(), 1);
  EXPECT_EQ(display.textOffset(), 0);
  EXPECT_FALSE(display.shouldAutoscale()) << "a vertical strip's height says nothing about text";
}

TEST(TickerDisplay, TakesANewSignIn) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24), false);
  const auto combo = ZQComboTickerSign::make(u"text"_s, nullptr);
  combo->setScrollDirection(1);
  combo->setNeedsLayout(false);
  display.addSign(combo, 0);
  EXPECT_EQ(combo->display(), &display);
  EXPECT_EQ(combo->scrollDirection(), display.scrollDirection());
  EXPECT_TRUE(combo->needsLayout());
}

TEST(TickerDisplay, RendersTheBufferOfANewTextSign) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  const auto sign = ZQTextTickerSign::make(u"text"_s);
  const Ref<Image> before = sign->image();
  display.addSign(sign, 0);
  EXPECT_NE(sign->image(), before);
  ASSERT_NE(sign->display(), nullptr);
  EXPECT_EQ(sign->display()->size(), QSizeF(400, 24));
  EXPECT_EQ(sign->display()->defaultFont(), display.defaultFont());
  EXPECT_EQ(sign->display()->textOffset(), 0) << "raised text would be cut by its buffer";
}

TEST(TickerDisplay, IsForgottenByItsSigns) {
  const auto text = ZQTextTickerSign::make(u"text"_s);
  const auto combo = ZQComboTickerSign::make(u"text"_s, nullptr);
  {
    TickerDisplay display;
    setUp(display, QSizeF(400, 24));
    display.addSign(text, 0);
    display.addSign(combo, 0);
  }
  EXPECT_EQ(text->display(), nullptr);
  EXPECT_EQ(combo->display(), nullptr);
}

TEST(TickerDisplay, MarksItsSignsForLayoutWhenItChanges) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  const auto running = ZQComboTickerSign::make(u"running"_s, nullptr);
  const auto waiting = ZQComboTickerSign::make(u"waiting"_s, nullptr);
  display.addSign(running, 0);
  display.addSign(waiting, 0);
  display.advanceTo(0.1);
  const std::vector<std::function<void()>> changes{
      [&] { display.setSize(QSizeF(300, 30), 0.1); },
      [&] { display.setDirection(ScrollDirection::Up, 0.1); },
      [&] { display.setDefaultFont(Font::fontWithName(u"DejaVu Sans"_s, 9)); },
      [&] { display.setDefaultTextColor(Color::deviceRGB(1, 0, 0)); },
      [&] { display.setShouldAutoscale(true); },
      [&] { display.setScale(2); },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    waiting->layoutIfNeeded();
    waiting->setNeedsLayout(false);
    const QSizeF before = running->size();
    changes[i]();
    EXPECT_TRUE(waiting->needsLayout()) << i;
    if (i < 3) {
      EXPECT_NE(running->size(), before) << i << ": laid out for the new display";
    }
  }
  EXPECT_EQ(running->scrollDirection(), display.scrollDirection());
}

TEST(TickerDisplay, ShowsPicturesWhereGeometryPutsThem) {
  for (const bool horizontal : {true, false})
    for (const double scale : {1.0, 1.5, 2.0}) {
      TickerDisplay display;
      const QSizeF size = horizontal ? QSizeF(200, 24) : QSizeF(24, 200);
      setUp(display, size, horizontal, scale);
      display.addSign(picture(20, 10, Qt::red), 0);
      // 1 second at 60 points a second: the leading edge stands 60 points behind the entry.
      const QImage image = shown(display, 1);
      const int length = static_cast<int>((horizontal ? 20 : 10) * scale);
      const int first = static_cast<int>((200 - 60) * scale);
      const auto ink = inkAlong(image, horizontal);
      EXPECT_EQ(ink.first, first) << horizontal << " at " << scale;
      EXPECT_EQ(ink.second, first + length) << horizontal << " at " << scale;
      const auto across = inkAlong(image, !horizontal);
      const double breadth = (horizontal ? 10 : 20) * scale;
      EXPECT_EQ(across.second - across.first, breadth) << horizontal << " at " << scale;
      EXPECT_NEAR(across.first, (24 * scale - breadth) / 2, 0.51) << horizontal << " at " << scale;
      // Inside, every pixel has the full colour.
      for (int y = across.first; y < across.second; ++y)
        for (int x = ink.first; x < ink.second; ++x)
          ASSERT_EQ(horizontal ? image.pixel(x, y) : image.pixel(y, x), qRgb(255, 0, 0));
    }
}

TEST(TickerDisplay, ShowsTheNextSignBehindTheGap) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.addSign(picture(20, 24, Qt::red), 0);
  display.addSign(picture(20, 24, Qt::blue), 0);
  const QImage image = shown(display, 200 / Speed);
  EXPECT_EQ(image.pixel(19, 12), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(20, 12), qRgb(255, 255, 255));
  EXPECT_EQ(image.pixel(31, 12), qRgb(255, 255, 255));
  EXPECT_EQ(image.pixel(32, 12), qRgb(0, 0, 255));
}

TEST(TickerDisplay, PutsTextIntoTheMiddleOfTheStrip) {
  for (const double scale : {1.0, 1.5, 2.0}) {
    TickerDisplay display;
    setUp(display, QSizeF(400, 40), true, scale);
    const auto font = display.defaultFont();
    display.addSign(display.makeTextSign(u"HHH"_s), 0);
    const QImage image = shown(display, 400 / Speed);
    const auto ink = inkAlong(image, false);
    // The baseline of a line box in the middle, counted from the top.
    const double baseline =
        (40 - (40 - font->lineHeight()) / 2 + font->descender() - font->leading()) * scale;
    // Glyphs stand on whole pixels; their upper edge ends inside one.
    EXPECT_NEAR(ink.second, baseline, 1.01) << scale;
    EXPECT_NEAR(ink.first, ink.second - font->capHeight() * scale, 1.01) << scale;
  }
}

TEST(TickerDisplay, PutsTheTextOfACombinationOnTheSameLine) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 40));
  display.addSign(display.makeTextSign(u"HHH"_s), 0);
  const auto alone = inkAlong(shown(display, 400 / Speed), false);
  TickerDisplay other;
  setUp(other, QSizeF(400, 40));
  other.addSign(ZQComboTickerSign::make(u"HHH"_s, nullptr), 0);
  EXPECT_EQ(inkAlong(shown(other, 400 / Speed), false), alone);
}

TEST(TickerDisplay, DoesNotCutTallText) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 40));
  display.addSign(display.makeTextSign(u"Åg"_s), 0);
  const auto ink = inkAlong(shown(display, 400 / Speed), false);
  TickerDisplay higher;
  setUp(higher, QSizeF(400, 80));
  higher.addSign(higher.makeTextSign(u"Åg"_s), 0);
  const auto free = inkAlong(shown(higher, 400 / Speed), false);
  EXPECT_EQ(ink.second - ink.first, free.second - free.first);
}

TEST(TickerDisplay, MovesEverythingByTheSameWholePixels) {
  // 7.3 points a picture: no edge but the first stands on a whole pixel by itself.
  TickerDisplay display;
  setUp(display, QSizeF(200, 24), true, 1.5);
  display.setSpeed(37, 0);
  for (int i = 0; i < 30; ++i) {
    const auto image = solid(8, 24, i % 2 ? Qt::red : Qt::blue);
    image->setSize(QSizeF(7.3, 24));
    display.addSign(ZQImageTickerSign::make(image), 0);
  }
  display.advanceTo(5);
  QImage before = shown(display, 5);
  int moved = 0;
  for (int frame = 1; frame <= 60; ++frame) {
    const double time = 5 + frame / 60.0;
    const QImage now = shown(display, time);
    const int step = static_cast<int>(std::llround(display.strip().travel() * 1.5)) -
                     static_cast<int>(std::llround((5 + (frame - 1) / 60.0) * 37 * 1.5));
    moved += step;
    ASSERT_EQ(now.copy(0, 0, 250 - step, 36), before.copy(step, 0, 250 - step, 36)) << frame;
    before = now;
  }
  EXPECT_EQ(moved, static_cast<int>(std::llround(6 * 37 * 1.5) - std::llround(5 * 37 * 1.5)));
}

TEST(TickerDisplay, StaysWithinHalfAPixelOfTheIdealLine) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.setSpeed(33.3, 0);
  display.addSign(picture(20, 24, Qt::red), 0);
  for (int frame = 1; frame < 200; ++frame) {
    const double time = 1 + frame / 60.0;
    const auto ink = inkAlong(shown(display, time), true);
    ASSERT_LE(std::abs(ink.first - (200 - 33.3 * time)), 0.5 + 1e-9) << frame;
  }
}

TEST(TickerDisplay, GivesNoNewFrameWhereNothingHasMovedByAPixel) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.setSpeed(1, 0);
  display.addSign(picture(20, 24, Qt::red), 0);
  EXPECT_TRUE(display.advanceTo(0)) << "the first frame";
  int frames = 0;
  for (int i = 1; i <= 600; ++i)
    frames += display.advanceTo(i / 60.0);
  EXPECT_EQ(frames, 10);
}

TEST(TickerDisplay, GivesNoNewFrameOfAnEmptyStrip) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.advanceTo(0);
  for (int i = 1; i < 100; ++i)
    EXPECT_FALSE(display.advanceTo(i));
}

TEST(TickerDisplay, DrawsAPictureOnceForAllItsFrames) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  for (int i = 0; i < 3; ++i)
    display.addSign(picture(20, 24, Qt::red), 0);
  for (int i = 0; i < 180; ++i)
    display.advanceTo(i / 60.0);
  EXPECT_EQ(display.tiles().drawn(), 3u);
}

TEST(TickerDisplay, KeepsPicturesOnlyOfWhatIsInSight) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  for (int i = 0; i < 1000; ++i)
    display.addSign(picture(20, 24, Qt::red), 0);
  for (int i = 0; i < 1200; ++i) {
    display.advanceTo(i / 60.0);
    ASSERT_LE(display.tiles().count(), 8u);
  }
}

TEST(TickerDisplay, ShowsAVeryLongTextToItsFarEnd) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.setSpeed(1e5, 0);
  const QString text = QString(100'000, u'x') + u"I"_s;
  const auto sign = display.makeTextSign(text);
  sign->setLoopCount(1);
  display.addSign(sign, 0);
  const double length = sign->size().width();
  ASSERT_GT(length, 500'000);
  // The end of the text, without the gap, in the middle of the strip.
  const double gap = display.defaultFont()->lineHeight();
  const QImage image = shown(display, (length - gap + 100) / 1e5);
  const auto ink = inkAlong(image, true);
  EXPECT_EQ(ink.first, 0);
  EXPECT_NEAR(ink.second, 100, 3);
  EXPECT_LE(display.tiles().count(), 2u);
}

TEST(TickerDisplay, ShowsLinesInItsFontAndColor) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.setDefaultTextColor(Color::deviceRGB(1, 0, 0));
  display.addLine(u"\u2588\u2588\u2588"_s, 0);
  const QImage image = shown(display, 200 / Speed);
  EXPECT_EQ(image.pixel(5, 12), qRgb(255, 0, 0));
  EXPECT_FALSE(display.isFinished());
  display.advanceTo(60);
  EXPECT_TRUE(display.isFinished()) << "a line is shown once";
}

TEST(TickerDisplay, LimitsItsLines) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.addLine(u"first"_s, 0);
  display.advanceTo(0.1);
  for (int i = 0; i < 5000; ++i)
    display.addLine(QString::number(i), 0.1);
  EXPECT_EQ(display.waitingLineCount(), TickerDisplay::MostLines);
  EXPECT_EQ(display.droppedLineCount(), 4000u);
  EXPECT_EQ(display.strip().runs().size(), 1u) << "the line on the strip stays";
}

TEST(TickerDisplay, LimitsTheCharactersOfItsLines) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  for (int i = 0; i < 40; ++i)
    display.addLine(QString(1'000'000, u'x'), 0);
  EXPECT_EQ(display.waitingLineCount(), 16u);
}

TEST(TickerDisplay, MakesNoSignsOfLinesThatWait) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  for (int i = 0; i < 100; ++i)
    display.addLine(u"line"_s, 0);
  display.advanceTo(0.1);
  EXPECT_EQ(display.strip().runs().size(), 1u);
}

TEST(TickerDisplay, LeavesOutSignsThatShowNothing) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  const auto nothing = ZQImageTickerSign::make(nullptr);
  nothing->setLoopCount(ZQEndlessLoopCount);
  nothing->setContinuousScrolling(true);
  display.addSign(nothing, 0);
  display.addSign(picture(20, 24, Qt::red), 0);
  EXPECT_EQ(inkAlong(shown(display, 1), true).first, 140);
  display.advanceTo(100);
  EXPECT_TRUE(display.isFinished());
}

TEST(TickerDisplay, ShowsASignOnceWhoseCountMeansNothing) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  const auto sign = picture(20, 24, Qt::red);
  sign->setLoopCount(-5);
  display.addSign(sign, 0);
  display.advanceTo(10);
  EXPECT_TRUE(display.isFinished());
}

namespace {
class RaisingSign : public ZQTickerSign {
 public:
  explicit RaisingSign(bool raisesInSize) : raisesInSize_(raisesInSize) {}

  QSizeF size() const override {
    if (raisesInSize_)
      throw InvalidArgumentException(u"no size"_s);
    return QSizeF(20, 24);
  }
  void drawAtPoint(QPointF) override { throw InvalidArgumentException(u"no picture"_s); }

 private:
  bool raisesInSize_;
};
} // namespace

TEST(TickerDisplay, GoesOnWhereASignRaises) {
  zq::testing::expectLog(u"a sign cannot be shown: no size"_s);
  zq::testing::expectLog(u"a sign cannot be drawn: no picture"_s);
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.addSign(std::make_shared<RaisingSign>(true), 0);
  display.addSign(std::make_shared<RaisingSign>(false), 0);
  display.addSign(picture(20, 24, Qt::red), 0);
  EXPECT_EQ(inkAlong(shown(display, 1), true).first, 160) << "behind the one that shows nothing";
}

TEST(TickerDisplay, SurvivesEnormousAndTinySigns) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 1));
  for (const QSizeF size : {QSizeF(1e9, 1), QSizeF(1e-9, 1), QSizeF(10, 1e9), QSizeF(1e-9, 1e9)}) {
    const auto image = solid(4, 4, Qt::red);
    image->setSize(size);
    display.addSign(ZQImageTickerSign::make(image), 0);
  }
  for (const double time : {0.1, 1.0, 10.0, 1e6, 1e8})
    display.advanceTo(time);
  EXPECT_LE(display.tiles().count(), 300u);
}

TEST(TickerDisplay, ScrollsAVerticalStripUpwards) {
  TickerDisplay display;
  setUp(display, QSizeF(100, 200), false);
  display.addSign(picture(100, 20, Qt::red), 0);
  display.addSign(picture(100, 20, Qt::blue), 0);
  const QImage image = shown(display, 1);
  EXPECT_EQ(image.pixel(50, 140), qRgb(255, 0, 0)) << "60 points up from the lower edge";
  EXPECT_EQ(image.pixel(50, 159), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(50, 162), qRgb(255, 255, 255)) << "the gap";
  EXPECT_EQ(image.pixel(50, 163), qRgb(0, 0, 255));
}
