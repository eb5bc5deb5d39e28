#include "zqticker/platform/controls/TrackingSession.h"

#include "tests/platform/controls/FakeView.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/Menu.h"

#include <gtest/gtest.h>

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <functional>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;
using Result = TrackingSession::Result;

namespace {

// Writes down what its hooks are asked, and answers as it is told.
class HookedCell : public ButtonCell {
 public:
  bool startTrackingAt(QPointF point, ControlView*) override {
    log->append(u"start %1,%2"_s.arg(point.x()).arg(point.y()));
    return starts;
  }
  bool continueTracking(QPointF last, QPointF at, ControlView*) override {
    log->append(u"continue %1 %2"_s.arg(last.x()).arg(at.x()));
    return continues;
  }
  void stopTracking(QPointF last, QPointF at, ControlView*, bool mouseIsUp) override {
    log->append(u"stop %1 %2 %3"_s.arg(last.x()).arg(at.x()).arg(mouseIsUp ? u"up"_s : u"down"_s));
  }
  QStringList* log = nullptr;
  bool starts = true;
  bool continues = true;
};

class CellTrackingTest : public ::testing::Test {
 protected:
  CellTrackingTest() : cell(std::make_shared<HookedCell>()) {
    cell->log = &view.log;
    cell->setControlView(&view);
  }
  std::shared_ptr<TrackingSession> begin(bool untilMouseUp = false) {
    auto session = cell->makeTrackingSession(pressAt(5, 5), view.bounds(), &view, untilMouseUp);
    EXPECT_EQ(session->start(), Result::Running);
    EXPECT_EQ(view.log, QStringList{u"start 15,37"_s});
    view.log.clear();
    return session;
  }

  FakeView view;
  std::shared_ptr<HookedCell> cell;
};

// A machine whose every step is written down and answered as told.
class Machine : public TrackingSession {
 public:
  using TrackingSession::isInside;
  using TrackingSession::TrackingSession;
  QStringList log;
  Result answer = Result::Running;
  std::optional<double> delay;
  std::function<void()> inside;

 protected:
  Result begin() override { return step(u"begin"_s); }
  Result pass(const Event& event) override { return step(u"pass %1"_s.arg(int(event.type))); }
  Result deadlineReached() override { return step(u"deadline"_s); }
  std::optional<double> delaySeconds() const override { return delay; }

 private:
  Result step(const QString& name) {
    log.append(name);
    if (const auto perform = std::exchange(inside, nullptr))
      perform();
    return answer;
  }
};

std::shared_ptr<Machine> machineIn(FakeView& view) {
  return std::make_shared<Machine>(std::make_shared<ButtonCell>(), pressAt(5, 5), view.bounds(),
                                   &view, false);
}

} // namespace

TEST(TrackingSession, IgnoresEventsBeforeItsStartAndAfterItsEnd) {
  FakeView view;
  const auto machine = machineIn(view);
  machine->handleEvent(dragAt(6, 6));
  machine->reachDeadline();
  EXPECT_TRUE(machine->log.isEmpty());
  machine->start();
  machine->start();
  machine->answer = Result::Yes;
  EXPECT_EQ(machine->handleEvent(releaseAt(6, 6)), Result::Yes);
  EXPECT_EQ(machine->handleEvent(releaseAt(6, 6)), Result::Yes);
  machine->reachDeadline();
  machine->cancel();
  EXPECT_EQ(machine->result(), Result::Yes);
  EXPECT_EQ(machine->log, (QStringList{u"begin"_s, u"pass 2"_s}));
}

TEST(TrackingSession, TakesReleasesAndDragsOfTheLeftButtonOnly) {
  FakeView view;
  const auto machine = machineIn(view);
  machine->start();
  for (int type = 1; type <= 9; ++type)
    machine->handleEvent(eventAt(EventType(type), 5, 5));
  EXPECT_EQ(machine->log, (QStringList{u"begin"_s, u"pass 2"_s, u"pass 6"_s}));
}

TEST(TrackingSession, MayEndAtItsStart) {
  FakeView view;
  const auto machine = machineIn(view);
  machine->answer = Result::Yes;
  EXPECT_EQ(machine->start(), Result::Yes);
}

TEST(TrackingSession, AsksForItsDeadlineAnewBeforeEachWait) {
  FakeView view;
  const auto machine = machineIn(view);
  machine->start();
  EXPECT_EQ(machine->secondsToDeadline(), std::nullopt);
  machine->delay = 0.5;
  EXPECT_EQ(machine->secondsToDeadline(), 0.5);
  machine->delay = -1;
  EXPECT_EQ(machine->secondsToDeadline(), 0);
  machine->delay = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(machine->secondsToDeadline(), 0);
  machine->answer = Result::Yes;
  EXPECT_EQ(machine->reachDeadline(), Result::Yes);
}

