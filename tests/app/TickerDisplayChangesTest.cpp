// What a display does with its signs while they run: more come, some are replaced, changed and
// removed, and the strip steps and pauses.
#include "tests/app/DisplayFrames.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/text_attributes.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

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

TEST(TickerDisplayChanges, ShowsSignsThatAreAddedTogetherBeforeAnyOfThemAgain) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s, Qt::red), 0);
  display.addSign(named(u"b"_s, Qt::green), 0);
  EXPECT_EQ(colorsOf(shown(display, 96 / Speed), 3), (std::vector<QRgb>{Red, Green, Red}));
}

TEST(TickerDisplayChanges, ReplacesAWaitingSignInItsPlace) {
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

TEST(TickerDisplayChanges, LetsAReplacedSignOnTheStripGoOnToItsEnd) {
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

TEST(TickerDisplayChanges, ChangesATextOnTheStripWithoutMovingAnything) {
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

TEST(TickerDisplayChanges, CutsOffATextThatHasBecomeLongerUntilItEntersAgain) {
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

TEST(TickerDisplayChanges, ChangesATextThatWaits) {
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

TEST(TickerDisplayChanges, ChangesNoTextOfASignThatHasGoneOrIsNone) {
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

TEST(TickerDisplayChanges, RemovesASignOnceItHasLeft) {
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

TEST(TickerDisplayChanges, RemovesASignThatHasNotBeenShown) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s, Qt::red), 0);
  display.addSign(named(u"b"_s, Qt::green), 0);
  display.advanceTo(0.1);
  EXPECT_TRUE(display.removeSign(u"b"_s, 0.1));
  EXPECT_EQ(colorsOf(shown(display, 96 / Speed), 2), (std::vector<QRgb>{Red, Red}));
}

TEST(TickerDisplayChanges, ShowsArrangedSignsInTheirOrderInEveryRound) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addArrangedSign(named(u"a"_s, Qt::red), 0);
  display.addArrangedSign(named(u"b"_s, Qt::green), 0);
  display.addArrangedSign(named(u"c"_s, Qt::blue), 0);
  display.arrangeSigns({u"c"_s, u"b"_s, u"nobody"_s, u"a"_s}, 0);
  EXPECT_EQ(colorsOf(shown(display, 96 / Speed), 3), (std::vector<QRgb>{Blue, Green, Red}));
  EXPECT_EQ(colorsOf(shown(display, 192 / Speed), 3), (std::vector<QRgb>{Blue, Green, Red}));
}

TEST(TickerDisplayChanges, ShowsANewArrangedSignNextAndThenInItsOrder) {
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

TEST(TickerDisplayChanges, StepsToTheNextSignAndBack) {
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

TEST(TickerDisplayChanges, StepsBackToALineOfWhichOnlyTheTextWasKept) {
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

TEST(TickerDisplayChanges, StandsStillWhileItIsPaused) {
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
  EXPECT_NEAR(display.strip().travel(), Speed, 1e-9);
  display.advanceTo(52);
  EXPECT_NEAR(display.strip().travel(), 3 * Speed - 2 * Speed * Strip::EaseSeconds / 3, 1e-9)
      << "smoothly from a stand";
}

TEST(TickerDisplayChanges, ForgetsTheNamesOfSignsThatHaveGone) {
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

namespace {
const QString Words = QStringLiteral("words");

Ref<Font> fontOf(const AttributedString& text, qsizetype index = 0) {
  return objectOf<Font>(text.attributeAtIndex(FontAttributeName, index));
}
Ref<Color> colorOf(const AttributedString& text, qsizetype index = 0) {
  return objectOf<Color>(text.attributeAtIndex(ForegroundColorAttributeName, index));
}
} // namespace

TEST(TickerDisplayLook, IsFollowedByTextsThatHaveIt) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  const auto text = std::dynamic_pointer_cast<ZQTextTickerSign>(display.makeTextSign(Words));
  const auto combo = ZQComboTickerSign::make(any(display.styledText(Words)), Ref<Image>());
  display.addSign(text, 0);
  display.addSign(combo, 0);
  const auto font = Font::fontWithName(u"DejaVu Sans"_s, 20);
  const auto color = Color::deviceRGB(1, 0, 0);
  display.setDefaultFont(font);
  display.setDefaultTextColor(color);
  // Those that wait follow when they are asked for.
  EXPECT_EQ(display.queuedSigns(0).size(), 2u);
  for (const auto& attributed : {text->text(), objectOf<AttributedString>(combo->text())}) {
    EXPECT_EQ(fontOf(*attributed), font);
    EXPECT_EQ(colorOf(*attributed), color);
  }
}

TEST(TickerDisplayLook, IsNotForTextsThatHaveTheirOwn) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  const Ref<Font> before = display.defaultFont();
  const auto equal = Font::fontWithName(before->fontName(), before->pointSize());
  ASSERT_NE(equal, before);
  const auto text =
      ZQTextTickerSign::make(AttributedString::make(Words, {{FontAttributeName, any(equal)}}));
  const Ref<AttributedString> words = text->text();
  display.addSign(text, 0);
  display.setDefaultFont(Font::fontWithName(u"DejaVu Sans"_s, 20));
  display.setDefaultTextColor(Color::deviceRGB(1, 0, 0));
  EXPECT_EQ(text->text(), words);
}

TEST(TickerDisplayLook, IsFollowedByThePartsOfATextThatHaveIt) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  const Ref<MutableAttributedString> words = display.styledText(Words)->mutableCopy();
  const auto red = Color::deviceRGB(1, 0, 0);
  words->addAttribute(ForegroundColorAttributeName, any(red), {0, 2});
  const auto text = ZQTextTickerSign::make(Ref<AttributedString>(words));
  display.addSign(text, 0);
  const auto blue = Color::deviceRGB(0, 0, 1);
  display.setDefaultTextColor(blue);
  EXPECT_EQ(display.queuedSigns(0).at(0).sign, text);
  EXPECT_EQ(colorOf(*text->text(), 0), red);
  EXPECT_EQ(colorOf(*text->text(), 2), blue);
}

TEST(TickerDisplayLook, ChangesTheLengthOfWhatIsOnTheStrip) {
  TickerDisplay display;
  setUp(display, QSizeF(400, 24));
  display.addSign(display.makeTextSign(Words), 0);
  display.advanceTo(1);
  ASSERT_EQ(display.strip().runs().size(), 1u);
  const double before = display.strip().runs().front().length;
  display.setDefaultFont(Font::fontWithName(u"DejaVu Sans"_s, 20));
  EXPECT_GT(display.strip().runs().front().length, before * 1.5);
}

TEST(TickerDisplayLook, IsFollowedThroughAnyNumberOfChanges) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  display.addSign(picture(200, 24, Qt::white), 0);
  const auto text = std::dynamic_pointer_cast<ZQTextTickerSign>(display.makeTextSign(Words));
  display.addSign(text, 0);
  Ref<Font> font;
  for (std::size_t i = 0; i < 3 * StyleChanges::Most + 7; ++i) {
    font = Font::fontWithName(u"DejaVu Sans"_s, 10 + double(i % 7));
    display.setDefaultFont(font);
  }
  display.advanceTo(6);
  ASSERT_EQ(display.strip().runs().back().number, 2u);
  EXPECT_EQ(fontOf(*text->text()), font) << "when it has entered, at the latest";
}

TEST(TickerDisplayLook, IsSharedByTheTextsThatFollowIt) {
  TickerDisplay display;
  setUp(display, QSizeF(200, 24));
  for (int i = 0; i < 3; ++i)
    display.addSign(display.makeTextSign(Words), 0);
  display.setDefaultFont(Font::fontWithName(u"DejaVu Sans"_s, 20));
  const std::vector<QueuedSign> signs = display.queuedSigns(0);
  const auto attributesOf = [](const QueuedSign& sign) {
    return std::dynamic_pointer_cast<ZQTextTickerSign>(sign.sign)->text()->attributesAtIndex(0);
  };
  EXPECT_TRUE(attributesOf(signs.at(1)).isSharedWith(attributesOf(signs.at(2))));
}
