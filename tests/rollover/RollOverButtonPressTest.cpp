// Presses, menus and signals of rollover buttons.
#include "tests/rollover/RollOverButtonProbe.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/controls/Menu.h"

#include <gtest/gtest.h>

#include <QtGui/QAccessible>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QMenu>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

// More than a test waits.
constexpr double Never = 1000;

class RollOverButtonPress : public ::testing::Test, public RollOverButtonWindow {
 protected:
  RollOverButtonPress() {
    button->setBezelStyle(6);
    button->setPopUpMenuDelay(Never);
  }
  ~RollOverButtonPress() override {
    if (menu)
      menu->close();
  }

  void setMenu() {
    auto owned = std::make_unique<QMenu>();
    menu = owned.get();
    QObject::connect(menu->addAction(u"Item"_s), &QAction::triggered, [this] { ++fired; });
    cell().setMenu(Menu::make(std::move(owned)));
    button->grab(); // lays the cell out
  }
  // The middle of the arrow.
  void pressArrow() { press(95, 11); }
  void turn() { QCoreApplication::processEvents(); }
  QAccessibleInterface& described() { return *QAccessible::queryAccessibleInterface(button); }

  QPointer<QMenu> menu;
  int fired = 0;
};

// Writes down a button's signals.
QStringList& noteSignals(QAbstractButton* button, QStringList& log) {
  QObject::connect(button, &QAbstractButton::pressed, [&log] { log.append(u"pressed"_s); });
  QObject::connect(button, &QAbstractButton::released, [&log] { log.append(u"released"_s); });
  QObject::connect(button, &QAbstractButton::clicked, [&log] { log.append(u"clicked"_s); });
  QObject::connect(button, &QAbstractButton::toggled,
                   [&log](bool on) { log.append(on ? u"on"_s : u"off"_s); });
  return log;
}

} // namespace

TEST_F(RollOverButtonPress, IsPressedReleasedAndClicked) {
  QStringList log;
  noteSignals(button, log);
  press();
  EXPECT_EQ(log, QStringList{u"pressed"_s});
  EXPECT_TRUE(cell().isHighlighted());
  release();
  EXPECT_EQ(log, (QStringList{u"pressed"_s, u"released"_s, u"clicked"_s}));
  EXPECT_FALSE(cell().isHighlighted());
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});
}

TEST_F(RollOverButtonPress, RepeatsWhileItIsPressedUntilATrackingAnswersYes) {
  press();
  drag(50, 10);
  EXPECT_TRUE(cell().isHighlighted());
  EXPECT_TRUE(cell().mouseOver());
  // No: waits.
  drag(50, 40);
  EXPECT_FALSE(cell().isHighlighted());
  EXPECT_FALSE(cell().mouseOver());
  // Once more.
  drag(50, 10);
  EXPECT_TRUE(cell().isHighlighted());
  // Yes: over.
  release(50, 10);
  EXPECT_FALSE(cell().isHighlighted());
  drag(51, 10);
  EXPECT_FALSE(cell().isHighlighted());
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});
}

TEST_F(RollOverButtonPress, EndsByAReleaseOutside) {
  press();
  drag(50, 40);
  release(50, 40);
  drag(50, 10);
  EXPECT_FALSE(cell().isHighlighted());
  EXPECT_EQ(takeLog(), QStringList());
}

TEST_F(RollOverButtonPress, IsNotLitByADragWhereItDoesNotTrackTheMouse) {
  button->setTracksMouseInside(false);
  press();
  drag(50, 10);
  EXPECT_FALSE(cell().mouseOver());
  release(50, 10);
  EXPECT_FALSE(cell().mouseOver());
}

TEST_F(RollOverButtonPress, DoesNothingWhileItIsDisabled) {
  button->setEnabled(false);
  press();
  EXPECT_FALSE(cell().isHighlighted());
  release();
  EXPECT_EQ(takeLog(), QStringList());
}

// The state.

