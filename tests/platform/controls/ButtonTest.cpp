#include "zqticker/platform/controls/Button.h"

#include "tests/platform/controls/ButtonProbe.h"
#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/controls/TrackingSession.h"
#include "zqticker/platform/controls/view_notifications.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/system/Notification.h"
#include "zqticker/platform/system/NotificationCenter.h"

#include <gtest/gtest.h>

#include <QtGui/QAccessible>
#include <QtGui/QImage>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QMenu>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

// Writes down a button's signals.
class Signals {
 public:
  explicit Signals(Button* button) {
    QObject::connect(button, &QAbstractButton::pressed, [this] { log.append(u"pressed"_s); });
    QObject::connect(button, &QAbstractButton::released, [this] { log.append(u"released"_s); });
    QObject::connect(button, &QAbstractButton::clicked,
                     [this](bool on) { log.append(on ? u"clicked on"_s : u"clicked"_s); });
    QObject::connect(button, &QAbstractButton::toggled,
                     [this](bool on) { log.append(on ? u"on"_s : u"off"_s); });
  }
  QStringList take() { return std::exchange(log, {}); }
  QStringList log;
};

// Shows its menu by a press on the right, and ends with Yes.
class ArrowCell : public ButtonCell {
 public:
  class Session : public TrackingSession {
   public:
    using TrackingSession::TrackingSession;

   protected:
    Result begin() override {
      cell()->showMenuForEvent(press(), view(), cellFrame());
      return Result::Yes;
    }
    Result pass(const Event&) override { return Result::No; }
  };
  std::shared_ptr<TrackingSession> makeTrackingSession(const Event& event, const QRectF& inRect,
                                                       ControlView* ofView,
                                                       bool untilMouseUp) override {
    return std::make_shared<Session>(std::static_pointer_cast<Cell>(shared_from_this()), event,
                                     inRect, ofView, untilMouseUp);
  }
};

class ButtonTest : public ::testing::Test, public ButtonWindow {};

} // namespace

TEST_F(ButtonTest, ClicksByPressAndReleaseInside) {
  Signals seen(button);
  press();
  EXPECT_EQ(seen.take(), QStringList{u"pressed"_s});
  EXPECT_TRUE(button->isDown());
  EXPECT_TRUE(button->cell()->isHighlighted());
  drag(50, 10);
  release(50, 10);
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});
  EXPECT_EQ(seen.take(), (QStringList{u"released"_s, u"clicked"_s}));
  EXPECT_FALSE(button->isDown());
  EXPECT_FALSE(button->cell()->isHighlighted());
}

TEST_F(ButtonTest, TracksAgainWhenThePointerComesBack) {
  Signals seen(button);
  press();
  drag(50, 40);
  EXPECT_FALSE(button->cell()->isHighlighted());
  drag(60, 50);
  EXPECT_EQ(seen.take(), (QStringList{u"pressed"_s, u"released"_s}));
  // The far edge lies outside.
  drag(100, 10);
  EXPECT_FALSE(button->cell()->isHighlighted());
  drag(50, 10);
  EXPECT_TRUE(button->cell()->isHighlighted());
  release(50, 10);
  EXPECT_EQ(seen.take(), (QStringList{u"pressed"_s, u"released"_s, u"clicked"_s}));
}

TEST_F(ButtonTest, DoesNothingByAReleaseOutside) {
  Signals seen(button);
  press();
  release(50, 40);
  EXPECT_EQ(seen.take(), (QStringList{u"pressed"_s, u"released"_s}));
  press();
  drag(50, 40);
  release(50, 40);
  // The press is over: nothing tracks any more.
  drag(50, 10);
  EXPECT_FALSE(button->cell()->isHighlighted());
  EXPECT_EQ(takeLog(), QStringList());
}

TEST_F(ButtonTest, TakesTheSecondPressOfADoubleClickAsAPress) {
  Signals seen(button);
  press();
  release();
  send(QEvent::MouseButtonDblClick, 5, 5, Qt::LeftButton, Qt::LeftButton);
  release();
  EXPECT_EQ(seen.log.count(u"clicked"_s), 2);
}

TEST_F(ButtonTest, LeavesTheRightButtonToOthers) {
  QMouseEvent event(QEvent::MouseButtonPress, QPointF(5, 5), button->mapToGlobal(QPointF(5, 5)),
                    Qt::RightButton, Qt::RightButton, Qt::NoModifier);
  QApplication::sendEvent(button, &event);
  EXPECT_FALSE(button->isDown());
  EXPECT_FALSE(event.isAccepted());
}

