// How arrow and title of a rollover button's cell look, and what a redraw makes anew.
#include "tests/rollover/RollOverButtonCellDrawing.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/ShadowCache_p.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

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
