#include "zqticker/rollover/ZQRollOverButton.h"

#include "tests/rollover/RollOverButtonProbe.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/controls/view_notifications.h"
#include "zqticker/platform/graphics/SystemColors.h"
#include "zqticker/platform/system/Notification.h"
#include "zqticker/platform/system/NotificationCenter.h"

#include <gtest/gtest.h>

#include <QtWidgets/QMenu>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

const QStringList frameHeard{u"frame"_s};
const QStringList nothing;

class RollOverButton : public ::testing::Test, public RollOverButtonWindow {
 protected:
  ~RollOverButton() override { zq_insetCell = 0; }

  // Gives the button a cell of the platform.
  Ref<ButtonCell> setPlainCell() {
    const auto plain = std::make_shared<ButtonCell>(u"Old"_s);
    button->setCell(plain);
    button->takeRedisplays();
    return plain;
  }
};

// Writes down where it is drawn.
class DrawnCell : public ZQRollOverButtonCell {
 public:
  void drawWithFrame(const QRectF& frame, ControlView* inView) override {
    frames.push_back(frame);
    views.push_back(inView);
  }
  std::vector<QRectF> frames;
  std::vector<ControlView*> views;
};

struct Receiver : public WeakReferenced {
  void pressed() {}
};

std::size_t registrations() {
  return NotificationCenter::defaultCenter().registrationCount();
}

} // namespace

// Creation.

TEST_F(RollOverButton, HasFrameTitleAndBoldFontFromTheStart) {
  QWidget superview;
  superview.resize(300, 200);
  ZQRollOverButton made({30, 40, 90.5, 22}, u"Stop"_s, &superview);
  EXPECT_EQ(made.frame(), QRectF(30, 40, 91, 22));
  EXPECT_EQ(made.title(), u"Stop"_s);
  EXPECT_NE(std::dynamic_pointer_cast<ZQRollOverButtonCell>(made.cell()), nullptr);
  ASSERT_NE(made.cell()->font(), nullptr);
  EXPECT_TRUE(made.cell()->font()->isEqual(*Font::boldSystemFontOfSize(13)));
  EXPECT_TRUE(made.postsFrameChangedNotifications());
  EXPECT_TRUE(made.tracksMouseInside());
  EXPECT_EQ(made.buttonType(), ButtonType(0));
}

TEST_F(RollOverButton, HasNoDefaultsFromThePlainConstructor) {
  const std::size_t before = registrations();
  ZQRollOverButton made;
  EXPECT_NE(std::dynamic_pointer_cast<ZQRollOverButtonCell>(made.cell()), nullptr);
  EXPECT_EQ(made.cell()->font(), nullptr);
  EXPECT_EQ(registrations(), before);
}

TEST_F(RollOverButton, GetsItsDefaultsByAwakeFromNib) {
  ZQRollOverButton made;
  made.setTitle(u"Stop"_s);
  made.setPostsFrameChangedNotifications(false);
  const auto cell = made.cell();
  const std::size_t before = registrations();
  made.awakeFromNib();
  EXPECT_EQ(registrations(), before + 1);
  EXPECT_TRUE(made.postsFrameChangedNotifications());
  EXPECT_EQ(made.cell(), cell);
  EXPECT_EQ(made.title(), u"Stop"_s);
  ASSERT_NE(cell->font(), nullptr);
  EXPECT_TRUE(cell->font()->isEqual(*Font::boldSystemFontOfSize(13)));
}

TEST_F(RollOverButton, KeepsTheFontThatItHas) {
  ZQRollOverButton made;
  const auto font = Font::fontWithName(u"DejaVu Sans"_s, 9);
  made.cell()->setFont(font);
  made.awakeFromNib();
  EXPECT_EQ(made.cell()->font(), font);
}

TEST_F(RollOverButton, HearsOfItsFrameTwiceWhenItWokeTwice) {
  button->resize(90, 22);
  EXPECT_EQ(takeLog(), frameHeard);
  button->awakeFromNib();
  button->resize(80, 22);
  EXPECT_EQ(takeLog(), frameHeard + frameHeard);
}

// Conversion of a plain cell.

