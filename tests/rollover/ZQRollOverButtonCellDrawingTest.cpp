// How a rollover button's cell looks, pixel by pixel.
#include "tests/platform/graphics/Canvas.h"
#include "tests/rollover/RollOverView.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/ShadowCache_p.h"

#include <gtest/gtest.h>

#include <QtWidgets/QMenu>

#include <functional>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

const QColor white(Qt::white);

// One colour for each part of each look.
const QColor body(255, 0, 0);
const QColor overBody(0, 255, 0);
const QColor pressedBody(0, 0, 255);
const QColor frame(10, 20, 30);
const QColor overFrame(40, 50, 60);
const QColor pressedFrame(70, 80, 90);
const QColor text(0, 100, 100);
const QColor overText(100, 0, 100);
const QColor pressedText(100, 100, 0);
const QColor arrow(0, 150, 200);
const QColor overArrow(200, 0, 150);
const QColor pressedArrow(150, 200, 0);

// Of `color` at half its alpha over white.
QColor faded(const QColor& color) {
  const auto half = [](int channel) { return (channel + 255) / 2; };
  return {half(color.red()), half(color.green()), half(color.blue())};
}

Ref<Shadow> sharpShadow(double x, double y, const QColor& color = Qt::black) {
  return std::make_shared<Shadow>(QSizeF(x, y), 0, Color::fromQColor(color));
}

bool isNear(const QColor& a, const QColor& b, int tolerance = 2) {
  return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
         std::abs(a.blue() - b.blue()) <= tolerance;
}

#define EXPECT_COLOR(actual, expected)                                                             \
  EXPECT_TRUE(isNear(actual, expected))                                                            \
      << (actual).name().toStdString() << " is not " << (expected).name().toStdString()

// Draws a cell of 100 × 22 points, in both coordinate systems.
class RollOverButtonCellDrawing : public ::testing::TestWithParam<bool> {
 protected:
  RollOverButtonCellDrawing()
      : view(GetParam()), appearance(std::make_shared<ZQRollOverButtonAppearance>()),
        cell(QString()) {
    const auto color = [](const QColor& c) { return Color::fromQColor(c); };
    appearance->setBezelStyle(6);
    appearance->setControlColor(color(body));
    appearance->setMouseoverControlColor(color(overBody));
    appearance->setHighlightedControlColor(color(pressedBody));
    appearance->setFrameColor(color(frame));
    appearance->setMouseoverFrameColor(color(overFrame));
    appearance->setHighlightedFrameColor(color(pressedFrame));
    appearance->setTextColor(color(text));
    appearance->setMouseoverTextColor(color(overText));
    appearance->setHighlightedTextColor(color(pressedText));
    appearance->setArrowColor(color(arrow));
    appearance->setMouseoverArrowColor(color(overArrow));
    appearance->setHighlightedArrowColor(color(pressedArrow));
    cell.setAppearance(appearance);
    cell.setControlView(&view);
    cell.setFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
  }

  // Draws anew.
  void draw() {
    canvas = std::make_unique<Canvas>(QSizeF(100, 22), 1, GetParam());
    cell.drawWithFrame(view.bounds(), &view);
    canvas->finished();
  }
  // The pixel in column `x` and row `y`, counted from the upper left as it is seen.
  QColor seen(int x, int y) const { return canvas->image.pixelColor(x, y); }
  // One in the body, off title, arrow and frame.
  QColor bodyColor() const { return seen(10, 11); }
  // One on the left edge of the outline.
  QColor frameColor(int y = 11) const { return seen(1, y); }
  // One in the arrow; it lies from 85.95 to 93.75 and from 8.225 to 14.725 as it is seen.
  QColor arrowColor() const { return seen(89, 10); }
  // Whether any pixel has this colour.
  bool has(const QColor& color) const {
    for (int y = 0; y < 22; ++y)
      for (int x = 0; x < 100; ++x)
        if (isNear(seen(x, y), color))
          return true;
    return false;
  }
  // The first row, as it is seen, of the outline: 19.5 points up in an unflipped view, 1.5 down in
  // a flipped one.
  int top() const { return GetParam() ? 1 : 2; }
  int bottom() const { return top() + 18; }
  // A title that is one solid block.
  void setSolidTitle() { cell.setTitle(QString(4, QChar(0x2588))); }
  void clearBodies() {
    const Ref<Color> clear = Color::deviceWhite(1, 0);
    appearance->setControlColor(clear);
    appearance->setMouseoverControlColor(clear);
    appearance->setHighlightedControlColor(clear);
  }
  void setMenu() { cell.setMenu(Menu::make(&items)); }