TEST_F(ButtonTest, SendsItsActionToItsTargetWithItselfAsSender) {
  struct Receiver : public WeakReferenced {
    void pressed(QObject* sender) { from = sender; }
    QObject* from = nullptr;
  } receiver;
  button->cell()->setTarget(&receiver);
  button->cell()->setAction(&Receiver::pressed);
  press();
  release();
  EXPECT_EQ(receiver.from, button);
}

TEST_F(ButtonTest, TellsTheStateAfterTheClickAlthoughTheActionComesBefore) {
  button->setButtonType(ButtonType::OnOff);
  Signals seen(button);
  CellState during = CellState::Mixed;
  button->whenSending = [&] { during = button->state(); };
  press();
  release();
  EXPECT_EQ(during, CellState::Off);
  EXPECT_EQ(seen.take(), (QStringList{u"pressed"_s, u"on"_s, u"released"_s, u"clicked on"_s}));
  EXPECT_EQ(button->state(), CellState::On);
  EXPECT_TRUE(button->isChecked());
}

TEST_F(ButtonTest, EmitsClickedForEachActionOfAContinuousCell) {
  button->cell()->setContinuous(true);
  Signals seen(button);
  press();
  drag(6, 5);
  EXPECT_EQ(seen.take(), (QStringList{u"pressed"_s, u"clicked"_s}));
  drag(7, 5);
  release(7, 5);
  EXPECT_EQ(seen.take(), (QStringList{u"clicked"_s, u"released"_s, u"clicked"_s}));
}

TEST_F(ButtonTest, PerformsTheCellsClickByClick) {
  button->setButtonType(ButtonType::Switch);
  Signals seen(button);
  button->click();
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});
  EXPECT_EQ(seen.take(), (QStringList{u"pressed"_s, u"on"_s, u"released"_s, u"clicked on"_s}));
  button->setButtonType(ButtonType::MomentaryPushIn);
  button->click();
  EXPECT_TRUE(button->isChecked());
}

TEST_F(ButtonTest, EmitsClickedForAnActionThatTheCellSendsByItself) {
  Signals seen(button);
  button->cell()->performClick(button);
  EXPECT_EQ(seen.take(), QStringList{u"clicked"_s});
}

TEST_F(ButtonTest, ShowsAndTakesTheStateOfItsCell) {
  Signals seen(button);
  button->setState(CellState::On);
  EXPECT_TRUE(button->isChecked());
  button->setChecked(false);
  EXPECT_EQ(button->state(), CellState::Off);
  button->cell()->setAllowsMixedState(true);
  button->setState(CellState::Mixed);
  EXPECT_FALSE(button->isChecked());
  EXPECT_EQ(button->state(), CellState::Mixed);
  EXPECT_EQ(seen.take(), (QStringList{u"on"_s, u"off"_s}));
}

TEST_F(ButtonTest, IsOneOfAnExclusiveGroup) {
  auto* other = new ProbeButton(window.get());
  QButtonGroup group;
  group.addButton(button, 1);
  group.addButton(other, 2);
  QStringList seen;
  QObject::connect(&group, &QButtonGroup::idClicked,
                   [&](int id) { seen.append(u"clicked %1"_s.arg(id)); });
  QObject::connect(&group, &QButtonGroup::idPressed,
                   [&](int id) { seen.append(u"pressed %1"_s.arg(id)); });
  QObject::connect(&group, &QButtonGroup::buttonReleased,
                   [&](QAbstractButton* one) { seen.append(u"released %1"_s.arg(group.id(one))); });
  button->setButtonType(ButtonType::OnOff);
  other->setButtonType(ButtonType::OnOff);
  press();
  release();
  EXPECT_EQ(seen, (QStringList{u"pressed 1"_s, u"released 1"_s, u"clicked 1"_s}));
  EXPECT_EQ(group.checkedButton(), button);
  other->click();
  EXPECT_EQ(other->state(), CellState::On);
  EXPECT_EQ(button->state(), CellState::Off);
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});
  // The one that is on cannot be switched off.
  other->click();
  EXPECT_EQ(other->state(), CellState::On);
  EXPECT_TRUE(other->isChecked());
}

TEST_F(ButtonTest, GivesAPressUpWhenItIsDisabled) {
  Signals seen(button);
  press();
  button->setEnabled(false);
  EXPECT_EQ(seen.take(), (QStringList{u"pressed"_s, u"released"_s}));
  EXPECT_FALSE(button->cell()->isHighlighted());
  EXPECT_FALSE(button->cell()->isEnabled());
  button->setEnabled(true);
  EXPECT_TRUE(button->cell()->isEnabled());
  release();
  EXPECT_EQ(takeLog(), QStringList());
}