TEST_F(RollOverButton, TakesTitleTagTargetActionAndContinuityFromAPlainCell) {
  Receiver receiver;
  const auto plain = setPlainCell();
  plain->setTag(7);
  plain->setTarget(&receiver);
  plain->setAction(&Receiver::pressed);
  plain->setContinuous(true);
  plain->setControlSize(ControlSize::Mini);
  button->awakeFromNib();
  EXPECT_NE(button->cell(), plain);
  const ZQRollOverButtonCell& now = cell();
  EXPECT_EQ(now.title(), u"Old"_s);
  EXPECT_EQ(now.tag(), 7);
  EXPECT_EQ(now.target(), Target(&receiver));
  EXPECT_TRUE(now.action());
  EXPECT_TRUE(now.isContinuous());
  EXPECT_EQ(now.controlSize(), ControlSize::Regular);
  EXPECT_EQ(now.controlView(), button);
  EXPECT_TRUE(now.font()->isEqual(*Font::boldSystemFontOfSize(13)));
}

// Whoever carries the state over must change this.
TEST_F(RollOverButton, DoesNotTakeTheStateOfAPlainCell) {
  const auto plain = setPlainCell();
  plain->setState(CellState::On);
  ASSERT_EQ(button->state(), CellState::On);
  button->awakeFromNib();
  EXPECT_EQ(cell().state(), CellState::Off);
  EXPECT_EQ(button->state(), CellState::Off);
  EXPECT_FALSE(button->isChecked());
}

TEST_F(RollOverButton, HasAnEmptyTitleWhereThePlainCellHasNone) {
  setPlainCell()->setObjectValue({});
  button->awakeFromNib();
  EXPECT_EQ(button->title(), QString());
}

TEST_F(RollOverButton, StaysDisabledWhenItsCellIsReplaced) {
  setPlainCell();
  button->setEnabled(false);
  button->awakeFromNib();
  EXPECT_FALSE(cell().isEnabled());
}

// What it passes on to its cell.

TEST_F(RollOverButton, PassesAttributesToItsCellAndIsDrawnAnew) {
  const auto values = distinctAppearance();
  const auto look = std::make_shared<ZQRollOverButtonAppearance>();
  cell().setAppearance(look);
#define ZQ_SET(Type, property, getter, setter)                                                     \
  button->takeRedisplays();                                                                        \
  button->setter(values->getter());                                                                \
  EXPECT_GE(button->takeRedisplays(), 1) << #property;                                             \
  EXPECT_EQ(cell().getter(), values->getter()) << #property;                                       \
  EXPECT_EQ(look->getter(), values->getter()) << #property;                                        \
  EXPECT_EQ(button->getter(), values->getter()) << #property;
  ZQ_APPEARANCE_OBJECTS(ZQ_SET)
  ZQ_SET(ZQIntegerAttribute, shadingMode, shadingMode, setShadingMode)
  ZQ_SET(ZQFlagAttribute, alwaysShowMenuIndicator, alwaysShowMenuIndicator,
         setAlwaysShowMenuIndicator)
  ZQ_SET(ZQFlagAttribute, bordered, isBordered, setBordered)
#undef ZQ_SET
}

TEST_F(RollOverButton, PassesTheControlSizeToItsCellAndIsDrawnAnew) {
  button->takeRedisplays();
  button->setControlSize(ControlSize::Small);
  EXPECT_GE(button->takeRedisplays(), 1);
  EXPECT_EQ(cell().controlSize(), ControlSize::Small);
  EXPECT_EQ(button->controlSize(), ControlSize::Small);
  EXPECT_EQ(button->sizeHint().height(), 19);
}

TEST_F(RollOverButton, IsNotDrawnAnewForTheDelayOfItsMenu) {
  button->takeRedisplays();
  button->setPopUpMenuDelay(0.5);
  EXPECT_EQ(button->takeRedisplays(), 0);
  EXPECT_EQ(cell().popUpMenuDelay(), 0.5);
  EXPECT_EQ(button->popUpMenuDelay(), 0.5);
}