  QMenu items;
  RollOverView view;
  Ref<ZQRollOverButtonAppearance> appearance;
  ZQRollOverButtonCell cell;
  std::unique_ptr<Canvas> canvas;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Views, RollOverButtonCellDrawing, ::testing::Bool(),
                         [](const auto& view) { return view.param ? "Flipped" : "Unflipped"; });

// The four cases of the body.

TEST_P(RollOverButtonCellDrawing, FillsTheBodyOfTheStateThatComesFirst) {
  draw();
  EXPECT_COLOR(bodyColor(), body);
  cell.setShowsStateBy(ChangeGrayCellMask);
  cell.setState(CellState::On);
  draw();
  EXPECT_COLOR(bodyColor(), pressedBody);
  cell.setMouseOver(true);
  draw();
  EXPECT_COLOR(bodyColor(), overBody);
  cell.setHighlighted(true);
  draw();
  EXPECT_COLOR(bodyColor(), pressedBody);
}

TEST_P(RollOverButtonCellDrawing, IsPressedByAnyOfThreeBits) {
  cell.setHighlighted(true);
  for (unsigned mask = 0; mask < 16; ++mask) {
    cell.setHighlightsBy(mask);
    draw();
    EXPECT_COLOR(bodyColor(), (mask & 14) ? pressedBody : body);
  }
}

TEST_P(RollOverButtonCellDrawing, ShowsItsStateByEitherOfTwoBits) {
  cell.setState(CellState::On);
  for (const unsigned mask : {0U, 1U, 4U, 5U, 8U, 12U}) {
    cell.setShowsStateBy(mask);
    draw();
    EXPECT_COLOR(bodyColor(), (mask & 12) ? pressedBody : body);
  }
}

TEST_P(RollOverButtonCellDrawing, AMixedStateIsNotOn) {
  cell.setAllowsMixedState(true);
  cell.setShowsStateBy(12);
  cell.setState(CellState::Mixed);
  draw();
  EXPECT_COLOR(bodyColor(), body);
}

TEST_P(RollOverButtonCellDrawing, TheBodyLiesInTheOutline) {
  draw();
  // Half a row of each edge is covered.
  EXPECT_EQ(seen(50, top() - 1), white);
  EXPECT_COLOR(seen(50, top()), faded(body));
  EXPECT_COLOR(seen(50, top() + 1), body);
  EXPECT_COLOR(seen(50, bottom() - 1), body);
  EXPECT_COLOR(seen(50, bottom()), faded(body));
  EXPECT_EQ(seen(50, bottom() + 1), white);
  EXPECT_COLOR(seen(1, 11), faded(body));
  EXPECT_COLOR(seen(98, 11), faded(body));
  EXPECT_EQ(seen(0, 11), white);
  EXPECT_EQ(seen(99, 11), white);
}

TEST_P(RollOverButtonCellDrawing, ThePressedBodyIsOneRowLowerAtTheTopOnly) {
  cell.setHighlighted(true);
  draw();
  EXPECT_EQ(seen(50, top()), white);
  EXPECT_COLOR(seen(50, top() + 1), faded(pressedBody));
  EXPECT_COLOR(seen(50, bottom() - 1), pressedBody);
  EXPECT_COLOR(seen(50, bottom()), faded(pressedBody));
  // On without being pressed it has the normal outline.
  cell.setHighlighted(false);
  cell.setShowsStateBy(12);
  cell.setState(CellState::On);
  draw();
  EXPECT_COLOR(seen(50, top()), faded(pressedBody));
}

