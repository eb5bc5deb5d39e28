#include "app/display/TickerDisplay.h"

#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtGui/QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;

namespace {
constexpr double Speed = 60;

Ref<Image> solid(int width, int height, QColor color) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(color);
  return Image::fromQImage(image);
}

Ref<ZQImageTickerSign> picture(int width, int height, QColor color) {
  const auto sign = ZQImageTickerSign::make(solid(width, height, color));
  sign->setLoopCount(1);
  return sign;
}

void setUp(TickerDisplay& display, QSizeF size, bool horizontal = true, double scale = 1) {
  display.setScale(scale);
  display.setHorizontal(horizontal, 0);
  display.setSize(size, 0);
  display.setDefaultFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
  display.setDefaultTextColor(Color::deviceRGB(0, 0, 0));
  display.setSpeed(Speed, 0);
}

QImage shown(TickerDisplay& display, double time) {
  display.advanceTo(time);
  QImage image(display.frame().size, QImage::Format_RGB32);
  QPainter painter(&image);
  paintFrame(painter, display.frame(), Qt::white);
  return image;
}

// The columns (or rows) of `image` that are not white, as first and one past the last.
std::pair<int, int> inkAlong(const QImage& image, bool horizontal) {
  const int extent = horizontal ? image.width() : image.height();
  const int breadth = horizontal ? image.height() : image.width();
  std::pair<int, int> ink(extent, 0);
  for (int i = 0; i < extent; ++i)
    for (int j = 0; j < breadth; ++j)
      if (image.pixel(horizontal ? i : j, horizontal ? j : i) != qRgb(255, 255, 255)) {
        ink.first = std::min(ink.first, i);
        ink.second = std::max(ink.second, i + 1);
      }
  return ink;
}
} // namespace

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
  display.setHorizontal(false, 0);
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
      [&] { display.setHorizontal(false, 0.1); },
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

namespace {
Ref<ZQImageTickerSign> named(const QString& identifier, QColor color) {
  const auto sign = picture(20, 24, color);
  sign->setIdentifier(identifier);
  sign->setLoopCount(ZQEndlessLoopCount);
  sign->setContinuousScrolling(true);
  return sign;
}

const QRgb Red = qRgb(255, 0, 0);
const QRgb Green = qRgb(0, 255, 0);
const QRgb Blue = qRgb(0, 0, 255);
const QRgb Black = qRgb(0, 0, 0);

// The colors at the places of the first signs, 32 points apart, counted from the strip's far edge.
std::vector<QRgb> colorsOf(const QImage& image, int count) {
  std::vector<QRgb> colors;
  for (int i = 0; i < count; ++i)
    colors.push_back(image.pixel(32 * i + 10, 12));
  return colors;
}
} // namespace

TEST(TickerDisplay, ShowsSignsThatAreAddedTogetherBeforeAnyOfThemAgain) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s, Qt::red), 0);
  display.addSign(named(u"b"_s, Qt::green), 0);
  EXPECT_EQ(colorsOf(shown(display, 96 / Speed), 3), (std::vector<QRgb>{Red, Green, Red}));
}

TEST(TickerDisplay, ReplacesAWaitingSignInItsPlace) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s, Qt::red), 0);
  display.addSign(named(u"b"_s, Qt::green), 0);
  display.addSign(named(u"c"_s, Qt::blue), 0);
  display.advanceTo(0.1);
  EXPECT_TRUE(display.replaceSign(named(u"b"_s, Qt::black), 0.1));
  EXPECT_FALSE(display.replaceSign(named(u"nobody"_s, Qt::black), 0.1));
  EXPECT_EQ(colorsOf(shown(display, 96 / Speed), 3), (std::vector<QRgb>{Red, Black, Blue}));
}

TEST(TickerDisplay, LetsAReplacedSignOnTheStripGoOnToItsEnd) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s, Qt::red), 0);
  display.addSign(named(u"b"_s, Qt::green), 0);
  const QImage before = shown(display, 60 / Speed);
  EXPECT_TRUE(display.replaceSign(named(u"a"_s, Qt::black), 60 / Speed));
  EXPECT_EQ(shown(display, 60 / Speed), before) << "nothing jumps";
  EXPECT_EQ(colorsOf(shown(display, 96 / Speed), 3), (std::vector<QRgb>{Red, Green, Black}));
  EXPECT_EQ(colorsOf(shown(display, 160 / Speed), 3), (std::vector<QRgb>{Black, Green, Black}));
}