TEST_F(RollOverButton, ChangesTheLookOfItsClassWhereTheCellHasNone) {
  RollOverProbe another;
  RollOverProbe own;
  const auto ownLook = std::make_shared<ZQRollOverButtonAppearance>();
  own.rollOverCell().setAppearance(ownLook);
  const auto red = Color::deviceRGB(1, 0, 0);
  button->setControlColor(red);
  EXPECT_EQ(another.controlColor(), red);
  EXPECT_EQ(ZQRollOverButton::appearance<RollOverProbe>()->controlColor(), red);
  EXPECT_EQ(own.controlColor(), nullptr);
  own.setFrameColor(red);
  EXPECT_EQ(button->frameColor(), nullptr);
  EXPECT_EQ(ownLook->frameColor(), red);
}

TEST_F(RollOverButton, HasTheBezelStyleOfItsLook) {
  cell().calculateLayoutForFrame(button->bounds(), button);
  button->takeRedisplays();
  button->setBezelStyle(6);
  // The cell lays itself out anew; nobody asks for a redisplay.
  EXPECT_EQ(button->takeRedisplays(), 0);
  EXPECT_EQ(cell().lastFrameSize().width(), 0);
  EXPECT_EQ(cell().zqBezelStyle(), 6U);
  EXPECT_EQ(button->bezelStyle(), 6);
  cell().setZqBezelStyle(4);
  EXPECT_EQ(button->bezelStyle(), 4);
  // Not in the platform's part of the cell.
  EXPECT_EQ(cell().ButtonCell::bezelStyle(), ButtonCell().bezelStyle());
}

TEST_F(RollOverButton, HasTheBezelStyleOfAPlainCell) {
  const auto plain = setPlainCell();
  button->setBezelStyle(6);
  EXPECT_EQ(plain->bezelStyle(), 6);
  EXPECT_EQ(button->bezelStyle(), 6);
  EXPECT_GE(button->takeRedisplays(), 1);
}

TEST_F(RollOverButton, IsBorderedAsItsCellIs) {
  EXPECT_FALSE(button->isBordered());
  button->setBordered(true);
  EXPECT_TRUE(cell().isBordered());
  EXPECT_TRUE(ZQRollOverButton::appearance<RollOverProbe>()->isBordered());
  cell().setBordered(false);
  EXPECT_FALSE(button->isBordered());
  const auto plain = setPlainCell();
  EXPECT_EQ(button->isBordered(), plain->isBordered());
  button->setBordered(false);
  EXPECT_FALSE(plain->isBordered());
}

TEST_F(RollOverButton, HasNoAttributesWithAPlainCell) {
  setPlainCell();
  const auto values = distinctAppearance();
#define ZQ_SET(Type, property, getter, setter)                                                     \
  button->setter(values->getter());                                                                \
  EXPECT_EQ(button->getter(), Type()) << #property;
  ZQ_APPEARANCE_OBJECTS(ZQ_SET)
  ZQ_SET(ZQIntegerAttribute, shadingMode, shadingMode, setShadingMode)
  ZQ_SET(ZQFlagAttribute, alwaysShowMenuIndicator, alwaysShowMenuIndicator,
         setAlwaysShowMenuIndicator)
  ZQ_SET(ZQSecondsAttribute, popUpMenuDelay, popUpMenuDelay, setPopUpMenuDelay)
#undef ZQ_SET
  enter();
  button->setTracksMouseInside(false);
}

TEST_F(RollOverButton, KeepsTheTypeThatWasSetLastAndIsDrawnAnew) {
  EXPECT_EQ(button->buttonType(), ButtonType(0));
  for (const std::uint64_t type : {0, 1, 2, 3, 4, 5, 6, 7, 77}) {
    button->takeRedisplays();
    button->setButtonType(ButtonType(type));
    EXPECT_EQ(button->buttonType(), ButtonType(type));
    EXPECT_GE(button->takeRedisplays(), 1);
  }
  // Its meaning goes to the platform's cell.
  button->setButtonType(ButtonType::OnOff);
  EXPECT_EQ(cell().highlightsBy(), 12U);
  EXPECT_EQ(cell().showsStateBy(), 12U);
}

// The view.

TEST_F(RollOverButton, IsFlippedAndNeverOpaque) {
  EXPECT_TRUE(button->isFlipped());
  EXPECT_FALSE(button->isOpaque());
  EXPECT_FALSE(button->testAttribute(Qt::WA_OpaquePaintEvent));
}

