// What a press does to a rollover button's cell.
#include "tests/rollover/RollOverView.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/controls/TrackingSession.h"
#include "zqticker/platform/graphics/Font.h"

#include <gtest/gtest.h>

#include <QtWidgets/QMenu>
#include <QtWidgets/QWidget>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;
using Result = TrackingSession::Result;

namespace {

// Writes down what it is asked, and answers as it is told.
class HookedCell : public ZQRollOverButtonCell {
 public:
  bool startTrackingAt(QPointF point, ControlView*) override {
    note(u"start %1,%2"_s.arg(point.x()).arg(point.y()));
    return starts;
  }
  bool continueTracking(QPointF last, QPointF at, ControlView*) override {
    note(u"continue %1 %2"_s.arg(last.x()).arg(at.x()));
    return continues;
  }
  void stopTracking(QPointF last, QPointF at, ControlView*, bool mouseIsUp) override {
    note(u"stop %1 %2 %3"_s.arg(last.x()).arg(at.x()).arg(mouseIsUp ? u"up"_s : u"down"_s));
  }
  void showMenuForEvent(const Event& event, ControlView*, const QRectF& cellFrame) override {
    note(u"menu %1 %2 of %3"_s.arg(int(event.type))
             .arg(event.locationInWindow.x())
             .arg(cellFrame.width()));
    if (whenShowing)
      whenShowing();
  }

  QStringList* log = nullptr;
  bool starts = true;
  bool continues = true;
  std::function<void()> whenShowing;

 private:
  void note(const QString& text) {
    if (log)
      log->append(text);
  }
};

class RollOverTracking : public ::testing::Test {
 protected:
  RollOverTracking()
      : view(std::make_unique<RollOverView>()), cell(std::make_shared<HookedCell>()) {
    cell->log = &view->log;
    cell->setControlView(view.get());
    cell->setAppearance(std::make_shared<ZQRollOverButtonAppearance>());
    cell->setFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
    cell->setZqBezelStyle(6);
    cell->setPopUpMenuDelay(0.5);
  }
  void setMenu() {
    cell->setMenu(Menu::make(&items));
    cell->calculateLayoutForFrame(view->bounds(), view.get());
  }
  std::shared_ptr<TrackingSession> press(double x, double y, bool untilMouseUp = false) {
    auto session =
        cell->makeTrackingSession(pressAt(x, y), view->bounds(), view.get(), untilMouseUp);
    session->start();
    return session;
  }
  // A press at (5, 5), which nothing comes of by itself.
  std::shared_ptr<TrackingSession> begin(bool untilMouseUp = false) {
    auto session = press(5, 5, untilMouseUp);
    EXPECT_EQ(session->result(), Result::Running);
    EXPECT_EQ(view->log, QStringList{u"start 15,37"_s});
    view->log.clear();
    return session;
  }

  QMenu items;
  std::unique_ptr<RollOverView> view;
  std::shared_ptr<HookedCell> cell;
};

} // namespace

TEST_F(RollOverTracking, ClicksWhereTheReleaseIsInside) {
  const auto session = begin();
  EXPECT_EQ(session->handleEvent(dragAt(6, 5)), Result::Running);
  EXPECT_TRUE(cell->mouseOver());
  EXPECT_EQ(session->handleEvent(releaseAt(7, 5)), Result::Yes);
  EXPECT_TRUE(cell->mouseOver());
  EXPECT_EQ(view->log, (QStringList{u"continue 15 16"_s, u"continue 16 17"_s, u"action"_s}));
  EXPECT_EQ(cell->state(), CellState::Off);
}

TEST_F(RollOverTracking, WithoutAMenuItNeverTimesOut) {
  const auto session = begin();
  EXPECT_EQ(session->secondsToDeadline(), std::nullopt);
}