TEST(TickerDisplay, ChangesATextOnTheStripWithoutMovingAnything) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  const auto sign = display.makeTextSign(u"10:00"_s);
  sign->setIdentifier(u"clock"_s);
  display.addSign(sign, 0);
  display.addSign(picture(10, 24, Qt::red), 0);
  const QImage before = shown(display, 3);
  ASSERT_EQ(display.strip().runs().size(), 2u);
  const double end = display.strip().runs()[0].end();
  const std::uint64_t drawn = display.tiles().drawn();
  ASSERT_TRUE(display.changeText(u"clock"_s, u"10:04"_s, 3));
  EXPECT_TRUE(display.advanceTo(3));
  const QImage after = shown(display, 3);
  EXPECT_NE(after, before);
  EXPECT_EQ(display.strip().runs()[0].end(), end);
  EXPECT_EQ(display.tiles().drawn(), drawn + 1) << "the picture is not drawn again";
  // The other text alone, as if it had been there from the start.
  TickerDisplay other;
  setUp(other, QSizeF(400, 24));
  other.addSign(other.makeTextSign(u"10:04"_s), 0);
  other.addSign(picture(10, 24, Qt::red), 0);
  EXPECT_EQ(after, shown(other, 3));
  EXPECT_FALSE(display.advanceTo(3)) << "nothing has changed since";
}

TEST(TickerDisplay, CutsOffATextThatHasBecomeLongerUntilItEntersAgain) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  const auto sign = display.makeTextSign(u"i"_s);
  sign->setIdentifier(u"clock"_s);
  sign->setLoopCount(2);
  display.addSign(sign, 0);
  shown(display, 5);
  const Strip::Run run = display.strip().runs().at(0);
  ASSERT_TRUE(display.changeText(u"clock"_s, u"mmmmmmmmmm"_s, 5));
  const std::pair<int, int> ink = inkAlong(shown(display, 5), true);
  EXPECT_LE(ink.second - ink.first, run.length);
  EXPECT_GE(ink.second - ink.first, run.length / 2);
  EXPECT_EQ(display.strip().runs().at(0).length, run.length);
  shown(display, 15);
  EXPECT_GT(display.strip().runs().at(0).length, 3 * run.length);
}

TEST(TickerDisplay, ChangesATextThatWaits) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  display.addSign(picture(100, 24, Qt::red), 0);
  const auto sign = display.makeTextSign(u"before"_s);
  sign->setIdentifier(u"clock"_s);
  display.addSign(sign, 0);
  display.advanceTo(0.5);
  ASSERT_TRUE(display.changeText(u"clock"_s, u"after"_s, 0.5));
  EXPECT_FALSE(display.advanceTo(0.5)) << "nothing in sight has changed";
  TickerDisplay other;
  setUp(other, QSizeF(400, 24));
  other.addSign(picture(100, 24, Qt::red), 0);
  other.addSign(other.makeTextSign(u"after"_s), 0);
  EXPECT_EQ(shown(display, 5), shown(other, 5));
}

TEST(TickerDisplay, ChangesNoTextOfASignThatHasGoneOrIsNone) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  const auto image = picture(10, 24, Qt::red);
  image->setIdentifier(u"picture"_s);
  display.addSign(image, 0);
  const auto sign = display.makeTextSign(u"once"_s);
  sign->setIdentifier(u"clock"_s);
  display.addSign(sign, 0);
  EXPECT_FALSE(display.changeText(u"other"_s, u"text"_s, 1));
  EXPECT_FALSE(display.changeText(u"picture"_s, u"text"_s, 1));
  EXPECT_TRUE(display.changeText(u"clock"_s, u"text"_s, 1));
  display.advanceTo(60);
  EXPECT_FALSE(display.changeText(u"clock"_s, u"late"_s, 60));
}

TEST(TickerDisplay, RemovesASignOnceItHasLeft) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  const auto removed = named(u"a"_s, Qt::red);
  display.addSign(removed, 0);
  display.addSign(named(u"b"_s, Qt::green), 0);
  const QImage before = shown(display, 60 / Speed);
  EXPECT_TRUE(display.removeSign(u"a"_s, 60 / Speed));
  EXPECT_FALSE(display.removeSign(u"a"_s, 60 / Speed));
  EXPECT_EQ(shown(display, 60 / Speed), before) << "nothing jumps";
  EXPECT_EQ(colorsOf(shown(display, 96 / Speed), 3), (std::vector<QRgb>{Red, Green, Green}));
  display.advanceTo(10);
  EXPECT_EQ(removed.use_count(), 1) << "the display holds it no longer";
}

TEST(TickerDisplay, RemovesASignThatHasNotBeenShown) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s, Qt::red), 0);
  display.addSign(named(u"b"_s, Qt::green), 0);
  display.advanceTo(0.1);
  EXPECT_TRUE(display.removeSign(u"b"_s, 0.1));
  EXPECT_EQ(colorsOf(shown(display, 96 / Speed), 2), (std::vector<QRgb>{Red, Red}));
}