TEST_F(ButtonTest, GivesAPressUpWhenItsHighlightDisablesIt) {
  QObject::connect(button, &QAbstractButton::pressed, [this] { button->setEnabled(false); });
  press();
  EXPECT_FALSE(button->cell()->isHighlighted());
  EXPECT_FALSE(button->isDown());
}

TEST_F(ButtonTest, GivesAPressUpWhenTheWindowLosesTheFocusOrTheReleaseWentElsewhere) {
  press();
  tell(button, QEvent::WindowDeactivate);
  EXPECT_FALSE(button->isDown());
  release();
  press();
  button->hide();
  settle();
  EXPECT_FALSE(button->isDown());
  button->show();
  press();
  move(6, 5);
  EXPECT_FALSE(button->isDown());
  press();
  tell(window.get(), QEvent::WindowBlocked);
  EXPECT_FALSE(button->isDown());
  EXPECT_EQ(takeLog(), QStringList());
}

TEST_F(ButtonTest, MayBeDestroyedByItsAction) {
  button->whenSending = [this] { window.reset(); };
  press();
  const QPointF local(5, 5);
  QMouseEvent event(QEvent::MouseButtonRelease, local, button->mapToGlobal(local), Qt::LeftButton,
                    Qt::NoButton, Qt::NoModifier);
  // The probe itself goes on after its callback; the base class is asked through another one.
  button->whenSending = nullptr;
  QObject::connect(button, &QAbstractButton::clicked, [this] { window.reset(); });
  QApplication::sendEvent(button, &event);
  EXPECT_FALSE(window);
}

TEST_F(ButtonTest, MayBeDestroyedByItsTarget) {
  struct Receiver : public WeakReferenced {
    void pressed() { window->reset(); }
    std::unique_ptr<QWidget>* window = nullptr;
  } receiver;
  receiver.window = &window;
  button->setButtonType(ButtonType::OnOff);
  button->cell()->setTarget(&receiver);
  button->cell()->setAction(&Receiver::pressed);
  press();
  release();
  EXPECT_FALSE(window);
}

TEST_F(ButtonTest, MayBeDestroyedByEachOfItsSignals) {
  using Signal = void (QAbstractButton::*)();
  for (const Signal signal : {&QAbstractButton::pressed, &QAbstractButton::released}) {
    ButtonWindow own;
    QObject::connect(own.button, signal, [&] { own.window.reset(); });
    own.press();
    if (own.window)
      own.release();
    EXPECT_FALSE(own.window);
  }
  ButtonWindow own;
  own.button->setButtonType(ButtonType::OnOff);
  QObject::connect(own.button, &QAbstractButton::toggled, [&] { own.window.reset(); });
  own.press();
  own.release();
  EXPECT_FALSE(own.window);
}

TEST_F(ButtonTest, LogsWhatAnActionRaises) {
  expectLog(u"Error in the callback of a view: wrong"_s);
  button->whenSending = [] { throw Exception(u"wrong"_s); };
  press();
  release();
  EXPECT_FALSE(button->isDown());
  EXPECT_THROW(button->cell()->performClick(button), Exception);
}

TEST_F(ButtonTest, StaysHighlightedAsLongAsItsMenu) {
  const auto cell = std::make_shared<ArrowCell>();
  auto owned = std::make_unique<QMenu>();
  QMenu* menu = owned.get();
  menu->addAction(u"Item"_s);
  cell->setMenu(Menu::make(std::move(owned)));
  button->setCell(cell);
  press(95, 5);
  EXPECT_TRUE(menu->isVisible());
  EXPECT_TRUE(cell->isHighlighted());
  release(95, 5);
  EXPECT_TRUE(cell->isHighlighted());
  menu->hide();
  EXPECT_FALSE(cell->isHighlighted());
  EXPECT_FALSE(button->isDown());
  // And a press works as before.
  press(95, 5);
  EXPECT_TRUE(menu->isVisible());
  button->setEnabled(false);
  EXPECT_FALSE(cell->isHighlighted());
  menu->hide();
}

TEST_F(ButtonTest, TellsNothingMoreWhenItIsDestroyedWhilePressed) {
  Signals seen(button);
  press();
  delete button;
  EXPECT_EQ(seen.take(), QStringList{u"pressed"_s});
}