TEST_P(RollOverButtonCellDrawing, IsDrawnWhereItsFrameLies) {
  canvas = std::make_unique<Canvas>(QSizeF(140, 62), 1, GetParam());
  cell.drawWithFrame({20, 30, 100, 22}, &view);
  canvas->finished();
  const QRect ink = inkBounds(canvas->image);
  EXPECT_EQ(ink.x(), 21);
  EXPECT_EQ(ink.width(), 98);
  // From 31.5 for 18 points upwards, or downwards from the upper edge.
  EXPECT_EQ(ink.y(), GetParam() ? 62 - 50 : 31);
  EXPECT_EQ(ink.height(), 19);
}

// Shading.

TEST_P(RollOverButtonCellDrawing, LinearHasItsControlColorAtTheTopAsItIsSeen) {
  appearance->setShadingColor(Color::deviceRGB(0, 0, 0));
  appearance->setShadingMode(ZQShadingModeLinear);
  draw();
  for (int i = 1; i < 17; ++i) {
    // The outline begins in the middle of a row: that of the row `i` lies `i` points into it.
    const double share = double(i) / 18;
    EXPECT_NEAR(seen(10, top() + i).red(), 255 * (1 - share), 2) << i;
    EXPECT_EQ(seen(10, top() + i).blue(), 0) << i;
  }
}

TEST_P(RollOverButtonCellDrawing, BilinearHasItsShadingColorInTheMiddle) {
  appearance->setShadingColor(Color::deviceRGB(0, 0, 0));
  appearance->setShadingMode(ZQShadingModeBilinear);
  draw();
  for (int i = 1; i < 17; ++i)
    EXPECT_NEAR(seen(10, top() + i).red(), 255 * std::abs(1 - double(i) / 9), 2) << i;
}

TEST_P(RollOverButtonCellDrawing, IsFlatWithoutAShadingColorAndInEveryOtherMode) {
  for (const std::uint64_t mode : {std::uint64_t(1), std::uint64_t(2)}) {
    appearance->setShadingMode(mode);
    draw();
    EXPECT_COLOR(seen(10, top() + 3), body);
    EXPECT_COLOR(seen(10, top() + 15), body);
  }
  appearance->setShadingColor(Color::deviceRGB(0, 0, 0));
  for (const std::uint64_t mode : {std::uint64_t(0), std::uint64_t(3), ~std::uint64_t(0)}) {
    appearance->setShadingMode(mode);
    draw();
    EXPECT_COLOR(seen(10, top() + 3), body);
    EXPECT_COLOR(seen(10, top() + 15), body);
  }
}

TEST_P(RollOverButtonCellDrawing, EachLookHasAShadingColorOfItsOwn) {
  appearance->setShadingMode(ZQShadingModeBilinear);
  appearance->setMouseoverShadingColor(Color::deviceRGB(0, 0, 0));
  draw();
  EXPECT_COLOR(seen(10, top() + 9), body);
  cell.setMouseOver(true);
  draw();
  EXPECT_COLOR(seen(10, top() + 9), QColor(0, 0, 0));
  cell.setHighlighted(true);
  draw();
  EXPECT_COLOR(seen(10, top() + 9), pressedBody);
  appearance->setHighlightedShadingColor(Color::deviceRGB(1, 1, 0));
  draw();
  // Within the lower outline the middle lies half a row further down.
  EXPECT_TRUE(isNear(seen(10, top() + 9), QColor(255, 255, 0), 20));
}

// A disabled cell.

TEST_P(RollOverButtonCellDrawing, ADisabledBodyStaysAsItIsWhileItIsFlat) {
  cell.setEnabled(false);
  draw();
  EXPECT_COLOR(bodyColor(), body);
  appearance->setShadingColor(Color::deviceRGB(0, 0, 0));
  draw();
  EXPECT_COLOR(bodyColor(), body);
}