TEST_F(RollOverTracking, EndsWithoutAClickWhenThePointerLeaves) {
  const auto session = begin();
  session->handleEvent(dragAt(6, 5));
  EXPECT_EQ(session->handleEvent(dragAt(120, 5)), Result::No);
  EXPECT_FALSE(cell->mouseOver());
  // Tracking is not told of it.
  EXPECT_EQ(view->log, (QStringList{u"continue 15 16"_s, u"continue 16 130"_s}));
}

TEST_F(RollOverTracking, AReleaseOutsideSendsNothingAndClearsTheMouseOverLook) {
  cell->setMouseOver(true);
  const auto session = begin();
  EXPECT_EQ(session->handleEvent(releaseAt(120, 5)), Result::No);
  EXPECT_FALSE(cell->mouseOver());
  EXPECT_EQ(view->log, QStringList{u"continue 15 130"_s});
}

TEST_F(RollOverTracking, AViewThatTracksNoMouseHasNoMouseOverLook) {
  view->tracks = false;
  cell->setMouseOver(true);
  const auto session = begin();
  EXPECT_EQ(session->handleEvent(dragAt(6, 5)), Result::Running);
  EXPECT_FALSE(cell->mouseOver());
  EXPECT_EQ(session->handleEvent(releaseAt(6, 5)), Result::Yes);
}

TEST_F(RollOverTracking, ChangesTheStateOfOnOffButtonsAfterTheAction) {
  for (std::uint64_t type = 0; type < 8; ++type) {
    view->type = ButtonType(type);
    // The cell's own masks are not asked.
    cell->setButtonType(ButtonType::Toggle);
    cell->setState(CellState::Off);
    view->log.clear();
    begin()->handleEvent(releaseAt(5, 5));
    QStringList expected{u"continue 15 15"_s, u"action"_s};
    if (type == 6)
      expected.append(u"state 1"_s);
    EXPECT_EQ(view->log, expected) << type;
    view->log.clear();
  }
}

TEST_F(RollOverTracking, AContinuousCellSendsOnEveryPassAndNeverChangesItsState) {
  cell->setContinuous(true);
  view->type = ButtonType::OnOff;
  const auto session = begin();
  session->handleEvent(dragAt(6, 5));
  session->handleEvent(dragAt(7, 5));
  EXPECT_EQ(session->handleEvent(releaseAt(7, 5)), Result::Yes);
  EXPECT_EQ(view->log.count(u"action"_s), 3);
  EXPECT_EQ(cell->state(), CellState::Off);
}

TEST_F(RollOverTracking, AContinuousCellSendsAlsoOnThePassThatLeavesOrStops) {
  cell->setContinuous(true);
  EXPECT_EQ(begin()->handleEvent(dragAt(120, 5)), Result::No);
  EXPECT_EQ(view->log, (QStringList{u"continue 15 130"_s, u"action"_s}));
  view->log.clear();
  cell->continues = false;
  EXPECT_EQ(begin()->handleEvent(dragAt(6, 5)), Result::Yes);
  EXPECT_EQ(view->log, (QStringList{u"continue 15 16"_s, u"stop 15 16 down"_s, u"action"_s}));
}

TEST_F(RollOverTracking, ACellThatDoesNotStartIsAskedNothingAndSendsOnce) {
  cell->starts = false;
  const auto session = begin();
  session->handleEvent(dragAt(6, 5));
  EXPECT_EQ(session->handleEvent(releaseAt(7, 5)), Result::Yes);
  EXPECT_EQ(view->log, QStringList{u"action"_s});
  view->log.clear();
  cell->setContinuous(true);
  EXPECT_EQ(begin()->handleEvent(releaseAt(7, 5)), Result::Yes);
  EXPECT_EQ(view->log, QStringList());
}

TEST_F(RollOverTracking, StoppingInsideIsAClick) {
  cell->continues = false;
  const auto session = begin();
  EXPECT_EQ(session->handleEvent(dragAt(6, 5)), Result::Yes);
  EXPECT_EQ(view->log, (QStringList{u"continue 15 16"_s, u"stop 15 16 down"_s, u"action"_s}));
}