TEST(TrackingSession, EndsWithNoWhenItsViewGoesInAStep) {
  auto view = std::make_unique<FakeView>();
  const auto machine = machineIn(*view);
  machine->start();
  machine->answer = Result::Yes;
  machine->inside = [&] { view.reset(); };
  EXPECT_EQ(machine->handleEvent(releaseAt(5, 5)), Result::No);
  EXPECT_FALSE(machine->isInside(releaseAt(5, 5)));
}

TEST(TrackingSession, EndsWithNoWhenItIsCancelledInAStep) {
  FakeView view;
  const auto machine = machineIn(view);
  machine->start();
  machine->answer = Result::Yes;
  machine->inside = [&] { machine->cancel(); };
  EXPECT_EQ(machine->handleEvent(dragAt(5, 5)), Result::No);
}

TEST(TrackingSession, LetsEventsOfAnInnerLoopWaitTheirTurn) {
  FakeView view;
  const auto machine = machineIn(view);
  machine->start();
  machine->inside = [&] {
    machine->handleEvent(releaseAt(5, 5));
    machine->reachDeadline();
    machine->log.append(u"inner end"_s);
  };
  machine->handleEvent(dragAt(5, 5));
  EXPECT_EQ(machine->log, (QStringList{u"begin"_s, u"pass 6"_s, u"inner end"_s, u"pass 2"_s}));
}

TEST(TrackingSession, EndsWithNoWhenAStepRaises) {
  FakeView view;
  const auto machine = machineIn(view);
  machine->start();
  machine->inside = [] { throw Exception(u"no"_s); };
  EXPECT_THROW(machine->handleEvent(dragAt(5, 5)), Exception);
  EXPECT_EQ(machine->result(), Result::No);
}

TEST(TrackingSession, CountsTheNearEdgesAsInsideAndTheFarOnesNot) {
  FakeView view;
  const auto machine = machineIn(view);
  EXPECT_TRUE(machine->isInside(dragAt(0, 0)));
  EXPECT_TRUE(machine->isInside(dragAt(99.5, 21.5)));
  EXPECT_FALSE(machine->isInside(dragAt(100, 5)));
  EXPECT_FALSE(machine->isInside(dragAt(5, 22)));
  EXPECT_FALSE(machine->isInside(dragAt(-0.5, 5)));
}

TEST_F(CellTrackingTest, ClicksWhereTheReleaseIsInside) {
  const auto session = begin();
  EXPECT_EQ(session->handleEvent(dragAt(6, 5)), Result::Running);
  EXPECT_EQ(session->handleEvent(releaseAt(7, 5)), Result::Yes);
  EXPECT_EQ(view.log, (QStringList{u"continue 15 16"_s, u"continue 16 17"_s, u"stop 16 17 up"_s,
                                   u"action"_s}));
  EXPECT_EQ(session->secondsToDeadline(), std::nullopt);
}

TEST_F(CellTrackingTest, EndsWithoutAClickWhenThePointerLeaves) {
  const auto session = begin();
  EXPECT_EQ(session->handleEvent(dragAt(120, 5)), Result::No);
  EXPECT_EQ(view.log, (QStringList{u"continue 15 130"_s, u"stop 15 130 down"_s}));
}

TEST_F(CellTrackingTest, ClicksWhereverTheReleaseIsUntilMouseUp) {
  const auto session = begin(true);
  EXPECT_EQ(session->handleEvent(dragAt(120, 5)), Result::Running);
  EXPECT_EQ(session->handleEvent(releaseAt(130, 5)), Result::Yes);
  EXPECT_EQ(view.log.last(), u"action"_s);
}

TEST_F(CellTrackingTest, EndsWhereTheCellDoesNotContinue) {
  cell->continues = false;
  const auto session = begin();
  EXPECT_EQ(session->handleEvent(dragAt(6, 5)), Result::Yes);
  EXPECT_EQ(view.log, (QStringList{u"continue 15 16"_s, u"stop 15 16 down"_s, u"action"_s}));
  view.log.clear();
  const auto untilUp = begin(true);
  EXPECT_EQ(untilUp->handleEvent(dragAt(6, 5)), Result::No);
  EXPECT_EQ(view.log, (QStringList{u"continue 15 16"_s, u"stop 15 16 down"_s}));
}

TEST_F(CellTrackingTest, SendsTheActionOfAContinuousCellOnEveryPass) {
  cell->setContinuous(true);
  cell->setButtonType(ButtonType::OnOff);
  const auto session = begin();
  session->handleEvent(dragAt(6, 5));
  session->handleEvent(dragAt(7, 5));
  EXPECT_EQ(session->handleEvent(releaseAt(7, 5)), Result::Yes);
  EXPECT_EQ(view.log.count(u"action"_s), 3);
  EXPECT_EQ(view.log.last(), u"state 1"_s);
}