TEST_P(RollOverButtonCellDrawing, ADisabledGradientFadesInBothColors) {
  cell.setEnabled(false);
  appearance->setShadingColor(Color::deviceRGB(0, 0, 0));
  appearance->setShadingMode(ZQShadingModeBilinear);
  draw();
  EXPECT_COLOR(seen(10, top() + 9), QColor(127, 127, 127));
  EXPECT_TRUE(isNear(seen(10, top() + 1), faded(body), 20));
}

TEST_P(RollOverButtonCellDrawing, OnlyTheNormalLookFadesItsTitle) {
  clearBodies();
  setSolidTitle();
  cell.setEnabled(false);
  draw();
  EXPECT_TRUE(has(faded(text)));
  EXPECT_FALSE(has(text));
  cell.setMouseOver(true);
  draw();
  EXPECT_TRUE(has(overText));
  cell.setHighlighted(true);
  draw();
  EXPECT_TRUE(has(pressedText));
}

// Whoever fades the arrow but once must change this.
TEST_P(RollOverButtonCellDrawing, ADisabledArrowVanishesInTheNormalLookAndFadesInTheOthers) {
  clearBodies();
  setMenu();
  appearance->setAlwaysShowMenuIndicator(true);
  cell.setEnabled(false);
  draw();
  EXPECT_EQ(arrowColor(), white);
  cell.setMouseOver(true);
  draw();
  EXPECT_COLOR(arrowColor(), faded(overArrow));
  cell.setHighlighted(true);
  draw();
  EXPECT_COLOR(arrowColor(), faded(pressedArrow));
}

// The frame.

TEST_P(RollOverButtonCellDrawing, StrokesTheFrameOfTheStateThatComesFirst) {
  clearBodies();
  draw();
  EXPECT_EQ(frameColor(), white);
  appearance->setBordered(true);
  draw();
  EXPECT_COLOR(frameColor(), frame);
  cell.setEnabled(false);
  draw();
  EXPECT_COLOR(frameColor(), faded(frame));
  // By the state alone: no mask is asked.
  cell.setShowsStateBy(NoCellMask);
  cell.setState(CellState::On);
  draw();
  EXPECT_COLOR(frameColor(), pressedFrame);
  cell.setMouseOver(true);
  draw();
  EXPECT_COLOR(frameColor(), overFrame);
  cell.setHighlightsBy(NoCellMask);
  cell.setHighlighted(true);
  draw();
  EXPECT_COLOR(frameColor(), pressedFrame);
}

TEST_P(RollOverButtonCellDrawing, TheFrameHasTheNormalOutlineAlsoWhilePressed) {
  clearBodies();
  appearance->setBordered(true);
  cell.setHighlighted(true);
  draw();
  EXPECT_COLOR(seen(50, top()), pressedFrame);
  EXPECT_EQ(seen(50, top() + 1), white);
  EXPECT_COLOR(seen(50, bottom()), pressedFrame);
  for (int y = top() + 6; y < bottom() - 6; ++y)
    EXPECT_COLOR(frameColor(y), pressedFrame);
}

TEST_P(RollOverButtonCellDrawing, OnlyTheLowerHalfOfTheFrameCastsTheControlShadow) {
  clearBodies();
  appearance->setBordered(true);
  appearance->setControlShadow(sharpShadow(2, -1));
  draw();
  EXPECT_COLOR(seen(50, bottom()), frame);
  EXPECT_COLOR(seen(50, bottom() + 1), QColor(0, 0, 0));
  EXPECT_EQ(seen(50, top() + 1), white);
  // The left edge casts its shadow two points to the right, in rows of the lower half only.
  EXPECT_COLOR(seen(3, 14), QColor(0, 0, 0));
  EXPECT_COLOR(seen(3, 11), QColor(0, 0, 0));
  EXPECT_EQ(seen(3, 10), white);
  EXPECT_EQ(seen(3, 8), white);
}

TEST_P(RollOverButtonCellDrawing, AFrameOfOddHeightIsClosed) {
  clearBodies();
  appearance->setBordered(true);
  canvas = std::make_unique<Canvas>(QSizeF(100, 23), 1, GetParam());
  cell.drawWithFrame({0, 0, 100, 23}, &view);
  canvas->finished();
  for (int y = top() + 6; y < bottom() - 5; ++y)
    EXPECT_COLOR(frameColor(y), frame);
  EXPECT_COLOR(seen(50, top()), frame);
  EXPECT_COLOR(seen(50, bottom() + 1), frame);
}