TEST_F(ButtonTest, HoldsAPressUntilItsDeadline) {
  class HeldCell : public ButtonCell {
   public:
    class Session : public TrackingSession {
     public:
      using TrackingSession::TrackingSession;

     protected:
      Result begin() override { return Result::Running; }
      Result pass(const Event&) override { return Result::Running; }
      Result deadlineReached() override {
        cell()->showMenuForEvent(press(), view(), cellFrame());
        return Result::Yes;
      }
      std::optional<double> delaySeconds() const override { return 0.001; }
    };
    std::shared_ptr<TrackingSession> makeTrackingSession(const Event& event, const QRectF& inRect,
                                                         ControlView* ofView,
                                                         bool untilMouseUp) override {
      return std::make_shared<Session>(std::static_pointer_cast<Cell>(shared_from_this()), event,
                                       inRect, ofView, untilMouseUp);
    }
  };
  const auto cell = std::make_shared<HeldCell>();
  auto owned = std::make_unique<QMenu>();
  QMenu* menu = owned.get();
  menu->addAction(u"Item"_s);
  cell->setMenu(Menu::make(std::move(owned)));
  button->setCell(cell);
  press();
  EXPECT_FALSE(menu->isVisible());
  EXPECT_TRUE(waitFor([&] { return menu->isVisible(); }));
  EXPECT_TRUE(cell->isHighlighted());
  menu->hide();
  EXPECT_FALSE(cell->isHighlighted());
  EXPECT_EQ(takeLog(), QStringList());
}