TEST_F(CellTrackingTest, AsksNothingOfACellThatDoesNotStart) {
  cell->starts = false;
  const auto session = begin();
  session->handleEvent(dragAt(6, 5));
  EXPECT_EQ(session->handleEvent(releaseAt(7, 5)), Result::Yes);
  EXPECT_EQ(view.log, QStringList{u"action"_s});
}

TEST_F(CellTrackingTest, ChangesTheStateOfATypeThatShowsIt) {
  cell->setButtonType(ButtonType::Switch);
  const auto session = begin();
  session->handleEvent(releaseAt(7, 5));
  EXPECT_EQ(cell->state(), CellState::On);
}

TEST(CellTracking, AnswersYesToTrackingByDefault) {
  ButtonCell cell;
  EXPECT_TRUE(cell.startTrackingAt({1, 2}, nullptr));
  EXPECT_TRUE(cell.continueTracking({1, 2}, {3, 4}, nullptr));
}

TEST(CellTracking, EndsQuietlyWhenTheActionDestroysTheView) {
  auto view = std::make_unique<FakeView>();
  const auto cell = std::make_shared<ButtonCell>();
  cell->setButtonType(ButtonType::OnOff);
  const auto session = cell->makeTrackingSession(pressAt(5, 5), view->bounds(), view.get(), false);
  session->start();
  view->whenSending = [&] { view.reset(); };
  EXPECT_EQ(session->handleEvent(releaseAt(5, 5)), Result::No);
  EXPECT_FALSE(view);
}

TEST(CellTracking, KeepsItsCellAlive) {
  FakeView view;
  auto cell = std::make_shared<ButtonCell>();
  const auto session = cell->makeTrackingSession(pressAt(5, 5), view.bounds(), &view, false);
  cell.reset();
  session->start();
  EXPECT_EQ(session->handleEvent(releaseAt(5, 5)), Result::Yes);
}

// Tracking in a loop of its own.

namespace {

class TrackMouseTest : public ::testing::Test {
 protected:
  TrackMouseTest() : cell(std::make_shared<ButtonCell>()) {
    widget = std::make_unique<QWidget>();
    widget->resize(120, 62);
    view.shown = widget.get();
  }
  // Has the left button do something at a point of the view once the loop runs.
  void later(QEvent::Type type, double x, double y) {
    QTimer::singleShot(0, widget.get(), [this, type, x, y] { send(type, x, y); });
  }
  void send(QEvent::Type type, double x, double y) {
    const QPointF window = view.convertPointToWindow({x, y});
    const QPointF local(window.x(), widget->height() - window.y());
    QMouseEvent event(type, local, widget->mapToGlobal(local), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(widget.get(), &event);
  }
  bool track() { return cell->trackMouse(pressAt(5, 5), view.bounds(), &view, false); }

  FakeView view;
  std::shared_ptr<ButtonCell> cell;
  std::unique_ptr<QWidget> widget;
};

} // namespace

TEST_F(TrackMouseTest, WaitsForTheRelease) {
  later(QEvent::MouseMove, 8, 5);
  later(QEvent::MouseButtonRelease, 8, 5);
  EXPECT_TRUE(track());
  EXPECT_EQ(view.log, QStringList{u"action"_s});
}

TEST_F(TrackMouseTest, ReturnsWhenThePointerLeaves) {
  later(QEvent::MouseMove, 8, 30);
  EXPECT_FALSE(track());
  EXPECT_EQ(view.log, QStringList());
}

TEST_F(TrackMouseTest, ReturnsWhenTheWidgetGoes) {
  QTimer::singleShot(0, [this] {
    view.shown = nullptr;
    widget.reset();
  });
  EXPECT_FALSE(track());
}

TEST_F(TrackMouseTest, PassesOnWhatAnActionRaises) {
  later(QEvent::MouseButtonRelease, 8, 5);
  view.whenSending = [] { throw Exception(u"no"_s); };
  EXPECT_THROW(track(), Exception);
}

TEST_F(TrackMouseTest, EndsAtTheDeadline) {
  class Held : public ButtonCell {
   public:
    std::shared_ptr<TrackingSession> makeTrackingSession(const Event& event, const QRectF& inRect,
                                                         ControlView* ofView, bool) override {
      auto machine = std::make_shared<Machine>(std::static_pointer_cast<Cell>(shared_from_this()),
                                               event, inRect, ofView, false);
      machine->delay = 0.001;
      machine->inside = [raw = machine.get()] {
        raw->inside = [raw] { raw->answer = Result::Yes; };
      };
      return machine;
    }
  };
  cell = std::make_shared<Held>();
  EXPECT_TRUE(track());
}

TEST_F(TrackMouseTest, IsOverAtOnceWithoutAWidget) {
  view.shown = nullptr;
  EXPECT_FALSE(track());
}