TEST_P(RollOverButtonCellDrawing, OnlyAPressedBodyCastsTheHighlightedShadow) {
  appearance->setHighlightedControlShadow(sharpShadow(0, -2));
  cell.setMouseOver(true);
  draw();
  EXPECT_EQ(seen(50, bottom() + 1), white);
  cell.setMouseOver(false);
  cell.setShowsStateBy(12);
  cell.setState(CellState::On);
  draw();
  EXPECT_EQ(seen(50, bottom() + 1), white);
  cell.setHighlighted(true);
  draw();
  EXPECT_COLOR(seen(50, bottom() + 1), QColor(0, 0, 0));
}

// Arrow and title.

TEST_P(RollOverButtonCellDrawing, TheArrowNeedsAMenuAndTheMouseOrTheFlag) {
  for (int row = 0; row < 8; ++row) {
    const bool hasMenu = row & 1;
    const bool isAlwaysShown = row & 2;
    const bool isOver = row & 4;
    cell.setMenu(hasMenu ? Menu::make(&items) : nullptr);
    appearance->setAlwaysShowMenuIndicator(isAlwaysShown);
    cell.setMouseOver(isOver);
    draw();
    const QColor shown = isOver ? overArrow : arrow;
    const QColor hidden = isOver ? overBody : body;
    EXPECT_COLOR(arrowColor(), hasMenu && (isAlwaysShown || isOver) ? shown : hidden);
  }
}

TEST_P(RollOverButtonCellDrawing, TheArrowPointsDown) {
  setMenu();
  clearBodies();
  appearance->setAlwaysShowMenuIndicator(true);
  draw();
  const auto width = [&](int y) {
    int count = 0;
    for (int x = 84; x < 96; ++x)
      count += isNear(seen(x, y), arrow);
    return count;
  };
  EXPECT_GT(width(9), width(12));
  EXPECT_EQ(seen(89, 7), white);
  EXPECT_EQ(seen(89, 15), white);
}

TEST_P(RollOverButtonCellDrawing, EachLookHasAnArrowAndATextColorOfItsOwn) {
  setMenu();
  setSolidTitle();
  appearance->setAlwaysShowMenuIndicator(true);
  draw();
  EXPECT_COLOR(arrowColor(), arrow);
  EXPECT_TRUE(has(text));
  cell.setShowsStateBy(12);
  cell.setState(CellState::On);
  draw();
  EXPECT_COLOR(arrowColor(), pressedArrow);
  EXPECT_TRUE(has(pressedText));
  cell.setMouseOver(true);
  draw();
  EXPECT_COLOR(arrowColor(), overArrow);
  EXPECT_TRUE(has(overText));
  cell.setHighlighted(true);
  draw();
  EXPECT_COLOR(arrowColor(), pressedArrow);
  EXPECT_TRUE(has(pressedText));
}

TEST_P(RollOverButtonCellDrawing, ArrowAndTitleCastTheTextShadowOfTheLook) {
  clearBodies();
  setMenu();
  setSolidTitle();
  appearance->setAlwaysShowMenuIndicator(true);
  const QColor shade(250, 200, 100);
  const QColor overShade(200, 100, 250);
  const QColor pressedShade(100, 250, 200);
  appearance->setTextShadow(sharpShadow(0, -5, shade));
  appearance->setMouseoverTextShadow(sharpShadow(0, -5, overShade));
  appearance->setHighlightedTextShadow(sharpShadow(0, -5, pressedShade));
  const auto expectShade = [&](const QColor& color) {
    draw();
    // Below the arrow, and below the title on its left.
    EXPECT_COLOR(seen(89, 16), color);
    bool isUnderTitle = false;
    for (int x = 10; x < 80; ++x)
      for (int y = 12; y < 22; ++y)
        isUnderTitle |= isNear(seen(x, y), color);
    EXPECT_TRUE(isUnderTitle);
  };
  expectShade(shade);
  cell.setMouseOver(true);
  expectShade(overShade);
  cell.setHighlighted(true);
  expectShade(pressedShade);
  cell.setMouseOver(false);
  cell.setHighlighted(false);
  cell.setShowsStateBy(12);
  cell.setState(CellState::On);
  expectShade(pressedShade);
}