// Whoever lets another type toggle must change this.
TEST_F(RollOverButtonPress, ChangesTheStateOfOnOffButtonsOnly) {
  QStringList log;
  noteSignals(button, log);
  for (const std::uint64_t type : {0, 1, 2, 3, 4, 5, 6, 7, 77}) {
    button->setButtonType(ButtonType(type));
    const auto clickBy = [&](const std::function<void()>& means) {
      button->setState(CellState::Off);
      log.clear();
      means();
      EXPECT_EQ(button->state(), type == 6 ? CellState::On : CellState::Off) << type;
      EXPECT_EQ(button->isChecked(), type == 6) << type;
      EXPECT_EQ(log.count(u"on"_s), type == 6 ? 1 : 0) << type;
      EXPECT_EQ(log.count(u"clicked"_s), 1) << type;
    };
    clickBy([this] {
      press();
      release();
    });
    clickBy([this] { button->click(); });
    clickBy([this] {
      described().actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    });
    EXPECT_EQ(described().state().checkable, type == 6) << type;
  }
}

TEST_F(RollOverButtonPress, TogglesThereAndBack) {
  button->setButtonType(ButtonType::OnOff);
  QStringList log;
  noteSignals(button, log);
  press();
  release();
  press();
  release();
  EXPECT_EQ(log, (QStringList{u"pressed"_s, u"on"_s, u"released"_s, u"clicked"_s, u"pressed"_s,
                              u"off"_s, u"released"_s, u"clicked"_s}));
}

TEST_F(RollOverButtonPress, IsOneOfAnExclusiveGroup) {
  auto* other = new RollOverProbe(window.get());
  QButtonGroup group;
  group.addButton(button, 1);
  group.addButton(other, 2);
  for (RollOverProbe* each : {button, other})
    each->setButtonType(ButtonType::OnOff);
  QList<int> clicked;
  QObject::connect(&group, &QButtonGroup::idClicked, [&](int id) { clicked.append(id); });
  press();
  release();
  EXPECT_EQ(group.checkedId(), 1);
  other->click();
  EXPECT_EQ(group.checkedId(), 2);
  EXPECT_EQ(button->state(), CellState::Off);
  EXPECT_EQ(other->state(), CellState::On);
  EXPECT_EQ(clicked, (QList<int>{1, 2}));
}

// Menus.

TEST_F(RollOverButtonPress, OnTheArrowShowsTheMenuAtOnceAndSendsNothing) {
  setMenu();
  pressArrow();
  ASSERT_TRUE(menu->isVisible());
  // One point to the right of the lower left corner of the frame, and 5.5 below the upper edge.
  EXPECT_EQ(menu->pos(), button->mapToGlobal(QPointF(1, 5.5)).toPoint());
  EXPECT_TRUE(cell().isHighlighted());
  release(95, 11);
  EXPECT_TRUE(menu->isVisible());
  EXPECT_TRUE(cell().isHighlighted());
  menu->close();
  EXPECT_FALSE(cell().isHighlighted());
  EXPECT_EQ(takeLog(), QStringList());
}

TEST_F(RollOverButtonPress, IsAClickWhereItIsShortAlthoughThereIsAMenu) {
  setMenu();
  press();
  release();
  EXPECT_FALSE(menu->isVisible());
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});
}

TEST_F(RollOverButtonPress, ShowsTheMenuWhenItWasHeldForTheDelay) {
  setMenu();
  button->setPopUpMenuDelay(0.001);
  press();
  EXPECT_TRUE(waitFor([this] { return menu->isVisible(); }));
  EXPECT_TRUE(cell().isHighlighted());
  release();
  menu->close();
  EXPECT_FALSE(cell().isHighlighted());
  EXPECT_EQ(takeLog(), QStringList());
}