TEST_F(RollOverTracking, StoppingOutsideIsNone) {
  cell->continues = false;
  EXPECT_EQ(begin()->handleEvent(dragAt(120, 5)), Result::No);
  EXPECT_EQ(view->log, (QStringList{u"continue 15 130"_s, u"stop 15 130 down"_s}));
}

// Whoever tells the truth about the button must change this.
TEST_F(RollOverTracking, AStopByTheReleaseIsNotSaidToBeUp) {
  cell->continues = false;
  EXPECT_EQ(begin()->handleEvent(releaseAt(6, 5)), Result::Yes);
  EXPECT_EQ(view->log, (QStringList{u"continue 15 16"_s, u"stop 15 16 down"_s, u"action"_s}));
}

TEST_F(RollOverTracking, UntilMouseUpTheReleaseIsAClickWhereverItIs) {
  cell->setMouseOver(true);
  const auto session = begin(true);
  EXPECT_EQ(session->handleEvent(dragAt(120, 5)), Result::Running);
  // Nobody touches the mouse-over look then.
  EXPECT_TRUE(cell->mouseOver());
  EXPECT_EQ(session->handleEvent(releaseAt(130, 5)), Result::Yes);
  EXPECT_TRUE(cell->mouseOver());
  EXPECT_EQ(view->log, (QStringList{u"continue 15 130"_s, u"continue 130 140"_s, u"action"_s}));
}

TEST_F(RollOverTracking, UntilMouseUpAStopOnADragIsNoClick) {
  cell->continues = false;
  EXPECT_EQ(begin(true)->handleEvent(dragAt(6, 5)), Result::No);
  EXPECT_EQ(view->log, (QStringList{u"continue 15 16"_s, u"stop 15 16 down"_s}));
  view->log.clear();
  EXPECT_EQ(begin(true)->handleEvent(releaseAt(6, 5)), Result::Yes);
  EXPECT_EQ(view->log.last(), u"action"_s);
}

TEST_F(RollOverTracking, UntilMouseUpTheStateChangesAsWell) {
  view->type = ButtonType::OnOff;
  EXPECT_EQ(begin(true)->handleEvent(releaseAt(130, 5)), Result::Yes);
  EXPECT_EQ(cell->state(), CellState::On);
}

// Menus.

TEST_F(RollOverTracking, AHeldPressShowsTheMenuOfThePress) {
  setMenu();
  const auto session = begin();
  EXPECT_EQ(session->secondsToDeadline(), 0.5);
  session->handleEvent(dragAt(8, 5));
  view->log.clear();
  EXPECT_EQ(session->reachDeadline(), Result::Yes);
  EXPECT_EQ(view->log, QStringList{u"menu 1 15 of 100"_s});
}

TEST_F(RollOverTracking, EveryDragRestartsTheWaitByWhatTheDelayIsThen) {
  setMenu();
  const auto session = begin();
  session->handleEvent(dragAt(8, 5));
  EXPECT_EQ(session->secondsToDeadline(), 0.5);
  cell->setPopUpMenuDelay(2);
  EXPECT_EQ(session->secondsToDeadline(), 2);
  cell->setMenu(nullptr);
  EXPECT_EQ(session->secondsToDeadline(), std::nullopt);
}

TEST_F(RollOverTracking, WithoutADelayTheMenuShowsAtOnce) {
  setMenu();
  cell->setPopUpMenuDelay(0);
  EXPECT_EQ(begin()->secondsToDeadline(), 0);
}

TEST_F(RollOverTracking, ACellWithAMenuIsClickedByAShortPress) {
  setMenu();
  EXPECT_EQ(begin()->handleEvent(releaseAt(5, 5)), Result::Yes);
  EXPECT_EQ(view->log, (QStringList{u"continue 15 15"_s, u"action"_s}));
}