TEST_P(RollOverButtonCellDrawing, ShowsTheAlternateTitleWhereTheMasksSaySo) {
  cell.setAlternateTitle(QString(4, QChar(0x2588)));
  draw();
  EXPECT_FALSE(has(text));
  cell.setState(CellState::On);
  cell.setShowsStateBy(NoCellMask);
  draw();
  EXPECT_FALSE(has(text));
  cell.setShowsStateBy(ContentsCellMask);
  draw();
  EXPECT_TRUE(has(text));
  cell.setState(CellState::Off);
  cell.setHighlighted(true);
  cell.setHighlightsBy(ContentsCellMask);
  draw();
  EXPECT_TRUE(has(text));
  cell.setHighlightsBy(PushInCellMask);
  draw();
  EXPECT_FALSE(has(pressedText));
}

TEST_P(RollOverButtonCellDrawing, CapitalsStandInTheMiddleOfTheOutline) {
  clearBodies();
  cell.setTitle(u"HHH"_s);
  draw();
  const QRect ink = inkBounds(canvas->image, Qt::white, 40);
  ASSERT_FALSE(ink.isEmpty());
  const double middle = ink.y() + ink.height() / 2.0;
  const double outline = GetParam() ? 22 - 10.5 : 10.5;
  EXPECT_NEAR(middle, outline, 1.1);
  EXPECT_NEAR(ink.x() + ink.width() / 2.0, 50, 1);
}

TEST_P(RollOverButtonCellDrawing, ALongTitleStaysInTheTextRectangle) {
  clearBodies();
  cell.setTitle(QString(100, u'H'));
  draw();
  const QRect ink = inkBounds(canvas->image, Qt::white, 40);
  EXPECT_GE(ink.left(), 8);
  EXPECT_LE(ink.right(), 92);
  EXPECT_GT(ink.width(), 70);
}

// The context.

TEST_P(RollOverButtonCellDrawing, LeavesClipTransformAndShadowAsTheyWere) {
  setMenu();
  setSolidTitle();
  appearance->setBordered(true);
  appearance->setAlwaysShowMenuIndicator(true);
  appearance->setControlShadow(sharpShadow(0, -1));
  appearance->setTextShadow(sharpShadow(0, -1));
  appearance->setHighlightedTextShadow(sharpShadow(0, -1));
  appearance->setHighlightedControlShadow(sharpShadow(0, -1));
  for (const bool isHighlighted : {false, true}) {
    Canvas target({100, 22}, 1, GetParam());
    GraphicsContext& context = *target.context;
    context.saveGraphicsState();
    context.clipToRect({0, 0, 50, 22});
    const QTransform transform = context.deviceTransform();
    cell.setHighlighted(isHighlighted);
    cell.drawWithFrame(view.bounds(), &view);
    EXPECT_EQ(context.clipBounds(), QRectF(0, 0, 50, 22));
    EXPECT_EQ(context.deviceTransform(), transform);
    EXPECT_EQ(context.shadow(), nullptr);
    context.restoreGraphicsState();
    EXPECT_EQ(context.clipBounds(), QRectF(0, 0, 100, 22));
  }
}

// Whoever restores only what was saved must change this.
TEST_P(RollOverButtonCellDrawing, TakesBackAStateOfItsCallerWhenHighlightedByContentsOnly) {
  cell.setHighlighted(true);
  for (const unsigned mask : {0U, 1U}) {
    cell.setHighlightsBy(mask);
    Canvas target({100, 22}, 1, GetParam());
    target.context->saveGraphicsState();
    target.context->clipToRect({0, 0, 50, 22});
    cell.drawInteriorWithFrame(view.bounds(), &view);
    EXPECT_EQ(target.context->clipBounds(), QRectF(0, 0, 100, 22));
  }
}

