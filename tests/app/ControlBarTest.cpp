#include "app/controls/ControlBar.h"

#include "app/controls/ControlBarButton.h"
#include "app/display/StripMenu.h"
#include "app/display/StripWidget.h"
#include "tests/app/FakePointer.h"
#include "tests/app/XServer.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/signs/ZQImageTickerSign.h"

#include <QtGui/QAccessible>
#include <QtGui/QAction>

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;
using zq::app::testing::enter;
using zq::app::testing::leave;
using zq::app::testing::press;
using zq::app::testing::release;
using zq::app::testing::waitUntil;

namespace {
// A look of which every part has another colour.
void setLook() {
  const auto look = std::make_shared<ZQRollOverButtonAppearance>();
  look->setFrameColor(Color::deviceRGB(0, 0, 0));
  look->setControlColor(Color::deviceRGB(0.2, 0.2, 0.2));
  look->setTextColor(Color::deviceRGB(1, 1, 1));
  look->setMouseoverControlColor(Color::deviceRGB(0, 0, 1));
  look->setMouseoverFrameColor(Color::deviceRGB(0, 0, 0.5));
  look->setMouseoverTextColor(Color::deviceRGB(1, 1, 0));
  look->setHighlightedControlColor(Color::deviceRGB(1, 0, 0));
  look->setHighlightedFrameColor(Color::deviceRGB(0.5, 0, 0));
  look->setHighlightedTextColor(Color::deviceRGB(0, 1, 0));
  look->setBordered(true);
  look->setPopUpMenuDelay(0.05);
  ControlBarButton::setAppearance<ControlBarButton>(look);
}

class Bar : public ::testing::Test {
 protected:
  Bar() {
    zq::testing::allowLog(u"This plugin does not support"_s);
    setLook();
    QCursor::setPos(780, 580);
    other.setGeometry(0, 300, 100, 24);
    other.show();
  }
  ~Bar() override {
    if (menu)
      menu->close();
  }

  void make(QSize size, ScrollDirection direction = ScrollDirection::Left) {
    strip.setGeometry(QRect(QPoint(0, 100), size));
    strip.show();
    QCoreApplication::processEvents();
    menu = std::make_unique<StripMenu>();
    bar = new ControlBar(&strip, direction, *menu);
  }
  void showBar() {
    enter(strip);
    press(strip);
    release(strip);
  }
  void click(ControlBarButton& button) {
    press(button);
    release(button);
  }
  std::array<ControlBarButton*, 4> buttons() const {
    return {&bar->backButton(), &bar->pauseButton(), &bar->forwardButton(), &bar->menuButton()};
  }
  QRect placeOf(const ControlBarButton& button) const {
    return {button.mapTo(&strip, QPoint()), button.size()};
  }

  // Shows how much time has passed for the strip.
  QWidget other;
  QWidget strip;
  std::unique_ptr<StripMenu> menu;
  ControlBar* bar = nullptr; // the strip's
};
} // namespace

TEST_F(Bar, ShowsWhileThePointerRestsOnTheStrip) {
  make({600, 24});
  EXPECT_FALSE(bar->isVisible());
  enter(strip);
  EXPECT_FALSE(bar->isVisible());
  EXPECT_TRUE(waitUntil([&] { return bar->isVisible(); }));
  leave(strip);
  EXPECT_TRUE(waitUntil([&] { return !bar->isVisible(); }));
}

TEST_F(Bar, StandsAtTheRightEndOfAHorizontalStrip) {
  for (const int height : {12, 16, 24, 31, 40, 120}) {
    make({601, height});
    showBar();
    ASSERT_TRUE(bar->isVisible()) << height;
    EXPECT_EQ(bar->geometry().right(), 600) << height;
    EXPECT_EQ(bar->height(), height);
    int right = bar->x();
    for (const ControlBarButton* button : buttons()) {
      const QRect place = placeOf(*button);
      EXPECT_GE(place.left(), right) << height;
      EXPECT_EQ(place.left() % 2, 0) << "between pixels at a scale of 1.5";
      EXPECT_TRUE(strip.rect().contains(place)) << height;
      EXPECT_EQ(place.height(), std::min(height, 40));
      right = place.right() + 1;
    }
    EXPECT_LE(601 - right, 6) << "no longer than needed";
    EXPECT_LE(placeOf(bar->backButton()).left() - bar->x(), 6);
    delete bar;
  }
}