TEST_F(RollOverButtonPress, FiresNoItemByTheReleaseThatFollowsTheMenu) {
  setMenu();
  pressArrow();
  const QRect item = menu->actionGeometry(menu->actions().first());
  const auto onItem = [&](QEvent::Type type, Qt::MouseButtons held) {
    const QPointF local = item.center();
    QMouseEvent event(type, local, menu->mapToGlobal(local), Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(menu, &event);
  };
  onItem(QEvent::MouseButtonRelease, Qt::NoButton);
  EXPECT_EQ(fired, 0);
  EXPECT_TRUE(menu->isVisible());
  // The next click does.
  onItem(QEvent::MouseButtonPress, Qt::LeftButton);
  onItem(QEvent::MouseButtonRelease, Qt::NoButton);
  EXPECT_EQ(fired, 1);
}

TEST_F(RollOverButtonPress, IsNotLitAfterTheMenuClosedWithThePointerElsewhere) {
  enter(95, 11);
  setMenu();
  pressArrow();
  turn();
  EXPECT_FALSE(cell().mouseOver());
  menu->close();
  turn();
  EXPECT_FALSE(cell().mouseOver());
}

TEST_F(RollOverButtonPress, IsLitAfterTheMenuClosedUnderThePointer) {
  setMenu();
  QCursor::setPos(button->mapToGlobal(QPointF(95, 11)).toPoint());
  turn();
  ASSERT_TRUE(cell().mouseOver());
  pressArrow();
  turn();
  EXPECT_FALSE(cell().mouseOver());
  menu->close();
  turn();
  EXPECT_TRUE(cell().mouseOver());
}

TEST_F(RollOverButtonPress, IsNotLitAfterItsWindowLostTheFocusOrAnotherWidgetTookTheMouse) {
  enter();
  tell(button, QEvent::WindowDeactivate);
  EXPECT_FALSE(cell().mouseOver());
  move(6, 5);
  EXPECT_TRUE(cell().mouseOver());
  QWidget other;
  other.setGeometry(400, 400, 10, 10);
  other.show();
  other.grabMouse();
  turn();
  EXPECT_FALSE(cell().mouseOver());
  other.releaseMouse();
}

TEST_F(RollOverButtonPress, IsGivenUpWhenTheWindowLosesTheFocus) {
  press();
  tell(button, QEvent::WindowDeactivate);
  EXPECT_FALSE(cell().isHighlighted());
  release();
  EXPECT_EQ(takeLog(), QStringList());
}

// Assistive technology.

TEST_F(RollOverButtonPress, IsDescribedToAssistiveTechnology) {
  EXPECT_EQ(described().role(), QAccessible::Button);
  EXPECT_EQ(described().text(QAccessible::Name), u"Play"_s);
  EXPECT_FALSE(described().state().hasPopup);
  EXPECT_FALSE(described().state().focusable);
  EXPECT_EQ(described().actionInterface()->actionNames(),
            QStringList{QAccessibleActionInterface::pressAction()});
  setMenu();
  EXPECT_TRUE(described().state().hasPopup);
  described().actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
  EXPECT_TRUE(menu->isVisible());
  menu->close();
  button->setButtonType(ButtonType::OnOff);
  button->setState(CellState::On);
  EXPECT_TRUE(described().state().checked);
  press();
  EXPECT_TRUE(described().state().pressed);
  button->setEnabled(false);
  EXPECT_TRUE(described().state().disabled);
  EXPECT_EQ(described().actionInterface()->actionNames(), QStringList());
}

// Scales.

TEST_F(RollOverButtonPress, IsSharpAtEveryScale) {
  button->setBordered(true);
  button->setTitle(QString());
  button->setControlColor(Color::deviceRGB(0, 1, 0));
  button->setFrameColor(Color::deviceRGB(1, 0, 0));
  for (const double scale : {1.0, 1.5, 2.0}) {
    QImage image(QSize(int(100 * scale), int(22 * scale)), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    button->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    // The frame goes from 1 to 2 points below the upper edge; pixels that lie wholly in it, in the
    // body and above it have the pure colour.
    for (int y = 0; y < int(10 * scale); ++y) {
      const double top = y / scale;
      const double bottom = (y + 1) / scale;
      const QColor pixel = image.pixelColor(image.width() / 2, y);
      if (bottom <= 1) {
        EXPECT_EQ(pixel, QColor(Qt::white)) << scale << " at " << y;
      } else if (top >= 1 && bottom <= 2) {
        EXPECT_EQ(pixel, QColor(Qt::red)) << scale << " at " << y;
      } else if (top >= 2) {
        EXPECT_EQ(pixel, QColor(Qt::green)) << scale << " at " << y;
      }
    }
  }
}

// Whatever is called may destroy the button, its window and its menu.

TEST_F(RollOverButtonPress, MayBeDestroyedByItsTarget) {
  struct Receiver : public WeakReferenced {
    void pressed() { window->reset(); }
    std::unique_ptr<QWidget>* window = nullptr;
  } receiver;
  receiver.window = &window;
  for (const std::uint64_t type : {7, 6}) {
    RollOverButtonWindow own;
    receiver.window = &own.window;
    own.button->setButtonType(ButtonType(type));
    own.button->cell()->setTarget(&receiver);
    own.button->cell()->setAction(&Receiver::pressed);
    own.press();
    own.release();
    EXPECT_FALSE(own.window);
  }
}

TEST_F(RollOverButtonPress, MayBeDestroyedByEachOfItsSignals) {
  using Signal = void (QAbstractButton::*)();
  for (const Signal signal : {&QAbstractButton::pressed, &QAbstractButton::released}) {
    RollOverButtonWindow own;
    QObject::connect(own.button, signal, [&] { own.window.reset(); });
    own.press();
    if (own.window)
      own.release();
    EXPECT_FALSE(own.window);
  }
  using StateSignal = void (QAbstractButton::*)(bool);
  for (const StateSignal signal : {&QAbstractButton::clicked, &QAbstractButton::toggled}) {
    RollOverButtonWindow own;
    own.button->setButtonType(ButtonType::OnOff);
    QObject::connect(own.button, signal, [&] { own.window.reset(); });
    own.press();
    own.release();
    EXPECT_FALSE(own.window);
  }
}

TEST_F(RollOverButtonPress, MayBeDestroyedByTheHooksOfItsCell) {
  class FragileCell : public ZQRollOverButtonCell {
   public:
    enum class Where { Start, Continue, Stop, Highlight, State, Menu };
    FragileCell(Where hook, std::unique_ptr<QWidget>* window) : hook_(hook), window_(window) {}

    bool startTrackingAt(QPointF point, ControlView* view) override {
      return destroy(Where::Start) || ZQRollOverButtonCell::startTrackingAt(point, view);
    }
    bool continueTracking(QPointF last, QPointF at, ControlView* view) override {
      return hook_ != Where::Stop &&
             (destroy(Where::Continue) || ZQRollOverButtonCell::continueTracking(last, at, view));
    }
    void stopTracking(QPointF, QPointF, ControlView*, bool) override { destroy(Where::Stop); }
    void setHighlighted(bool highlighted) override {
      ZQRollOverButtonCell::setHighlighted(highlighted);
      destroy(Where::Highlight);
    }
    void setState(CellState state) override {
      ZQRollOverButtonCell::setState(state);
      destroy(Where::State);
    }
    void showMenuForEvent(const Event&, ControlView*, const QRectF&) override {
      destroy(Where::Menu);
    }

   private:
    bool destroy(Where where) {
      if (where != hook_)
        return false;
      window_->reset();
      return true;
    }
    Where hook_;
    std::unique_ptr<QWidget>* window_;
  };
  using Where = FragileCell::Where;
  for (const Where hook :
       {Where::Start, Where::Continue, Where::Stop, Where::Highlight, Where::State, Where::Menu}) {
    RollOverButtonWindow own;
    const auto fragile = std::make_shared<FragileCell>(hook, &own.window);
    QMenu items;
    if (hook == Where::Menu)
      fragile->setMenu(Menu::make(&items));
    own.button->setCell(fragile);
    own.button->setButtonType(ButtonType::OnOff);
    ASSERT_TRUE(own.window);
    own.button->grab();
    const double x = hook == Where::Menu ? 95 : 5;
    own.press(x, 11);
    if (own.window)
      own.drag(x + 1, 11);
    if (own.window)
      own.release(x + 1, 11);
    EXPECT_FALSE(own.window) << int(hook);
  }
}

TEST_F(RollOverButtonPress, MayBeDestroyedWhileItsMenuIsOpenAndWhenItCloses) {
  for (const bool isAtClose : {false, true}) {
    RollOverButtonWindow own;
    QMenu items;
    items.addAction(u"Item"_s);
    own.button->cell()->setMenu(Menu::make(&items));
    if (isAtClose)
      QObject::connect(&items, &QMenu::aboutToHide, [&] { own.window.reset(); });
    own.button->showMenu();
    ASSERT_TRUE(items.isVisible());
    if (!isAtClose)
      own.window.reset();
    items.close();
    turn();
    EXPECT_FALSE(own.window);
  }
}

TEST_F(RollOverButtonPress, OutlivesItsMenu) {
  setMenu();
  pressArrow();
  delete menu;
  turn();
  EXPECT_FALSE(cell().isHighlighted());
  EXPECT_FALSE(button->isDown());
  release(95, 11);
  press();
  release();
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});
}

TEST_F(RollOverButtonPress, MayBeDestroyedByAMenuThatIsAboutToShow) {
  setMenu();
  QObject::connect(menu, &QMenu::aboutToShow, [this] { window.reset(); });
  pressArrow();
  EXPECT_FALSE(window);
}