TEST_F(RollOverTracking, APressToTheRightOfTheTitleShowsTheMenuAtOnce) {
  setMenu();
  view->type = ButtonType::OnOff;
  const double edge = cell->textRect().right();
  const auto session = press(edge, 5);
  EXPECT_EQ(session->result(), Result::Yes);
  EXPECT_EQ(view->log,
            (QStringList{u"menu 1 %1 of 100"_s.arg(edge + 10), u"start %1,37"_s.arg(edge + 10)}));
  EXPECT_EQ(session->handleEvent(releaseAt(edge, 5)), Result::Yes);
  EXPECT_EQ(view->log.count(u"action"_s), 0);
  EXPECT_EQ(cell->state(), CellState::Off);
}

TEST_F(RollOverTracking, APressOnTheTitleWaits) {
  setMenu();
  EXPECT_EQ(press(cell->textRect().right() - 0.25, 5)->result(), Result::Running);
}

TEST_F(RollOverTracking, WithoutAMenuThereIsNoArrowToPress) {
  cell->calculateLayoutForFrame(view->bounds(), view.get());
  EXPECT_EQ(press(99, 5)->result(), Result::Running);
}

TEST_F(RollOverTracking, PopsTheMenuUpBelowTheFramesOrigin) {
  // The windows of the test platform can do less than others.
  allowLog(u"This plugin does not support"_s);
  QWidget widget;
  widget.resize(120, 62);
  widget.move(100, 100);
  widget.show();
  view->shown = &widget;
  items.addAction(u"One"_s);
  setMenu();
  Event event = pressAt(95, 5);
  cell->ZQRollOverButtonCell::showMenuForEvent(event, view.get(), {0, 0, 100, 22});
  ASSERT_TRUE(items.isVisible());
  // (10, 42) + (1, −5.5) of the window is 25.5 points below its upper edge.
  EXPECT_EQ(items.pos(), widget.mapToGlobal(QPointF(11, 25.5)).toPoint());
  items.close();
  view->shown = nullptr;
}

TEST_F(RollOverTracking, ShowsNoMenuWithoutOneOrWithoutAView) {
  cell->ZQRollOverButtonCell::showMenuForEvent(pressAt(5, 5), view.get(), {0, 0, 100, 22});
  setMenu();
  cell->ZQRollOverButtonCell::showMenuForEvent(pressAt(5, 5), nullptr, {0, 0, 100, 22});
  EXPECT_FALSE(items.isVisible());
}

// Destruction on the way.

TEST_F(RollOverTracking, EndsQuietlyWhenTheActionDestroysTheView) {
  view->type = ButtonType::OnOff;
  const auto session = begin();
  cell->log = nullptr;
  view->whenSending = [&] { view.reset(); };
  EXPECT_EQ(session->handleEvent(releaseAt(5, 5)), Result::No);
  EXPECT_FALSE(view);
  EXPECT_EQ(cell->state(), CellState::Off);
}

TEST_F(RollOverTracking, EndsQuietlyWhenAContinuousActionDestroysTheView) {
  cell->setContinuous(true);
  const auto session = begin();
  cell->log = nullptr;
  view->whenSending = [&] { view.reset(); };
  EXPECT_EQ(session->handleEvent(dragAt(5, 5)), Result::No);
}

TEST_F(RollOverTracking, EndsQuietlyWhenTheMenuDestroysTheView) {
  setMenu();
  cell->log = nullptr;
  cell->whenShowing = [&] { view.reset(); };
  const auto session = cell->makeTrackingSession(pressAt(95, 5), view->bounds(), view.get(), false);
  EXPECT_EQ(session->start(), Result::No);
}

TEST_F(RollOverTracking, ATrackingWithoutAViewIsOverAtOnce) {
  const auto session = cell->makeTrackingSession(pressAt(5, 5), {0, 0, 100, 22}, nullptr, false);
  EXPECT_EQ(session->start(), Result::No);
  EXPECT_TRUE(view->log.isEmpty());
}

TEST_F(RollOverTracking, APressByOtherMeansDoesWhatAClickDoes) {
  view->type = ButtonType::OnOff;
  cell->performClick(view.get());
  EXPECT_EQ(view->log, (QStringList{u"action"_s, u"state 1"_s}));
  EXPECT_FALSE(cell->clickChangesState(nullptr));
}