TEST_F(ButtonTest, DrawsItsCellOverTheWholeOfIt) {
  class Filled : public ButtonCell {
   public:
    void drawWithFrame(const QRectF& frame, ControlView* inView) override {
      EXPECT_EQ(frame, QRectF(0, 0, 100, 22));
      EXPECT_TRUE(inView->isFlipped());
      GraphicsContext* context = GraphicsContext::currentContext();
      EXPECT_TRUE(context->isFlipped());
      context->setFillColor(Color::deviceRGB(1, 0, 0));
      context->fillRect({frame.x(), frame.y(), frame.width(), 11});
    }
  };
  button->setCell(std::make_shared<Filled>());
  for (const double scale : {1.0, 1.5, 2.0}) {
    QImage image(QSize(int(100 * scale), int(22 * scale)), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    button->render(&image, QPoint(), QRegion(), QWidget::DrawWindowBackground);
    EXPECT_EQ(image.pixelColor(image.width() / 2, 0), QColor(Qt::red)) << scale;
    // 11 points are 16.5 pixels at 1.5: only that row is mixed.
    const int edge = int(11 * scale);
    EXPECT_EQ(image.pixelColor(image.width() / 2, edge - 1), QColor(Qt::red)) << scale;
    EXPECT_NE(image.pixelColor(image.width() / 2, edge + 1), QColor(Qt::red)) << scale;
  }
}

TEST_F(ButtonTest, LogsWhatDrawingRaises) {
  class Broken : public ButtonCell {
   public:
    void drawWithFrame(const QRectF&, ControlView*) override { throw Exception(u"no ink"_s); }
  };
  expectLog(u"no ink"_s);
  button->setCell(std::make_shared<Broken>());
  QImage image(100, 22, QImage::Format_ARGB32_Premultiplied);
  button->render(&image);
}

TEST_F(ButtonTest, HasAFrameThatKeepsItsLowerEdge) {
  EXPECT_EQ(button->frame(), QRectF(20, 68, 100, 22));
  button->setFrame({20, 68, 50.25, 30});
  EXPECT_EQ(button->geometry(), QRect(20, 2, 51, 30));
  button->sizeToFit();
  EXPECT_EQ(button->frame().topLeft(), QPointF(20, 68));
  EXPECT_EQ(button->frame().height(), button->cell()->cellSize().height());
  EXPECT_EQ(button->width(), int(std::ceil(button->cell()->cellSize().width())));
  EXPECT_EQ(button->sizeHint(), button->size());
  EXPECT_EQ(button->intrinsicContentSize(), button->cell()->cellSize());
}

TEST_F(ButtonTest, ConvertsPointsBetweenItselfAndItsWindow) {
  EXPECT_EQ(button->convertPointToWindow({0, 0}), QPointF(20, 90));
  EXPECT_EQ(button->convertPointToWindow({1, 22}), QPointF(21, 68));
  EXPECT_EQ(button->convertPointFromWindow({21, 68}), QPointF(1, 22));
}

TEST_F(ButtonTest, TakesNoKeyboardFocus) {
  EXPECT_EQ(button->focusPolicy(), Qt::NoFocus);
}

TEST_F(ButtonTest, TellsTheDefaultCenterOfItsFrame) {
  struct Observer : public WeakReferenced {
    void changed(const Ref<Notification>& notification) { about.push_back(notification->object()); }
    std::vector<Ref<Object>> about;
  } observer;
  NotificationCenter::defaultCenter().addObserver(
      &observer, &Observer::changed, QString(ViewFrameDidChangeNotification), button->viewObject());
  button->resize(80, 22);
  button->move(10, 10);
  ASSERT_EQ(observer.about.size(), 2u);
  EXPECT_EQ(observer.about[0], button->viewObject());
  button->setPostsFrameChangedNotifications(false);
  button->resize(90, 22);
  EXPECT_EQ(observer.about.size(), 2u);
  NotificationCenter::defaultCenter().removeObserver(&observer);
}

TEST_F(ButtonTest, IsToldOfItsWindowAndThatOfItsSize) {
  struct Observer : public WeakReferenced {
    void changed(const Ref<Notification>&) { ++count; }
    int count = 0;
  } observer;
  ASSERT_TRUE(button->windowObject());
  EXPECT_EQ(button->windowObject(), windowObject(window.get()));
  NotificationCenter::defaultCenter().addObserver(
      &observer, &Observer::changed, QString(WindowDidResizeNotification), button->windowObject());
  window->resize(300, 100);
  EXPECT_EQ(observer.count, 1);
  NotificationCenter::defaultCenter().removeObserver(&observer);

  button->removeFromSuperview();
  EXPECT_FALSE(button->isInWindow());
  EXPECT_EQ(button->windowObject(), nullptr);
  EXPECT_EQ(button->parent(), nullptr);
  QWidget second;
  button->setParent(&second);
  EXPECT_EQ(takeLog(), (QStringList{u"no window"_s, u"window"_s}));
  EXPECT_EQ(windowObject(nullptr), nullptr);
}

TEST_F(ButtonTest, IsDescribedToAssistiveTechnology) {
  button->setTitle(u"Play"_s);
  QAccessibleInterface* described = QAccessible::queryAccessibleInterface(button);
  ASSERT_TRUE(described);
  EXPECT_EQ(described->role(), QAccessible::Button);
  EXPECT_EQ(described->text(QAccessible::Name), u"Play"_s);
  EXPECT_FALSE(described->state().checkable);
  EXPECT_FALSE(described->state().focusable);
  EXPECT_FALSE(described->state().hasPopup);
  QAccessibleActionInterface* actions = described->actionInterface();
  ASSERT_TRUE(actions);
  EXPECT_EQ(actions->actionNames(), QStringList{QAccessibleActionInterface::pressAction()});
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});

  button->setButtonType(ButtonType::OnOff);
  button->setState(CellState::On);
  EXPECT_TRUE(described->state().checkable);
  EXPECT_TRUE(described->state().checked);
  button->setAccessibleName(u"Start"_s);
  EXPECT_EQ(described->text(QAccessible::Name), u"Start"_s);

  auto owned = std::make_unique<QMenu>();
  QMenu* menu = owned.get();
  menu->addAction(u"Item"_s);
  button->cell()->setMenu(Menu::make(std::move(owned)));
  EXPECT_TRUE(described->state().hasPopup);
  EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::showMenuAction()));
  actions->doAction(QAccessibleActionInterface::showMenuAction());
  EXPECT_TRUE(menu->isVisible());
  menu->hide();
  button->setEnabled(false);
  EXPECT_EQ(actions->actionNames(), QStringList());
  EXPECT_TRUE(described->state().disabled);
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(takeLog(), QStringList());
}

TEST_F(ButtonTest, NeedsACell) {
  EXPECT_THROW(button->setCell(nullptr), InvalidArgumentException);
  const Ref<ButtonCell> old = button->cell();
  const auto cell = std::make_shared<ButtonCell>(u"New"_s);
  cell->setState(CellState::On);
  button->setEnabled(false);
  button->setCell(cell);
  EXPECT_EQ(cell->controlView(), button);
  EXPECT_EQ(old->controlView(), nullptr);
  EXPECT_FALSE(cell->isEnabled());
  EXPECT_TRUE(button->isChecked());
  EXPECT_EQ(button->title(), u"New"_s);
}

TEST_F(ButtonTest, KeepsTheTypeLastSet) {
  EXPECT_EQ(button->buttonType(), ButtonType::MomentaryLight);
  button->setButtonType(ButtonType(77));
  EXPECT_EQ(button->buttonType(), ButtonType(77));
}