TEST(TickerDisplay, ShowsArrangedSignsInTheirOrderInEveryRound) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addArrangedSign(named(u"a"_s, Qt::red), 0);
  display.addArrangedSign(named(u"b"_s, Qt::green), 0);
  display.addArrangedSign(named(u"c"_s, Qt::blue), 0);
  display.arrangeSigns({u"c"_s, u"b"_s, u"nobody"_s, u"a"_s}, 0);
  EXPECT_EQ(colorsOf(shown(display, 96 / Speed), 3), (std::vector<QRgb>{Blue, Green, Red}));
  EXPECT_EQ(colorsOf(shown(display, 192 / Speed), 3), (std::vector<QRgb>{Blue, Green, Red}));
}

TEST(TickerDisplay, ShowsANewArrangedSignNextAndThenInItsOrder) {
  TickerDisplay display;
  setUp(display, QSizeF(128, 24));
  display.addArrangedSign(named(u"a"_s, Qt::red), 0);
  display.addArrangedSign(named(u"b"_s, Qt::green), 0);
  display.addArrangedSign(named(u"c"_s, Qt::blue), 0);
  display.advanceTo(50 / Speed); // a has entered, b enters
  display.addArrangedSign(named(u"n"_s, Qt::black), 50 / Speed);
  display.arrangeSigns({u"n"_s, u"a"_s, u"b"_s, u"c"_s}, 50 / Speed);
  EXPECT_EQ(colorsOf(shown(display, 128 / Speed), 4), (std::vector<QRgb>{Red, Green, Black, Blue}));
  EXPECT_EQ(colorsOf(shown(display, 256 / Speed), 4), (std::vector<QRgb>{Black, Red, Green, Blue}));
}

TEST(TickerDisplay, StepsToTheNextSignAndBack) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s, Qt::red), 0);
  display.addSign(named(u"b"_s, Qt::green), 0);
  display.addSign(named(u"c"_s, Qt::blue), 0);
  const double time = 100 / Speed; // 4 points of a have gone
  const QImage before = shown(display, time);
  EXPECT_TRUE(display.stepForward(time));
  EXPECT_EQ(shown(display, time), before) << "nothing jumps";
  const double then = time + Strip::StepSeconds;
  EXPECT_EQ(colorsOf(shown(display, then), 3), (std::vector<QRgb>{Green, Blue, Red}));
  EXPECT_EQ(shown(display, then).pixel(0, 12), Green) << "from its start";
  EXPECT_TRUE(display.stepBack(then));
  EXPECT_EQ(colorsOf(shown(display, then + Strip::StepSeconds), 3),
            (std::vector<QRgb>{Red, Green, Blue}));
}

TEST(TickerDisplay, StepsBackToALineOfWhichOnlyTheTextWasKept) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addLine(u"\u2588\u2588\u2588"_s, 0);
  display.advanceTo(100);
  EXPECT_TRUE(display.isFinished());
  EXPECT_TRUE(display.stepBack(100));
  EXPECT_EQ(shown(display, 100 + Strip::StepSeconds).pixel(5, 12), Black);
  EXPECT_FALSE(display.isFinished());
  display.advanceTo(200);
  EXPECT_TRUE(display.isFinished());
}

TEST(TickerDisplay, StandsStillWhileItIsPaused) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s, Qt::red), 0);
  const QImage before = shown(display, 1);
  display.setPaused(true, 1);
  EXPECT_TRUE(display.isPaused());
  EXPECT_FALSE(display.isMoving());
  EXPECT_EQ(display.speed(), Speed);
  EXPECT_EQ(shown(display, 50), before);
  display.setSpeed(2 * Speed, 50);
  EXPECT_EQ(display.speed(), 2 * Speed);
  EXPECT_EQ(shown(display, 51), before);
  display.setPaused(false, 51);
  EXPECT_EQ(display.speed(), 2 * Speed);
  EXPECT_TRUE(display.isMoving());
  EXPECT_DOUBLE_EQ(display.strip().travel(), Speed);
  display.advanceTo(52);
  EXPECT_DOUBLE_EQ(display.strip().travel(), 3 * Speed);
}

TEST(TickerDisplay, ForgetsTheNamesOfSignsThatHaveGone) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  const auto sign = named(u"once"_s, Qt::red);
  sign->setLoopCount(1);
  display.addSign(sign, 0);
  display.advanceTo(1);
  EXPECT_FALSE(display.removeSign(u"once"_s, 1)) << "it does not wait";
  display.advanceTo(10);
  EXPECT_TRUE(display.isFinished());
  EXPECT_FALSE(display.replaceSign(named(u"once"_s, Qt::blue), 10));
  EXPECT_TRUE(display.isFinished());
}
