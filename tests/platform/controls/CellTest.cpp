#include "zqticker/platform/controls/Cell.h"

#include "tests/platform/controls/FakeView.h"
#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"

#include <gtest/gtest.h>

#include <QtCore/QObject>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

TEST(Cell, IsAnEmptyTextWithoutFontAtFirst) {
  const Cell cell;
  EXPECT_EQ(cell.type(), CellType::Text);
  EXPECT_EQ(cell.title(), QString());
  EXPECT_EQ(cell.font(), nullptr);
  EXPECT_EQ(cell.alignment(), TextAlignment::Natural);
  EXPECT_EQ(cell.controlSize(), ControlSize::Regular);
  EXPECT_EQ(cell.state(), CellState::Off);
  EXPECT_EQ(cell.menu(), nullptr);
  EXPECT_EQ(cell.controlView(), nullptr);
  EXPECT_TRUE(cell.isEnabled());
  EXPECT_FALSE(cell.isHighlighted());
  EXPECT_FALSE(cell.isContinuous());
  EXPECT_FALSE(cell.isBordered());
}

TEST(Cell, ShowsTheCharactersOfWhateverTextItHolds) {
  Cell cell;
  cell.setTitle(u"plain"_s);
  EXPECT_EQ(cell.title(), u"plain"_s);
  cell.setObjectValue(any(AttributedString::make(u"rich"_s)));
  EXPECT_EQ(cell.title(), u"rich"_s);
  cell.setObjectValue(7);
  EXPECT_EQ(cell.title(), u"7"_s);
  cell.setObjectValue(Any());
  EXPECT_EQ(cell.title(), QString());
}

TEST(Cell, IsOnWhereMixedIsNotAllowed) {
  Cell cell;
  cell.setState(CellState::Mixed);
  EXPECT_EQ(cell.state(), CellState::On);
  cell.setAllowsMixedState(true);
  cell.setState(CellState::Mixed);
  EXPECT_EQ(cell.state(), CellState::Mixed);
  cell.setAllowsMixedState(false);
  EXPECT_EQ(cell.state(), CellState::On);
  cell.setState(CellState(5));
  EXPECT_EQ(cell.state(), CellState::On);
}

TEST(Cell, StepsFromOnToOffAndOverMixedWhereThatIsAllowed) {
  Cell cell;
  cell.setNextState();
  EXPECT_EQ(cell.state(), CellState::On);
  cell.setNextState();
  EXPECT_EQ(cell.state(), CellState::Off);
  cell.setAllowsMixedState(true);
  cell.setNextState();
  EXPECT_EQ(cell.state(), CellState::Mixed);
  cell.setNextState();
  EXPECT_EQ(cell.state(), CellState::On);
}

TEST(Cell, TellsItsViewOfAnotherStateOnly) {
  FakeView view;
  Cell cell;
  cell.setControlView(&view);
  cell.setState(CellState::Off);
  cell.setState(CellState::On);
  cell.setState(CellState::On);
  EXPECT_EQ(view.log, QStringList{u"state 1"_s});
}

TEST(Cell, ForgetsAViewThatHasGone) {
  Cell cell;
  {
    FakeView view;
    cell.setControlView(&view);
    EXPECT_EQ(cell.controlView(), &view);
  }
  EXPECT_EQ(cell.controlView(), nullptr);
  cell.setState(CellState::On);
  EXPECT_EQ(cell.state(), CellState::On);
}

TEST(Cell, IsAsLargeAsItsTitleInItsFont) {
  Cell cell;
  cell.setTitle(u"Title"_s);
  cell.setFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
  const QSizeF at12 = cell.cellSize();
  cell.setFont(Font::fontWithName(u"DejaVu Sans"_s, 24));
  const QSizeF at24 = cell.cellSize();
  EXPECT_GT(at12.width(), 0);
  EXPECT_NEAR(at24.width(), 2 * at12.width(), 1e-9);
  EXPECT_NEAR(at24.height(), 2 * at12.height(), 1e-9);
  EXPECT_EQ(cell.cellSizeForBounds(QRectF(0, 0, 1, 1)), at24);
  EXPECT_EQ(cell.intrinsicContentSize(), at24);
  EXPECT_EQ(cell.drawingRectForBounds(QRectF(1, 2, 3, 4)), QRectF(1, 2, 3, 4));
}

TEST(Cell, DrawsItsTitleWhereItsAlignmentSays) {
  const auto inkAt = [](TextAlignment alignment) {
    Canvas canvas({100, 20});
    Cell cell;
    cell.setTitle(u"H"_s);
    cell.setFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
    cell.setAlignment(alignment);
    cell.drawWithFrame({0, 0, 100, 20}, nullptr);
    return inkBounds(canvas.finished());
  };
  EXPECT_LT(inkAt(TextAlignment::Left).right(), 15);
  EXPECT_GT(inkAt(TextAlignment::Right).left(), 85);
  const QRect middle = inkAt(TextAlignment::Center);
  EXPECT_NEAR((middle.left() + middle.right()) / 2.0, 49.5, 1.5);
}

TEST(Cell, DrawsNothingOfALongTitleOutsideItsFrame) {
  Canvas canvas({100, 40});
  Cell cell;
  cell.setTitle(u"A title that is much longer than its cell"_s);
  cell.drawWithFrame({20, 10, 40, 20}, nullptr);
  const QRect ink = inkBounds(canvas.finished());
  EXPECT_FALSE(ink.isEmpty());
  EXPECT_TRUE(QRect(20, 10, 40, 20).contains(ink));
}

TEST(Cell, HasItsViewDrawnWhereTheHighlightChanges) {
  FakeView view;
  Cell cell;
  cell.highlight(true, view.bounds(), &view);
  cell.highlight(true, view.bounds(), &view);
  EXPECT_TRUE(cell.isHighlighted());
  EXPECT_EQ(view.log, QStringList{u"display"_s});
  cell.highlight(false, view.bounds(), nullptr);
  EXPECT_FALSE(cell.isHighlighted());
}

TEST(Cell, CopiesWhatItShowsButNotItsView) {
  FakeView view;
  const auto cell = std::make_shared<ButtonCell>(u"One"_s);
  cell->setControlView(&view);
  cell->setBezelStyle(6);
  cell->setTag(4);
  const Ref<ButtonCell> copy = copyOf(cell);
  ASSERT_TRUE(copy);
  EXPECT_NE(copy, cell);
  EXPECT_EQ(copy->title(), u"One"_s);
  EXPECT_EQ(copy->bezelStyle(), 6);
  EXPECT_EQ(copy->tag(), 4);
  EXPECT_EQ(copy->controlView(), nullptr);
}

TEST(Cell, BearsAHighlightThatDestroysItsView) {
  class FragileCell : public Cell {
   public:
    void setHighlighted(bool highlighted) override {
      Cell::setHighlighted(highlighted);
      view.reset();
    }
    std::unique_ptr<FakeView> view = std::make_unique<FakeView>();
  } cell;
  cell.highlight(true, cell.view->bounds(), cell.view.get());
  EXPECT_TRUE(cell.isHighlighted());
  EXPECT_EQ(cell.view, nullptr);
}
