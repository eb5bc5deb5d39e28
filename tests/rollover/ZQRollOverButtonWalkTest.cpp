// A long walk of a pointer and of what happens around a button, against a model of the rules.
#include "tests/rollover/RollOverButtonProbe.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/controls/Menu.h"

#include <gtest/gtest.h>

#include <QtGui/QWindow>
#include <QtWidgets/QMenu>

#include <optional>
#include <random>

QT_BEGIN_NAMESPACE
// What the window system says of the pointer, as the toolkit's own tests say it.
Q_GUI_EXPORT void qt_handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                      Qt::MouseButtons state, Qt::MouseButton button,
                                      QEvent::Type type, Qt::KeyboardModifiers mods, int timestamp);
QT_END_NAMESPACE

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

enum class Place { Outside, Title, Arrow };

// What the rules say of a button with a menu.
struct Model {
  // The world.
  Place place = Place::Outside;
  bool isHeld = false;
  bool isMenuOpen = false;
  bool isEnabled = true;
  bool tracks = true;
  bool isOnOff = false;

  // What is seen of the button.
  bool isLit = false;
  bool isHighlighted = false;
  bool isOn = false;
  int actions = 0;

  bool isInside() const { return place != Place::Outside; }

  // The pointer goes somewhere.
  void move(Place to) {
    place = to;
    if (isMenuOpen)
      return;
    // Held down, it comes in by presses only.
    if (press != Press::None || !isHeld || !isInside())
      tell(isInside());
    if (press == Press::Tracking && isInside()) {
      isLit = tracks;
    } else if (press == Press::Tracking) {
      isLit = false;
      isHighlighted = false;
      press = Press::Waiting;
    } else if (press == Press::Waiting && isInside()) {
      track();
    }
  }
  void pressDown() {
    isHeld = true;
    if (isEnabled)
      track();
  }
  void release() {
    isHeld = false;
    if (isMenuOpen)
      return;
    tell(isInside());
    if (press == Press::Tracking) {
      isLit = tracks;
      ++actions;
      isOn ^= isOnOff;
      isHighlighted = false;
    }
    endPress();
  }
  // The press was held long enough.
  void reachDeadline() { openMenu(); }
  void closeMenu() {
    isMenuOpen = false;
    isHighlighted = false;
    if (!isHeld)
      tell(isInside());
  }
  void setEnabled(bool enabled) {
    if (enabled == isEnabled)
      return;
    if (!enabled) {
      press = Press::None;
      later.reset();
      isHighlighted = false;
      isLit = false;
    }
    isEnabled = enabled;
  }
  void loseFocus() {
    if (press != Press::None)
      isHighlighted = false;
    endPress();
    tell(false);
  }
  void regainFocus() {
    if (!isHeld || !isInside())
      tell(isInside());
  }
  void setTracks(bool tracksNow) {
    if (tracksNow == tracks)
      return;
    tracks = tracksNow;
    if (!tracks)
      isLit = false;
    changeFrame();
  }
  // Another rectangle takes the place of the one that there was.
  void changeFrame() {
    isLeaveOwed |= isEntered;
    isEntered = false;
  }

  bool isTracking() const { return press == Press::Tracking; }

 private:
  enum class Press { None, Tracking, Waiting };

  // The pointer is inside, or it is not: an entry, a leave, or nothing new.
  void tell(bool inside) {
    if (press != Press::None) {
      later = inside;
      return;
    }
    if (!tracks)
      return;
    const bool isLeave = (isEntered || isLeaveOwed) && !inside;
    const bool isEntry = inside && !isEntered;
    isLeaveOwed = false;
    isEntered = inside;
    if (isEnabled && (isLeave || isEntry))
      isLit = isEntry;
  }
  void track() {
    press = Press::Tracking;
    isHighlighted = true;
    if (place == Place::Arrow)
      openMenu();
  }
  void openMenu() {
    isMenuOpen = true;
    endPress();
    // The menu takes the pointer away.
    tell(false);
  }
  void endPress() {
    press = Press::None;
    if (const auto inside = std::exchange(later, std::nullopt))
      tell(*inside);
  }

  Press press = Press::None;
  // Where the pointer went during a press.
  std::optional<bool> later;
  bool isEntered = false;
  bool isLeaveOwed = false;
};

class RollOverButtonWalk : public ::testing::TestWithParam<unsigned>, public RollOverButtonWindow {
 protected:
  // More than a test waits.
  static constexpr double Never = 1000;

  RollOverButtonWalk() : random(GetParam()) {
    button->setBezelStyle(6);
    button->setPopUpMenuDelay(Never);
    auto owned = std::make_unique<QMenu>();
    menu = owned.get();
    QObject::connect(menu->addAction(u"Item"_s), &QAction::triggered, [this] { ++fired; });
    cell().setMenu(Menu::make(std::move(owned)));
    QObject::connect(button, &QAbstractButton::clicked, [this] { ++clicks; });
    QObject::connect(button, &QAbstractButton::toggled, [this] { ++toggles; });
    other.setGeometry(600, 300, 50, 50);
    other.show();
    window->activateWindow();
    turn();
    button->log.clear();
    button->grab(); // lays the cell out
  }
  ~RollOverButtonWalk() override {
    if (model.isHeld)
      sayButton(false);
    menu->close();
  }

  void turn() {
    QCoreApplication::processEvents();
    settle();
  }
  unsigned choose(unsigned count) { return unsigned(random()) % count; }