TEST_F(RollOverButton, AcceptsTheFirstClickAndNoKeyboardFocus) {
  const Event event;
  EXPECT_TRUE(button->acceptsFirstMouse(&event));
  EXPECT_TRUE(button->acceptsFirstMouse(nullptr));
  EXPECT_FALSE(button->canBecomeKeyView());
  EXPECT_EQ(button->focusPolicy(), Qt::NoFocus);
}

TEST_F(RollOverButton, ActsOnTheFirstClickIntoAnInactiveWindow) {
  QWidget other;
  other.show();
  other.activateWindow();
  QCoreApplication::processEvents();
  ASSERT_FALSE(window->isActiveWindow());
  press();
  release();
  EXPECT_EQ(takeLog(), QStringList{u"action"_s});
}

TEST_F(RollOverButton, HintsAtTheWidthOfItsContentsAndTheHeightOfItsCell) {
  class OddCell : public ZQRollOverButtonCell {
   public:
    QSizeF cellSize() const override { return {70, 31.5}; }
    QSizeF intrinsicContentSize() const override { return {50.25, 9}; }
  };
  button->setCell(std::make_shared<OddCell>());
  EXPECT_EQ(button->intrinsicContentSize(), QSizeF(50.25, 31.5));
  EXPECT_EQ(button->sizeHint(), QSize(51, 32));
}

TEST_F(RollOverButton, HintsAtTheSizeOfItsCellWhateverTheInset) {
  zq_insetCell = 3;
  EXPECT_EQ(button->intrinsicContentSize(), cell().intrinsicContentSize());
  EXPECT_EQ(button->sizeHint().height(), 22);
}

TEST_F(RollOverButton, FitsItsCellExactlyWithoutAnInset) {
  const QSizeF size = cell().cellSize();
  button->sizeToFit();
  EXPECT_EQ(button->frame(), QRectF(20, 68, std::ceil(size.width()), size.height()));
}

TEST_F(RollOverButton, FitsItsCellAndTheInsetOnAllSides) {
  zq_insetCell = 2.5;
  const QSizeF size = cell().cellSize();
  button->sizeToFit();
  EXPECT_EQ(button->frame(), QRectF(20, 68, std::ceil(size.width() + 5), size.height() + 5));
}

TEST_F(RollOverButton, DrawsItsCellOverItsBoundsLessTheInsetWhateverIsDirty) {
  const auto drawn = std::make_shared<DrawnCell>();
  button->setCell(drawn);
  QImage image(100, 22, QImage::Format_ARGB32_Premultiplied);
  button->render(&image, QPoint(), QRegion(90, 3, 4, 4), QWidget::RenderFlags());
  ASSERT_EQ(drawn->frames.size(), 1u);
  EXPECT_EQ(drawn->frames[0], QRectF(0, 0, 100, 22));
  EXPECT_EQ(drawn->views[0], button);
  zq_insetCell = 2.5;
  button->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
  EXPECT_EQ(drawn->frames.back(), QRectF(2.5, 2.5, 95, 17));
}

// The tracking rectangle.

TEST_F(RollOverButton, HasATrackingRectangleOverItsBoundsInAWindow) {
  EXPECT_EQ(RollOverProbe().trackingRect(), 0);
  EXPECT_NE(button->trackingRect(), 0);
  enter(99, 21);
  EXPECT_TRUE(cell().mouseOver());
  move(50, 22.5);
  EXPECT_FALSE(cell().mouseOver());
  move(0, 0);
  EXPECT_TRUE(cell().mouseOver());
}

TEST_F(RollOverButton, HasAnotherRectangleForEveryFrame) {
  const auto first = button->trackingRect();
  button->resize(50, 22);
  EXPECT_EQ(takeLog(), frameHeard);
  const auto second = button->trackingRect();
  EXPECT_NE(second, first);
  enter(60, 5);
  EXPECT_FALSE(cell().mouseOver());
  enter(40, 5);
  EXPECT_TRUE(cell().mouseOver());
  // Only one: the former do not tell anything.
  leave();
  button->resize(10, 22);
  enter(40, 5);
  EXPECT_FALSE(cell().mouseOver());
}

TEST_F(RollOverButton, HasAnotherRectangleWhenItIsMoved) {
  const auto first = button->trackingRect();
  button->move(30, 10);
  EXPECT_NE(button->trackingRect(), first);
}