TEST_P(RollOverButtonCellDrawing, FillsWithTheColorOfTheContextWithoutAnAppearance) {
  cell.setAppearance(nullptr);
  canvas = std::make_unique<Canvas>(QSizeF(100, 22), 1, GetParam());
  Color::deviceRGB(1, 0, 1)->set();
  cell.drawWithFrame(view.bounds(), &view);
  canvas->finished();
  EXPECT_COLOR(bodyColor(), QColor(255, 0, 255));
}

TEST_P(RollOverButtonCellDrawing, DrawsOnlyTheTitleRectangleBeforeAnyLayout) {
  canvas = std::make_unique<Canvas>(QSizeF(100, 22), 1, GetParam());
  cell.drawInteriorWithFrame(view.bounds(), &view);
  EXPECT_TRUE(inkBounds(canvas->finished()).isEmpty());
}

TEST_P(RollOverButtonCellDrawing, WithoutAContextOnlyTheLayoutIsMade) {
  appearance->setBordered(true);
  cell.drawWithFrame(view.bounds(), &view);
  EXPECT_EQ(cell.lastFrameSize(), QSizeF(100, 22));
}

// Redrawing.

TEST_P(RollOverButtonCellDrawing, ARedrawMakesNoPathNoTextAndNoShadowAnew) {
  setMenu();
  cell.setTitle(u"A title that is too long for its button"_s);
  appearance->setBordered(true);
  appearance->setAlwaysShowMenuIndicator(true);
  appearance->setControlShadow(sharpShadow(0, -1));
  // Soft and of a colour for each, so that each has pixels of its own.
  appearance->setTextShadow(std::make_shared<Shadow>(QSizeF(0, -1), 2, Color::deviceWhite(0.1)));
  appearance->setMouseoverTextShadow(
      std::make_shared<Shadow>(QSizeF(0, -1), 2, Color::deviceWhite(0.2)));
  appearance->setHighlightedTextShadow(
      std::make_shared<Shadow>(QSizeF(0, -1), 2, Color::deviceWhite(0.3)));
  appearance->setHighlightedControlShadow(
      std::make_shared<Shadow>(QSizeF(0, 1), 2, Color::deviceWhite(0.4)));
  const auto drawAll = [&] {
    for (const bool isEnabled : {true, false})
      for (const bool isOver : {false, true})
        for (const bool isHighlighted : {false, true}) {
          cell.setEnabled(isEnabled);
          cell.setMouseOver(isOver);
          cell.setHighlighted(isHighlighted);
          draw();
        }
  };
  drawAll();
  const Ref<BezierPath> background = cell.backgroundPath();
  const Ref<BezierPath> highlighted = cell.highlightedBackgroundPath();
  const Ref<BezierPath> arrowPath = cell.arrowPath();
  // The shadow of a text is known by the layout that casts it.
  const quint64 insertions = ShadowCache::shared().insertions();
  EXPECT_GT(insertions, 0U);
  drawAll();
  EXPECT_EQ(ShadowCache::shared().insertions(), insertions);
  EXPECT_EQ(cell.backgroundPath(), background);
  EXPECT_EQ(cell.highlightedBackgroundPath(), highlighted);
  EXPECT_EQ(cell.arrowPath(), arrowPath);
}

TEST_P(RollOverButtonCellDrawing, ARedrawSeesWhatHasChanged) {
  draw();
  cell.backgroundPath()->transformUsingAffineTransform(QTransform::fromScale(0.5, 1));
  draw();
  EXPECT_EQ(seen(80, 11), white);
  setSolidTitle();
  draw();
  EXPECT_TRUE(has(text));
  appearance->setTextColor(Color::deviceRGB(1, 1, 0));
  draw();
  EXPECT_TRUE(has(QColor(255, 255, 0)));
  cell.setAlignment(TextAlignment::Left);
  draw();
  EXPECT_COLOR(seen(12, 11), QColor(255, 255, 0));
}
