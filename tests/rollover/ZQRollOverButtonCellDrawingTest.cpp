// How body and frame of a rollover button's cell look, pixel by pixel.
#include "tests/rollover/RollOverButtonCellDrawing.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

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