TEST_F(Bar, StandsAtTheLowerEndOfAVerticalStrip) {
  // Side by side, two by two, and one below the other.
  for (const auto& [width, rows] : {std::pair(240, 1), std::pair(100, 2), std::pair(60, 4)}) {
    make({width, 500}, ScrollDirection::Up);
    showBar();
    ASSERT_TRUE(bar->isVisible()) << width;
    EXPECT_EQ(bar->width(), width);
    EXPECT_EQ(bar->geometry().bottom(), 499);
    EXPECT_NEAR(bar->height(), 24 * rows, 3);
    QRect all;
    for (const ControlBarButton* button : buttons()) {
      EXPECT_TRUE(bar->geometry().contains(placeOf(*button))) << width;
      EXPECT_FALSE(all.intersects(placeOf(*button)) && rows == 1) << width;
      all |= placeOf(*button);
    }
    EXPECT_EQ(all.height(), 24 * rows);
    delete bar;
  }
}

TEST_F(Bar, StandsWhereSignsEnterInEveryDirection) {
  make({601, 31}, ScrollDirection::Right);
  showBar();
  EXPECT_EQ(bar->x(), 0);
  int right = 0;
  for (const ControlBarButton* button : buttons()) {
    EXPECT_GE(placeOf(*button).left(), right) << "in the same order";
    EXPECT_EQ(placeOf(*button).left() % 2, 0) << "between pixels at a scale of 1.5";
    right = placeOf(*button).right() + 1;
  }
  EXPECT_LE(bar->width() - right, 4) << "no longer than needed";
  bar->setDirection(ScrollDirection::Left);
  EXPECT_TRUE(bar->isVisible());
  EXPECT_EQ(bar->geometry().right(), 600);
  strip.resize(240, 500);
  bar->setDirection(ScrollDirection::Down);
  EXPECT_EQ(bar->geometry(), QRect(0, 0, 240, 26));
  for (const ControlBarButton* button : buttons())
    EXPECT_EQ(placeOf(*button).top(), 0);
  bar->setDirection(ScrollDirection::Up);
  EXPECT_EQ(bar->geometry().bottom(), 499);
}

TEST_F(Bar, DoesNotShowWhereThereIsNoRoom) {
  for (const auto& [size, direction] : {std::pair(QSize(100, 24), ScrollDirection::Left),
                                        std::pair(QSize(600, 11), ScrollDirection::Right),
                                        std::pair(QSize(30, 500), ScrollDirection::Up),
                                        std::pair(QSize(60, 60), ScrollDirection::Down)}) {
    make(size, direction);
    showBar();
    EXPECT_FALSE(bar->isVisible()) << size.width();
    strip.resize(300, 300);
    EXPECT_TRUE(bar->isVisible()) << "there is room now";
    delete bar;
  }
}

TEST_F(Bar, FollowsTheStripsSize) {
  make({600, 24});
  showBar();
  strip.resize(400, 30);
  EXPECT_EQ(bar->geometry().right(), 399);
  EXPECT_EQ(bar->height(), 30);
}

TEST_F(Bar, DoesWhatTheMenuDoes) {
  make({600, 24});
  showBar();
  int back = 0;
  int forward = 0;
  QObject::connect(&menu->back(), &QAction::triggered, [&] { ++back; });
  QObject::connect(&menu->forward(), &QAction::triggered, [&] { ++forward; });
  click(bar->backButton());
  EXPECT_EQ(back, 1);
  EXPECT_EQ(forward, 0);
  click(bar->forwardButton());
  click(bar->forwardButton());
  EXPECT_EQ(forward, 2);
  EXPECT_FALSE(menu->pause().isChecked());
}

TEST_F(Bar, PausesAndShowsIt) {
  make({600, 24});
  showBar();
  ControlBarButton& pause = bar->pauseButton();
  EXPECT_EQ(pause.glyph(), ControlGlyph::Pause);
  EXPECT_EQ(pause.toolTip(), u"Pause"_s);
  click(pause);
  EXPECT_TRUE(menu->pause().isChecked());
  EXPECT_EQ(pause.glyph(), ControlGlyph::Play);
  EXPECT_EQ(pause.state(), CellState::On);
  EXPECT_EQ(pause.toolTip(), u"Resume"_s);
  menu->pause().trigger();
  EXPECT_EQ(pause.glyph(), ControlGlyph::Pause);
  EXPECT_EQ(pause.state(), CellState::Off);
  click(pause);
  click(pause);
  EXPECT_FALSE(menu->pause().isChecked());
}

