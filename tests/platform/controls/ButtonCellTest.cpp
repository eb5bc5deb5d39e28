#include "zqticker/platform/controls/ButtonCell.h"

#include "tests/platform/controls/FakeView.h"
#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/Font.h"

#include <gtest/gtest.h>

#include <QtCore/QObject>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

TEST(ButtonCell, IsABorderedCentredPushButtonAtFirst) {
  const ButtonCell cell;
  EXPECT_EQ(cell.title(), u"Button"_s);
  EXPECT_EQ(cell.alternateTitle(), QString());
  EXPECT_EQ(cell.alignment(), TextAlignment::Center);
  EXPECT_EQ(cell.bezelStyle(), 1);
  EXPECT_TRUE(cell.isBordered());
  EXPECT_FALSE(cell.isTransparent());
  EXPECT_EQ(cell.highlightsBy(), 14u);
  EXPECT_EQ(cell.showsStateBy(), 0u);
  EXPECT_EQ(ButtonCell(u"Play"_s).title(), u"Play"_s);
}

TEST(ButtonCell, HighlightsAndShowsItsStateAsItsTypeAsks) {
  constexpr unsigned expected[][2] = {{12, 0}, {14, 12}, {3, 1},   {1, 1},
                                      {1, 1},  {1, 0},   {12, 12}, {14, 0}};
  for (std::size_t type = 0; type < std::size(expected); ++type) {
    ButtonCell cell;
    cell.setButtonType(ButtonType(type));
    EXPECT_EQ(cell.highlightsBy(), expected[type][0]) << "type " << type;
    EXPECT_EQ(cell.showsStateBy(), expected[type][1]) << "type " << type;
  }
}

TEST(ButtonCell, KeepsItsMasksForATypeWithoutKnownOnes) {
  ButtonCell cell;
  cell.setButtonType(ButtonType::OnOff);
  cell.setButtonType(ButtonType(std::uint64_t(-1)));
  EXPECT_EQ(cell.highlightsBy(), 12u);
  EXPECT_EQ(cell.showsStateBy(), 12u);
}

TEST(ButtonCell, KeepsAnyMaskOfKnownBits) {
  ButtonCell cell;
  for (unsigned mask = 0; mask < 16; ++mask) {
    cell.setHighlightsBy(mask);
    EXPECT_EQ(cell.highlightsBy(), mask);
    cell.setShowsStateBy(mask);
    EXPECT_EQ(cell.showsStateBy(), mask & ~unsigned(PushInCellMask));
    EXPECT_EQ(cell.highlightsBy(), mask);
  }
}

TEST(ButtonCell, ShowsTheAlternateTitleWhereTheMasksSaySo) {
  ButtonCell cell(u"Play"_s);
  cell.setAlternateTitle(u"Stop"_s);
  cell.setButtonType(ButtonType::OnOff);
  cell.setState(CellState::On);
  EXPECT_EQ(cell.shownTitle(), u"Play"_s);
  cell.setButtonType(ButtonType::Toggle);
  EXPECT_EQ(cell.shownTitle(), u"Stop"_s);
  cell.setState(CellState::Off);
  EXPECT_EQ(cell.shownTitle(), u"Play"_s);
  cell.setHighlighted(true);
  EXPECT_EQ(cell.shownTitle(), u"Stop"_s);
  cell.setAlternateTitle(QString());
  EXPECT_EQ(cell.shownTitle(), u"Play"_s);
}

TEST(ButtonCell, HasRoomForBothTitlesAtTheHeightOfItsControlSize) {
  ButtonCell cell(u"Play"_s);
  cell.setFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
  const double narrow = cell.cellSize().width();
  EXPECT_EQ(cell.cellSize().height(), 22);
  cell.setAlternateTitle(u"Something much longer"_s);
  EXPECT_GT(cell.cellSize().width(), narrow);
  cell.setControlSize(ControlSize::Small);
  EXPECT_EQ(cell.cellSize().height(), 19);
  cell.setControlSize(ControlSize::Mini);
  EXPECT_EQ(cell.cellSize().height(), 16);
}

TEST(ButtonCell, ChangesItsStateByClicksOfTypesThatShowIt) {
  for (int type = 0; type < 8; ++type) {
    ButtonCell cell;
    cell.setButtonType(ButtonType(type));
    EXPECT_EQ(cell.clickChangesState(nullptr), type != 0 && type != 5 && type != 7)
        << "type " << type;
  }
}

TEST(ButtonCell, SendsItsActionBeforeAClickChangesTheState) {
  FakeView view;
  const auto cell = std::make_shared<ButtonCell>();
  cell->setControlView(&view);
  cell->setButtonType(ButtonType::OnOff);
  cell->performClick(&view);
  EXPECT_EQ(view.log, (QStringList{u"action"_s, u"state 1"_s}));
}

TEST(ButtonCell, OutlivesItselfBeingDroppedByItsAction) {
  FakeView view;
  auto cell = std::make_shared<ButtonCell>();
  cell->setControlView(&view);
  cell->setButtonType(ButtonType::OnOff);
  view.whenSending = [&] { cell.reset(); };
  cell->performClick(&view);
  EXPECT_EQ(view.log, (QStringList{u"action"_s, u"state 1"_s}));
}

TEST(ButtonCell, LooksPressedWhileHighlightedByItsBackground) {
  const auto colorOf = [](bool highlighted, unsigned highlightsBy) {
    Canvas canvas({40, 20});
    ButtonCell cell((QString()));
    cell.setHighlightsBy(highlightsBy);
    cell.setHighlighted(highlighted);
    cell.drawWithFrame({0, 0, 40, 20}, nullptr);
    canvas.finished();
    return canvas.pixel(20, 10);
  };
  EXPECT_NE(colorOf(true, ChangeBackgroundCellMask), colorOf(false, ChangeBackgroundCellMask));
  EXPECT_EQ(colorOf(true, ContentsCellMask), colorOf(false, ContentsCellMask));
}

TEST(ButtonCell, DrawsNoBodyWithoutBorderAndNothingWhenTransparent) {
  ButtonCell cell(u"x"_s);
  cell.setBordered(false);
  EXPECT_FALSE(cell.isBordered());
  {
    Canvas canvas({40, 20});
    cell.drawWithFrame({0, 0, 40, 20}, nullptr);
    canvas.finished();
    EXPECT_EQ(canvas.pixel(1, 10), QColor(Qt::white));
    EXPECT_FALSE(inkBounds(canvas.image).isEmpty());
  }
  cell.setBordered(true);
  cell.setTransparent(true);
  Canvas canvas({40, 20});
  cell.drawWithFrame({0, 0, 40, 20}, nullptr);
  EXPECT_TRUE(inkBounds(canvas.finished()).isEmpty());
}