TEST_F(RollOverButton, HasAnotherRectangleWhenItsWindowIsResized) {
  const auto first = button->trackingRect();
  window->resize(300, 100);
  EXPECT_EQ(takeLog(), frameHeard);
  EXPECT_NE(button->trackingRect(), first);
}

TEST_F(RollOverButton, IsLitAndDrawnAnewOnEntryAndTheContraryOnExit) {
  button->takeRedisplays();
  enter();
  EXPECT_TRUE(cell().mouseOver());
  EXPECT_EQ(button->takeRedisplays(), 1);
  leave();
  EXPECT_FALSE(cell().mouseOver());
  EXPECT_EQ(button->takeRedisplays(), 1);
}

TEST_F(RollOverButton, LeavesItsCellAsItIsWhileItIsDisabled) {
  button->setEnabled(false);
  button->takeRedisplays();
  enter();
  EXPECT_FALSE(cell().mouseOver());
  cell().setMouseOver(true);
  leave();
  EXPECT_TRUE(cell().mouseOver());
  EXPECT_EQ(button->takeRedisplays(), 0);
}

TEST_F(RollOverButton, IsNotLitByBeingEnabledUnderThePointer) {
  button->setEnabled(false);
  enter();
  button->setEnabled(true);
  QCoreApplication::processEvents();
  move(6, 5);
  EXPECT_FALSE(cell().mouseOver());
  leave();
  enter();
  EXPECT_TRUE(cell().mouseOver());
}

TEST_F(RollOverButton, LosesItsLightWhenItIsDisabled) {
  enter();
  button->takeRedisplays();
  button->setEnabled(false);
  EXPECT_FALSE(cell().mouseOver());
  EXPECT_FALSE(cell().isEnabled());
  EXPECT_GE(button->takeRedisplays(), 1);
  button->setEnabled(true);
  EXPECT_FALSE(cell().mouseOver());
}

TEST_F(RollOverButton, LosesItsLightBeforeItsCellIsDisabled) {
  class OrderedCell : public ZQRollOverButtonCell {
   public:
    void setEnabled(bool enabled) override {
      wasLit = mouseOver();
      ZQRollOverButtonCell::setEnabled(enabled);
    }
    bool wasLit = false;
  };
  const auto ordered = std::make_shared<OrderedCell>();
  button->setCell(ordered);
  ordered->wasLit = true;
  ordered->setMouseOver(true);
  button->setEnabled(false);
  EXPECT_FALSE(ordered->wasLit);
}

TEST_F(RollOverButton, TracksTheMouseUntilItIsToldNotTo) {
  EXPECT_TRUE(button->tracksMouseInside());
  button->setTracksMouseInside(false);
  EXPECT_FALSE(button->tracksMouseInside());
  enter();
  EXPECT_FALSE(cell().mouseOver());
  button->resize(50, 22);
  EXPECT_EQ(button->trackingRect(), 0);
  button->setTracksMouseInside(true);
  EXPECT_NE(button->trackingRect(), 0);
  enter();
  EXPECT_TRUE(cell().mouseOver());
}

TEST_F(RollOverButton, IsAQtPropertyWhetherItTracksTheMouse) {
  EXPECT_TRUE(button->setProperty("tracksMouseInside", false));
  EXPECT_FALSE(button->tracksMouseInside());
  EXPECT_FALSE(button->property("tracksMouseInside").toBool());
}

TEST_F(RollOverButton, DoesNothingWhenItTracksAsBefore) {
  enter();
  const auto rectangle = button->trackingRect();
  button->setTracksMouseInside(true);
  EXPECT_EQ(button->trackingRect(), rectangle);
  EXPECT_TRUE(cell().mouseOver());
  button->setTracksMouseInside(false);
  cell().setMouseOver(true);
  button->setTracksMouseInside(false);
  EXPECT_TRUE(cell().mouseOver());
}

TEST_F(RollOverButton, LosesItsLightWithoutARedisplayWhenItIsToldNotToTrack) {
  enter();
  button->takeRedisplays();
  button->setTracksMouseInside(false);
  EXPECT_FALSE(cell().mouseOver());
  EXPECT_EQ(button->takeRedisplays(), 0);
}