TEST_F(Bar, ShowsGlyphsInTheColoursOfTitles) {
  make({600, 24});
  showBar();
  ControlBarButton& pause = bar->pauseButton();
  const auto has = [&](QColor color) {
    const QImage image = pause.grab().toImage();
    for (int y = 4; y < image.height() - 4; ++y)
      for (int x = 4; x < image.width() - 4; ++x)
        if (image.pixelColor(x, y) == color)
          return true;
    return false;
  };
  EXPECT_TRUE(has(QColor(255, 255, 255)));
  EXPECT_FALSE(has(QColor(255, 255, 0)));
  enter(pause);
  EXPECT_TRUE(has(QColor(255, 255, 0)));
  press(pause);
  EXPECT_TRUE(has(QColor(0, 255, 0)));
  release(pause);
  leave(pause);
  EXPECT_TRUE(has(QColor(0, 255, 0))) << "it is on";
  menu->pause().trigger();
  EXPECT_TRUE(has(QColor(255, 255, 255)));
}

TEST_F(Bar, IsSharpAtEveryScale) {
  make({600, 24});
  showBar();
  for (const double scale : {1.0, 1.5, 2.0}) {
    QImage image((QSizeF(bar->pauseButton().size()) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::black);
    bar->pauseButton().render(&image);
    // The two bars of the glyph and the body, nothing between them in colour.
    int bars = 0;
    for (int x = int(4 * scale); x < image.width() - int(4 * scale); ++x) {
      const QColor color = image.pixelColor(x, image.height() / 2);
      ASSERT_TRUE(color == QColor(255, 255, 255) || color == QColor(51, 51, 51))
          << x << " at " << scale;
      bars += color == QColor(255, 255, 255) &&
              image.pixelColor(x - 1, image.height() / 2) != QColor(255, 255, 255);
    }
    EXPECT_EQ(bars, 2) << scale;
  }
}

TEST_F(Bar, StaysWhileAButtonIsPressed) {
  make({600, 24});
  showBar();
  press(bar->backButton());
  leave(strip);
  RestingPointer reference(&other);
  press(other);
  leave(other);
  EXPECT_TRUE(waitUntil([&] { return !reference.isResting(); }));
  EXPECT_TRUE(bar->isVisible());
  release(bar->backButton());
  EXPECT_TRUE(waitUntil([&] { return !bar->isVisible(); }));
}

TEST_F(Bar, StaysWhileTheMenuIsOpen) {
  make({600, 24});
  showBar();
  menu->popup(QPoint(0, 200));
  leave(strip);
  RestingPointer reference(&other);
  press(other);
  leave(other);
  EXPECT_TRUE(waitUntil([&] { return !reference.isResting(); }));
  EXPECT_TRUE(bar->isVisible());
  menu->close();
  EXPECT_TRUE(waitUntil([&] { return !bar->isVisible(); }));
}

TEST_F(Bar, StaysWhereThePointerIsOnItAfterTheMenu) {
  make({600, 24});
  showBar();
  menu->popup(QPoint(0, 200));
  leave(strip);
  QCursor::setPos(strip.mapToGlobal(QPoint(5, 5)));
  menu->close();
  RestingPointer reference(&other);
  press(other);
  leave(other);
  EXPECT_TRUE(waitUntil([&] { return !reference.isResting(); }));
  EXPECT_TRUE(bar->isVisible());
}

TEST_F(Bar, PopsItsMenuUpForAHeldPressAClickAndAPressOnTheArrow) {
  make({600, 24});
  showBar();
  ControlBarButton& button = bar->menuButton();
  button.grab(); // lays the cell out
  press(button);
  EXPECT_FALSE(menu->isVisible());
  EXPECT_TRUE(waitUntil([&] { return menu->isVisible(); }));
  release(button);
  EXPECT_TRUE(menu->isVisible());
  menu->close();
  ASSERT_TRUE(waitUntil([&] { return !button.isDown(); }));

  press(button);
  release(button);
  EXPECT_TRUE(menu->isVisible());
  menu->close();

  press(button, {button.width() - 9.0, 11.0});
  EXPECT_TRUE(menu->isVisible());
  release(button);
}

TEST_F(Bar, LetsItsMenuCoverNoButtons) {
  for (const int y : {100, 560}) {
    make({600, 24});
    strip.move(0, y);
    showBar();
    bar->menuButton().showMenu();
    ASSERT_TRUE(menu->isVisible());
    const QRect place(bar->mapToGlobal(QPoint()), bar->size());
    EXPECT_FALSE(menu->geometry().intersects(place)) << y;
    EXPECT_TRUE(strip.screen()->availableGeometry().contains(menu->geometry())) << y;
    menu->close();
    // Elsewhere it stands where it is asked to.
    menu->popup(QPoint(20, 120));
    EXPECT_EQ(menu->geometry().topLeft(), QPoint(20, 120));
    menu->close();
    delete bar;
  }
}

TEST_F(Bar, TakesNoFocus) {
  make({600, 24});
  showBar();
  EXPECT_EQ(bar->focusPolicy(), Qt::NoFocus);
  for (const ControlBarButton* button : buttons()) {
    EXPECT_EQ(button->focusPolicy(), Qt::NoFocus);
    EXPECT_FALSE(button->hasFocus());
  }
}

TEST_F(Bar, IsDescribedToAssistiveTechnology) {
  make({600, 24});
  const std::array names{u"Back by one sign"_s, u"Pause"_s, u"Forward by one sign"_s, u"Menu"_s};
  for (std::size_t i = 0; i < names.size(); ++i) {
    QAccessibleInterface* described = QAccessible::queryAccessibleInterface(buttons()[i]);
    ASSERT_NE(described, nullptr);
    EXPECT_EQ(described->text(QAccessible::Name), names[i]);
    EXPECT_EQ(buttons()[i]->toolTip(), names[i]);
    EXPECT_EQ(described->role(), QAccessible::Button);
  }
  QAccessibleInterface* pause = QAccessible::queryAccessibleInterface(&bar->pauseButton());
  pause->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(menu->pause().isChecked());
  EXPECT_TRUE(pause->state().checked);
  EXPECT_EQ(pause->text(QAccessible::Name), u"Pause"_s) << "the state says the rest";
  EXPECT_TRUE(QAccessible::queryAccessibleInterface(&bar->menuButton())->state().hasPopup);
}

namespace {
// Counts what is painted of a bar and its buttons.
class PaintCount : public QObject {
 public:
  explicit PaintCount(ControlBar& bar) {
    bar.installEventFilter(this);
    for (QObject* child : bar.children())
      child->installEventFilter(this);
  }
  bool eventFilter(QObject*, QEvent* event) override {
    paints += event->type() == QEvent::Paint;
    return false;
  }
  int paints = 0;
};
} // namespace

TEST_F(Bar, IsNotPaintedWithTheFramesOfTheStrip) {
  TickerDisplay display(FrameClock::now());
  StripWidget moving(display, Qt::white);
  display.setDefaultFont(Font::systemFontOfSize(13));
  QImage image(20, 24, QImage::Format_RGB32);
  image.fill(Qt::red);
  const auto sign = ZQImageTickerSign::make(Image::fromQImage(image));
  sign->setLoopCount(ZQEndlessLoopCount);
  display.addSign(sign, moving.time());
  display.setSpeed(1000, moving.time());
  moving.setGeometry(0, 100, 600, 24);
  auto* own = new ControlBar(&moving, ScrollDirection::Left, moving.menu());
  PaintCount count(*own);
  moving.show();
  ASSERT_TRUE(waitUntil([&] { return moving.frameCount() > 5; }));
  EXPECT_EQ(count.paints, 0);
  press(moving);
  ASSERT_TRUE(own->isVisible());
  ASSERT_TRUE(waitUntil([&] { return count.paints > 0; }));
  QCoreApplication::processEvents();
  const int shown = count.paints;
  const std::uint64_t frames = moving.frameCount();
  ASSERT_TRUE(waitUntil([&] { return moving.frameCount() > frames + 10; }));
  EXPECT_EQ(count.paints, shown);
}

TEST(ControlBarButton, HasItsLookUnderItsOwnName) {
  setLook();
  EXPECT_TRUE(ControlBarButton::hasLook());
  EXPECT_EQ(QString::fromUtf8(ControlBarButton::staticMetaObject.className()),
            u"zq::app::ControlBarButton"_s);
}
