// Who has the pointer: rectangles entered and left, and what takes the pointer away.
#include "tests/platform/controls/ButtonProbe.h"
#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtWidgets/QMenu>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

const QStringList entered{u"entered"_s};
const QStringList exited{u"exited"_s};
const QStringList nothing;

class ButtonPointerTest : public ::testing::Test, public ButtonWindow {
 protected:
  ButtonPointerTest() { tag = button->addTrackingRect(button->bounds(), false); }

  void turn() {
    QCoreApplication::processEvents();
    settle();
  }
  // The real pointer, and with it what the window system says about it.
  void put(double x, double y) {
    QCursor::setPos(button->mapToGlobal(QPointF(x, y)).toPoint());
    turn();
  }

  Button::TrackingRectTag tag;
};

} // namespace

TEST_F(ButtonPointerTest, TellsEntriesAndLeaves) {
  enter(5, 5);
  EXPECT_EQ(takeLog(), entered);
  move(6, 5);
  EXPECT_EQ(takeLog(), nothing);
  leave();
  EXPECT_EQ(takeLog(), exited);
}

TEST_F(ButtonPointerTest, TellsThoseOfARectangleInsideByMovements) {
  button->removeTrackingRect(tag);
  tag = button->addTrackingRect({50, 0, 10, 22}, false);
  enter(5, 5);
  EXPECT_EQ(takeLog(), nothing);
  move(55, 5);
  EXPECT_EQ(takeLog(), entered);
  move(65, 5);
  EXPECT_EQ(takeLog(), exited);
}

TEST_F(ButtonPointerTest, TellsTheRealPointersToo) {
  put(5, 5);
  EXPECT_EQ(takeLog(), entered);
  put(150, 60);
  EXPECT_EQ(takeLog(), exited);
}

TEST_F(ButtonPointerTest, TellsAfterAPressWhatChangedDuringIt) {
  enter(5, 5);
  takeLog();
  press();
  drag(50, 40);
  EXPECT_EQ(takeLog(), nothing);
  release(50, 40);
  EXPECT_EQ(takeLog(), exited);
}

TEST_F(ButtonPointerTest, TellsAfterAPressOfAVisitDuringIt) {
  // Not entered so far: the rectangle is newer than the pointer's last movement.
  press();
  drag(50, 10);
  leave();
  release(50, 40);
  EXPECT_EQ(takeLog(), (QStringList{u"entered"_s, u"exited"_s}));
}

TEST_F(ButtonPointerTest, TellsNothingAfterAPressThatEndsWhereItBegan) {
  enter(5, 5);
  takeLog();
  press();
  drag(50, 40);
  drag(50, 10);
  release(50, 10);
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});
}

TEST_F(ButtonPointerTest, IsLeftWhenTheWindowLosesTheFocus) {
  enter(5, 5);
  takeLog();
  tell(button, QEvent::WindowDeactivate);
  EXPECT_EQ(takeLog(), exited);
  move(6, 5);
  EXPECT_EQ(takeLog(), entered);
}

TEST_F(ButtonPointerTest, IsEnteredWhenTheWindowComesBackUnderThePointer) {
  put(5, 5);
  takeLog();
  tell(button, QEvent::WindowDeactivate);
  EXPECT_EQ(takeLog(), exited);
  tell(button, QEvent::WindowActivate);
  EXPECT_EQ(takeLog(), entered);
}

TEST_F(ButtonPointerTest, IsLeftWhenAnotherWidgetTakesTheMouse) {
  put(5, 5);
  EXPECT_EQ(takeLog(), entered);
  QWidget other;
  other.setGeometry(400, 400, 10, 10);
  other.show();
  other.grabMouse();
  turn();
  EXPECT_EQ(takeLog(), exited);
  other.releaseMouse();
  turn();
  EXPECT_EQ(takeLog(), entered);
}

TEST_F(ButtonPointerTest, IsLeftWhileAMenuIsOpenAndFollowsThePointerAfterwards) {
  put(5, 5);
  EXPECT_EQ(takeLog(), entered);
  QMenu menu;
  menu.addAction(u"Item"_s);
  menu.popup(QPoint(400, 300));
  turn();
  EXPECT_EQ(takeLog(), exited);
  menu.close();
  turn();
  EXPECT_EQ(takeLog(), entered);
  menu.popup(QPoint(400, 300));
  turn();
  takeLog();
  QCursor::setPos(10, 400);
  menu.close();
  turn();
  EXPECT_EQ(takeLog(), nothing);
}

TEST_F(ButtonPointerTest, IsLeftWhenItsOwnMenuHasClosedElsewhere) {
  // The pointer was told to be inside, and nobody tells that it is not.
  enter(5, 5);
  auto owned = std::make_unique<QMenu>();
  QMenu* menu = owned.get();
  menu->addAction(u"Item"_s);
  button->cell()->setMenu(Menu::make(std::move(owned)));
  button->showMenu();
  ASSERT_TRUE(menu->isVisible());
  menu->close();
  turn();
  EXPECT_EQ(takeLog(), (QStringList{u"entered"_s, u"exited"_s}));
}

