// The menu and the keys of the program's strip on a screen.
#pragma once

#include "app/display/StripMenu.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/app/interaction/StripOnScreen.h"

#include <QtGui/QAction>

#include <cmath>

namespace zq::app::testing {

// A strip on a bus, so that commands reach it and it can be hidden.
class StripMenuOnScreen : public StripOnScreen {
 protected:
  void SetUp() override {
    if (!PrivateBus::isInstalled())
      GTEST_SKIP() << "dbus-daemon is not installed";
    bus_.emplace();
    ASSERT_TRUE(bus_->isRunning());
    StripOnScreen::SetUp();
  }
  QProcessEnvironment environment() const override {
    QProcessEnvironment environment = bus_->environment(StripOnScreen::environment());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder_.path());
    return environment;
  }

  // What a tool prints, on one line.
  QString told(const QString& tool, const QStringList& arguments) {
    QProcess process;
    process.setProcessEnvironment(server_->environment());
    process.start(tool, arguments);
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
  }
  void press(const QString& key) { tell({QStringLiteral("key"), key}); }

  // A command of the program, to the running one.
  void ask(const QString& command) {
    RunningProgram program({command}, environment());
    EXPECT_EQ(program.awaitStatus(), 0);
  }
  // Gives the strip the keyboard.
  void focus() {
    ask(QStringLiteral("focus"));
    ASSERT_TRUE(waitUntil([&] {
      return told(QStringLiteral("xdotool"),
                  {QStringLiteral("getactivewindow"), QStringLiteral("getwindowname")}) ==
             QLatin1String("zqticker");
    }));
  }

  // The windows of the program in sight, by number.
  QStringList windows() {
    return told(QStringLiteral("xdotool"),
                {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                 QStringLiteral("--class"), QStringLiteral("zqticker")})
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  }
  QRect placeOfWindow(const QString& window) {
    // X=1, Y=2, WIDTH=3, HEIGHT=4 among other lines.
    int numbers[4] = {};
    const QStringList names{QStringLiteral("X="), QStringLiteral("Y="), QStringLiteral("WIDTH="),
                            QStringLiteral("HEIGHT=")};
    for (const QString& line : told(QStringLiteral("xdotool"), {QStringLiteral("getwindowgeometry"),
                                                                QStringLiteral("--shell"), window})
                                   .split(QLatin1Char('\n')))
      for (int i = 0; i < 4; ++i)
        if (line.startsWith(names[i]))
          numbers[i] = line.mid(names[i].size()).toInt();
    return QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
  }

  // Opens the menu under the right button, where that is.
  void openMenu(int x) {
    known_ = windows();
    moveTo(x);
    button("click", 3);
    menu_ = newWindow();
  }
  // Clicks `action` of the menu that was opened last, which looks as `like` does.
  void click(const QMenu& like, const QAction& action) {
    const QRect item = like.actionGeometry(const_cast<QAction*>(&action));
    ASSERT_FALSE(item.isEmpty());
    // Fonts may be larger there.
    const double scale = double(menu_.height()) / like.sizeHint().height();
    moveTo(menu_.left() + menu_.width() / 2,
           menu_.top() + int(std::lround(item.center().y() * scale)));
    button("click", 1);
  }
  // Opens a menu within the menu.
  void clickMenu(const QMenu& like, const QMenu& inner) {
    known_ = windows();
    click(like, *inner.menuAction());
    menu_ = newWindow();
  }
  // A window that has come and found its place.
  QRect newWindow() {
    QRect place;
    EXPECT_TRUE(waitUntil([&] {
      for (const QString& window : windows())
        if (!known_.contains(window)) {
          const QRect now = placeOfWindow(window);
          const bool rests = now == place;
          place = now;
          return rests && !now.isEmpty();
        }
      return false;
    }));
    return place;
  }
  // Whether all menus have gone.
  bool isMenuClosed() {
    return waitUntil([&] { return windows().size() <= 1; });
  }

  std::optional<PrivateBus> bus_;
  QStringList known_;
  QRect menu_; // on the screen
};

} // namespace zq::app::testing