  // The window system's part.
  void setPointer(Place place) {
    static constexpr QPoint title[] = {{5, 11}, {30, 4}, {60, 18}};
    static constexpr QPoint arrow[] = {{91, 11}, {94, 8}};
    // The last two outside of the window too, where a pointer that is held does not get here.
    static constexpr QPoint outside[] = {{150, 11}, {50, 60}, {-40, 11}, {500, 400}};
    // Somewhere else: what does not move is not told.
    QPoint global;
    do {
      const QPoint local = place == Place::Title   ? title[choose(3)]
                           : place == Place::Arrow ? arrow[choose(2)]
                                                   : outside[choose(model.isHeld ? 2 : 4)];
      global = button->mapToGlobal(local);
    } while (global == QCursor::pos());
    QCursor::setPos(global);
    turn();
  }
  void sayButton(bool isDown) {
    const QPointF global = QCursor::pos();
    qt_handleMouseEvent(window->windowHandle(), window->mapFromGlobal(global), global,
                        isDown ? Qt::LeftButton : Qt::NoButton, Qt::LeftButton,
                        isDown ? QEvent::MouseButtonPress : QEvent::MouseButtonRelease,
                        Qt::NoModifier, ++timestamp);
    turn();
  }

  // One event, if it may happen now; returns its name.
  std::string step() {
    switch (choose(24)) {
    case 0:
    case 1:
    case 2:
    case 3:
      return move(Place::Title, "enter the title");
    case 4:
      return move(Place::Arrow, "enter the arrow");
    case 5:
    case 6:
      return move(Place::Outside, "leave");
    case 7:
    case 8:
    case 9:
    case 10:
    case 11:
      if (model.isHeld || model.isMenuOpen || !model.isInside())
        break;
      model.pressDown();
      sayButton(true);
      return "press";
    case 12:
    case 13:
    case 14:
      if (!model.isHeld)
        break;
      model.release();
      sayButton(false);
      // Of this release the toolkit may tell nobody, but of the next movement.
      if (std::exchange(isHeldOverMenu, false))
        move(model.place, "");
      return "release";
    case 15:
      if (!model.isTracking())
        break;
      // A movement restarts the wait, here one for nothing.
      button->setPopUpMenuDelay(0);
      move(Place::Title, "");
      button->setPopUpMenuDelay(Never);
      model.reachDeadline();
      EXPECT_TRUE(waitFor([this] { return menu->isVisible(); }));
      turn();
      return "menu";
    case 16:
    case 17:
    case 18:
      if (!model.isMenuOpen)
        break;
      isHeldOverMenu = model.isHeld;
      model.closeMenu();
      menu->close();
      turn();
      return "close";
    case 19:
      if (!model.isEnabled)
        break;
      return setEnabled(false, "disable");
    case 20:
    case 21:
      if (model.isEnabled)
        break;
      return setEnabled(true, "enable");
    case 22:
      if (model.isMenuOpen)
        break;
      if (window->isActiveWindow()) {
        model.loseFocus();
        other.activateWindow();
      } else {
        model.regainFocus();
        window->activateWindow();
      }
      turn();
      return "focus";
    default:
      return rarely();
    }
    return {};
  }

  std::string setEnabled(bool enabled, const char* name) {
    model.setEnabled(enabled);
    button->setEnabled(enabled);
    turn();
    return name;
  }

  std::string move(Place to, const char* name) {
    model.move(to);
    setPointer(to);
    return name;
  }

  std::string rarely() {
    switch (choose(3)) {
    case 0: {
      const bool tracks = choose(4) != 0;
      model.setTracks(tracks);
      button->setTracksMouseInside(tracks);
      return tracks ? "track" : "track not";
    }
    case 1:
      model.changeFrame();
      button->resize(button->width() == 100 ? 102 : 100, 22);
      turn();
      button->grab();
      return "change the frame";
    default:
      model.isOnOff ^= true;
      button->setButtonType(model.isOnOff ? ButtonType::OnOff : ButtonType::MomentaryPushIn);
      return "change the type";
    }
  }

  std::string difference() {
    const auto report = [](const char* what, int rules, int seen) {
      return std::string(what) + " should be " + std::to_string(rules) + " and is " +
             std::to_string(seen) + "; ";
    };
    std::string found;
    const auto compare = [&](const char* what, int rules, int seen) {
      if (rules != seen)
        found += report(what, rules, seen);
    };
    compare("mouse-over", model.isLit, cell().mouseOver());
    compare("highlighted", model.isHighlighted, cell().isHighlighted());
    compare("down", model.isHighlighted, button->isDown());
    compare("on", model.isOn, cell().state() == CellState::On);
    compare("checked", model.isOn, button->isChecked());
    compare("enabled", model.isEnabled, cell().isEnabled());
    compare("actions", model.actions, int(button->log.count(u"action"_s)));
    compare("clicks", model.actions, clicks);
    compare("menu", model.isMenuOpen, menu->isVisible());
    compare("items fired", 0, fired);
    return found;
  }

  std::mt19937 random;
  Model model;
  QWidget other;
  QMenu* menu;
  // Whether a menu went away under a pointer that is still held down.
  bool isHeldOverMenu = false;
  int timestamp = 0;
  int fired = 0;
  int clicks = 0;
  int toggles = 0;
};

} // namespace

TEST_P(RollOverButtonWalk, AgreesWithTheRulesAtEveryStep) {
  static constexpr int Steps = 10000;
  QStringList last;
  for (int done = 0; done < Steps;) {
    const std::string name = step();
    if (name.empty())
      continue;
    last.append(QString::fromStdString(name));
    if (last.size() > 12)
      last.removeFirst();
    const std::string wrong = difference();
    ASSERT_TRUE(wrong.empty()) << "seed " << GetParam() << ", step " << done << ": " << wrong
                               << "after " << last.join(u", "_s).toStdString();
    ++done;
  }
  // The walk led to everything that there is to see.
  EXPECT_GT(model.actions, 100);
  EXPECT_GT(toggles, 20);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RollOverButtonWalk, ::testing::Values(1U, 6U, 20260U));