TEST_F(ButtonPointerTest, IsLeftWhenItIsHiddenOrItsWindowBlocked) {
  enter(5, 5);
  takeLog();
  button->hide();
  settle();
  EXPECT_EQ(takeLog(), exited);
  button->show();
  enter(5, 5);
  takeLog();
  tell(window.get(), QEvent::WindowBlocked);
  EXPECT_EQ(takeLog(), exited);
  put(5, 5);
  takeLog();
  tell(window.get(), QEvent::WindowBlocked);
  takeLog();
  tell(window.get(), QEvent::WindowUnblocked);
  EXPECT_EQ(takeLog(), entered);
}

TEST_F(ButtonPointerTest, IsStillInsideWhenItIsDisabledAndEnabledAgain) {
  enter(5, 5);
  takeLog();
  button->setEnabled(false);
  button->setEnabled(true);
  move(6, 5);
  EXPECT_EQ(takeLog(), nothing);
  leave();
  EXPECT_EQ(takeLog(), exited);
}

TEST_F(ButtonPointerTest, TellsOfMovementsOverADisabledButton) {
  button->setEnabled(false);
  move(5, 5);
  EXPECT_EQ(takeLog(), entered);
  release(50, 40);
  EXPECT_EQ(takeLog(), exited);
}

TEST_F(ButtonPointerTest, TellsNothingWithoutRectangles) {
  button->removeTrackingRect(tag);
  enter(5, 5);
  move(6, 6);
  leave();
  EXPECT_EQ(takeLog(), nothing);
}

TEST_F(ButtonPointerTest, MayBeDestroyedWhenTheRealPointerComesAndGoes) {
  // The toolkit goes on with a widget that it has told.
  for (const bool isEntry : {true, false}) {
    const QPointer<ProbeButton> fragile = new ProbeButton(window.get());
    (isEntry ? fragile->whenEntered : fragile->whenExited) = [&] { delete fragile; };
    fragile->setGeometry(20, 50, 100, 22);
    fragile->addTrackingRect(fragile->bounds(), false);
    fragile->show();
    put(5, 45);
    EXPECT_EQ(bool(fragile), !isEntry);
    put(5, 85);
    EXPECT_FALSE(fragile);
  }
}

TEST_F(ButtonPointerTest, MayLoseItsWindowWhenTheRealPointerComes) {
  button->whenEntered = [this] { window.reset(); };
  put(5, 5);
  EXPECT_FALSE(window);
}

TEST_F(ButtonPointerTest, MayLoseItsWindowByThePressThatHidingEnds) {
  QObject::connect(button, &QAbstractButton::released, [this] { window.reset(); });
  press();
  window->hide();
  turn();
  EXPECT_FALSE(window);
}

TEST_F(ButtonPointerTest, KeepsTheOrderAmongNeighbours) {
  auto* const neighbour = new ProbeButton(window.get());
  neighbour->setGeometry(20, 50, 100, 22);
  neighbour->addTrackingRect(neighbour->bounds(), false);
  neighbour->show();
  put(5, 5);
  QStringList order;
  button->whenExited = [&] { order.append(u"left"_s); };
  neighbour->whenEntered = [&] { order.append(u"came"_s); };
  put(5, 45);
  EXPECT_EQ(order, (QStringList{u"left"_s, u"came"_s}));
}

TEST_F(ButtonPointerTest, HearsOfNeighboursWithinALoopThatAnEntryRuns) {
  auto* const neighbour = new ProbeButton(window.get());
  neighbour->setGeometry(20, 50, 100, 22);
  neighbour->addTrackingRect(neighbour->bounds(), false);
  neighbour->show();
  put(5, 5);
  takeLog();
  // Both wait: the leave of the one, the entry of the other.
  bool hasCome = false;
  button->whenExited = [&] {
    hasCome = waitFor([&] { return neighbour->log.contains(u"entered"_s); });
  };
  put(5, 45);
  EXPECT_TRUE(hasCome);
}

TEST_F(ButtonPointerTest, MayBeDestroyedByAnEntry) {
  class Fragile : public Button {
   public:
    using Button::Button;

   protected:
    void mouseEntered(const Event&) override { delete this; }
  };
  QPointer<Fragile> fragile = new Fragile(window.get());
  fragile->addTrackingRect({0, 0, 10, 10}, false);
  fragile->addTrackingRect({0, 0, 20, 20}, false);
  tell(fragile, QEvent::Leave);
  ASSERT_TRUE(fragile);
  fragile->setGeometry(0, 0, 20, 20);
  QMouseEvent moved(QEvent::MouseMove, QPointF(5, 5), fragile->mapToGlobal(QPointF(5, 5)),
                    Qt::NoButton, Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(fragile, &moved);
  EXPECT_FALSE(fragile);
}

TEST_F(ButtonPointerTest, LogsWhatAnEntryRaises) {
  expectLog(u"Error in the callback of a view: dark"_s);
  button->whenEntered = [] { throw Exception(u"dark"_s); };
  enter(5, 5);
  button->whenEntered = nullptr;
}
