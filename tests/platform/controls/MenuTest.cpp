#include "zqticker/platform/controls/Menu.h"

#include "tests/platform/controls/FakeView.h"
#include "tests/support/LogWatch.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

class ListeningView : public FakeView {
 public:
  void menuDidOpen(Menu&) override { log.append(u"open"_s); }
  void menuDidClose(Menu&) override {
    log.append(u"closed"_s);
    if (const auto perform = whenClosed)
      perform();
  }
  std::function<void()> whenClosed;
};

class MenuTest : public ::testing::Test {
 protected:
  MenuTest() : window(std::make_unique<QWidget>()), view(std::make_unique<ListeningView>()) {
    allowLog(u"This plugin does not support"_s);
    window->setGeometry(50, 60, 120, 62);
    window->show();
    view->shown = window.get();
    auto owned = std::make_unique<QMenu>();
    widget = owned.get();
    item = widget->addAction(u"Item"_s);
    QObject::connect(item, &QAction::triggered, [this] { ++fired; });
    menu = Menu::make(std::move(owned));
  }
  ~MenuTest() override {
    if (widget)
      widget->hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  bool popUp(EventType type = EventType::LeftMouseDown) {
    return Menu::popUpContextMenu(menu, eventAt(type, 0, 0), view.get());
  }
  // The left button over the middle of the item.
  void send(QEvent::Type type, Qt::MouseButton cause, Qt::MouseButtons held) {
    const QPointF local = widget->actionGeometry(item).center();
    QMouseEvent event(type, local, widget->mapToGlobal(local), cause, held, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
  }
  void press() { send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton); }
  void drag() { send(QEvent::MouseMove, Qt::NoButton, Qt::LeftButton); }
  void release() { send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton); }

  std::unique_ptr<QWidget> window;
  std::unique_ptr<ListeningView> view;
  QPointer<QMenu> widget;
  QAction* item;
  Ref<Menu> menu;
  int fired = 0;
};

} // namespace

TEST_F(MenuTest, OpensAtThePointAndReturnsAtOnce) {
  EXPECT_TRUE(popUp());
  EXPECT_TRUE(menu->isOpen());
  // The view's upper left corner lies at (10, 42) of the window, y upwards: 20 points below the top
  // of its 62.
  EXPECT_EQ(widget->pos(), window->mapToGlobal(QPoint(10, 20)));
  EXPECT_EQ(view->log, QStringList{u"open"_s});
  EXPECT_FALSE(popUp());
  EXPECT_EQ(view->log, QStringList{u"open"_s});
}

TEST_F(MenuTest, TellsItsClosingOnce) {
  popUp();
  widget->hide();
  widget->hide();
  EXPECT_FALSE(menu->isOpen());
  EXPECT_EQ(view->log, (QStringList{u"open"_s, u"closed"_s}));
  EXPECT_TRUE(popUp());
  EXPECT_EQ(view->log.last(), u"open"_s);
}

TEST_F(MenuTest, FiresNoItemByTheReleaseOfTheOpeningPress) {
  popUp();
  drag();
  drag();
  release();
  EXPECT_EQ(fired, 0);
  EXPECT_TRUE(menu->isOpen());
  press();
  release();
  EXPECT_EQ(fired, 1);
  EXPECT_FALSE(menu->isOpen());
}

TEST_F(MenuTest, FiresByTheFirstClickWhereTheOpeningReleaseWentElsewhere) {
  popUp(EventType::LeftMouseDragged);
  press();
  release();
  EXPECT_EQ(fired, 1);
}

TEST_F(MenuTest, FiresByAnyReleaseWhereNoButtonWasDown) {
  popUp(EventType::LeftMouseUp);
  drag();
  drag();
  release();
  EXPECT_EQ(fired, 1);
}

TEST_F(MenuTest, IsClosedWhenItIsDestroyed) {
  popUp();
  delete widget.data();
  EXPECT_EQ(view->log, (QStringList{u"open"_s, u"closed"_s}));
  EXPECT_EQ(menu->menu(), nullptr);
  EXPECT_FALSE(menu->isOpen());
  EXPECT_FALSE(popUp());
}

TEST_F(MenuTest, MayLoseItsViewAndItsWindowWhileItIsOpen) {
  popUp();
  view.reset();
  window.reset();
  widget->hide();
  EXPECT_FALSE(menu->isOpen());
}

TEST_F(MenuTest, StaysUntilItIsClosedWhenNobodyHoldsItAnyMore) {
  popUp();
  menu.reset();
  ASSERT_TRUE(widget);
  widget->hide();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_FALSE(widget);
}

TEST_F(MenuTest, MayBeDroppedByItsClosing) {
  popUp();
  view->whenClosed = [this] {
    menu.reset();
    view.reset();
  };
  widget->hide();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_FALSE(widget);
}

TEST_F(MenuTest, DoesNotOpenWithoutMenuViewOrWidget) {
  EXPECT_FALSE(Menu::popUpContextMenu(nullptr, pressAt(0, 0), view.get()));
  EXPECT_FALSE(Menu::popUpContextMenu(menu, pressAt(0, 0), nullptr));
  view->shown = nullptr;
  EXPECT_FALSE(popUp());
  EXPECT_EQ(view->log, QStringList());
  EXPECT_EQ(Menu::make(static_cast<QMenu*>(nullptr)), nullptr);
}

TEST_F(MenuTest, OfSomeoneElseIsNotDestroyed) {
  QMenu own;
  Ref<Menu> over = Menu::make(&own);
  EXPECT_EQ(over->menu(), &own);
  QPointer<QMenu> watched = &own;
  over.reset();
  EXPECT_TRUE(watched);
}