// Whoever clears the tag must change this.
TEST_F(RollOverButton, KeepsTheTagOfTheRectangleThatItTookAway) {
  const auto rectangle = button->trackingRect();
  button->setTracksMouseInside(false);
  EXPECT_EQ(button->trackingRect(), rectangle);
  button->setTracksMouseInside(true);
  const auto second = button->trackingRect();
  EXPECT_NE(second, rectangle);
  button->removeFromSuperview();
  EXPECT_EQ(button->trackingRect(), second);
  delete button;
}

TEST_F(RollOverButton, HasNoRectangleOnceItIsRemoved) {
  enter();
  leave();
  for (const auto remove : {&ZQRollOverButton::removeFromSuperview,
                            &ZQRollOverButton::removeFromSuperviewWithoutNeedingDisplay}) {
    (button->*remove)();
    EXPECT_EQ(button->parentWidget(), nullptr);
    enter();
    move(6, 5);
    EXPECT_FALSE(cell().mouseOver());
    // And one again in a window.
    button->setParent(window.get());
    enter();
    EXPECT_TRUE(cell().mouseOver());
    leave();
  }
}

// Windows.

TEST_F(RollOverButton, HearsOfTheWindowThatItIsInUntilItIsInNone) {
  const auto about = button->windowObject();
  button->removeFromSuperview();
  takeLog();
  NotificationCenter::defaultCenter().postNotificationName(WindowDidResizeNotification, about);
  EXPECT_EQ(takeLog(), nothing);
  // Of its frame it hears all the same.
  button->resize(50, 22);
  NotificationCenter::defaultCenter().postNotificationName(ViewFrameDidChangeNotification,
                                                           button->viewObject());
  EXPECT_TRUE(takeLog().contains(u"frame"_s));
  delete button;
}

// Whoever takes the first registration back on the way must change this.
TEST_F(RollOverButton, HearsOfBothWindowsWhenItGoesStraightFromOneToTheOther) {
  QWidget second;
  second.resize(300, 200);
  second.show();
  const auto firstWindow = button->windowObject();
  button->setParent(&second);
  takeLog();
  for (const auto& about : {firstWindow, button->windowObject()}) {
    NotificationCenter::defaultCenter().postNotificationName(WindowDidResizeNotification, about);
    EXPECT_EQ(takeLog(), frameHeard);
  }
  // Out of a window it hears of none.
  const auto secondWindow = button->windowObject();
  button->removeFromSuperview();
  takeLog();
  for (const auto& about : {firstWindow, secondWindow})
    NotificationCenter::defaultCenter().postNotificationName(WindowDidResizeNotification, about);
  EXPECT_EQ(takeLog(), nothing);
  delete button;
}

// Whoever takes this registration back at the end must change this.
TEST_F(RollOverButton, LeavesTheRegistrationForItsFrameWhenItGoes) {
  const std::size_t before = registrations();
  auto* gone = new ZQRollOverButton({0, 0, 10, 10}, u"Gone"_s, window.get());
  EXPECT_EQ(registrations(), before + 1);
  gone->show();
  EXPECT_EQ(registrations(), before + 2);
  const auto object = gone->viewObject();
  delete gone;
  EXPECT_EQ(registrations(), before + 1);
  // It hurts nobody, and goes with the first notification.
  NotificationCenter::defaultCenter().postNotificationName(ViewFrameDidChangeNotification, object);
  EXPECT_EQ(registrations(), before);
}

TEST_F(RollOverButton, ShowsTheColorsOfTheThemeAsTheyAreNow) {
  const QPalette former = QApplication::palette();
  const auto paint = [this] {
    button->setControlColor(SystemColors::colorNamed(u"controlColor"_s));
    return button->grab().toImage().pixelColor(25, 11);
  };
  QPalette light = former;
  light.setColor(QPalette::Button, QColor(200, 210, 220));
  QApplication::setPalette(light);
  const QColor before = paint();
  QPalette dark = former;
  dark.setColor(QPalette::Button, QColor(20, 30, 40));
  QApplication::setPalette(dark);
  const QColor after = paint();
  QApplication::setPalette(former);
  EXPECT_EQ(before, QColor(200, 210, 220));
  EXPECT_EQ(after, QColor(20, 30, 40));
}
