// A strip that floats over the other windows, on a real X server with a window manager.
#include "tests/app/x11/StripOnDesk.h"

#include <QtCore/QSettings>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 900;
constexpr int Height = 400;
const QRect Usual(300, Height - 1 - 48 - 23, 300, 24);

class FloatingStrip : public StripOnDesk {
 protected:
  FloatingStrip() : StripOnDesk(QSize(Width, Height)) {}

  static QStringList floating(const QStringList& more = {}) {
    return strip(QStringList{u"--position"_s, u"floating"_s} + more);
  }
  void drag(QPoint from, QPoint to, const QString& key) {
    const auto at = [](QPoint point) {
      return QStringList{u"mousemove"_s, QString::number(point.x()), QString::number(point.y())};
    };
    desk_->ask(u"xdotool"_s, at(from) + QStringList{u"keydown"_s, key, u"mousedown"_s, u"1"_s} +
                                 at((from + to) / 2) + at(to) +
                                 QStringList{u"mouseup"_s, u"1"_s, u"keyup"_s, key});
  }
  QPoint remembered() const {
    return QSettings(folder_.filePath(u"zqticker/windows.ini"_s), QSettings::IniFormat)
        .value(u"strip/offset"_s)
        .toPoint();
  }
};
} // namespace

TEST_F(FloatingStrip, TakesAThirdOfTheScreenAndReservesNothing) {
  RunningProgram program(floating(), environment_);
  EXPECT_TRUE(stripIsAt(Usual));
  const QString window = awaitStrip();
  EXPECT_EQ(desk_->stripRoom(), QString());
  EXPECT_TRUE(desk_->property(window, u"_NET_WM_STATE"_s).contains(u"ABOVE"_s));
  EXPECT_EQ(desk_->property(window, u"_NET_WM_DESKTOP"_s), u"4294967295"_s);
  EXPECT_NE(desk_->ask(u"xdotool"_s, {u"getwindowfocus"_s}), window);
}

TEST_F(FloatingStrip, StandsUprightWhereItsSignsScrollUp) {
  RunningProgram program(floating({u"--direction"_s, u"vertical"_s, u"--width"_s, u"100"_s}),
                         environment_);
  EXPECT_TRUE(stripIsAt(QRect(Width - 48 - 100, 133, 100, 134)));
}

TEST_F(FloatingStrip, IsMovedByDraggingWithAKeyAndComesBackThere) {
  const QPoint grip = Usual.topLeft() + QPoint(40, 10);
  const QRect moved = Usual.translated(-200, -150);
  {
    RunningProgram program(floating(), environment_);
    ASSERT_TRUE(stripIsAt(Usual));
    drag(grip, grip + QPoint(-200, -150), u"super"_s);
    EXPECT_TRUE(stripIsAt(moved));
    EXPECT_TRUE(waitUntil([&] { return remembered() == moved.topLeft(); }));
    program.interrupt(SIGINT);
    EXPECT_EQ(program.awaitStatus(), 0);
  }
  RunningProgram program(floating(), environment_);
  EXPECT_TRUE(stripIsAt(moved));
}

TEST_F(FloatingStrip, IsMovedByTheWindowManagersOwnKey) {
  const QPoint grip = Usual.topLeft() + QPoint(40, 10);
  RunningProgram program(floating(), environment_);
  ASSERT_TRUE(stripIsAt(Usual));
  const auto moveTo = [&](QPoint point) {
    return QStringList{u"mousemove"_s, QString::number(point.x()), QString::number(point.y())};
  };
  desk_->ask(u"xdotool"_s,
             moveTo(grip) + QStringList{u"keydown"_s, u"alt"_s, u"mousedown"_s, u"1"_s});
  // It begins after some steps, once the window manager has seen the press.
  int step = 0;
  EXPECT_TRUE(waitUntil([&] {
    step = step % 100 + 1;
    desk_->ask(u"xdotool"_s, moveTo(grip - QPoint(0, step)));
    return desk_->strip() != Usual;
  }));
  // The button tells the user's move from the window manager's own.
  EXPECT_TRUE(waitUntil([&] { return remembered() == desk_->strip().topLeft(); }));
  desk_->ask(u"xdotool"_s, {u"mouseup"_s, u"1"_s, u"keyup"_s, u"alt"_s});
}

TEST_F(FloatingStrip, ComesBackInsideTheScreen) {
  {
    QSettings state(folder_.filePath(u"zqticker/windows.ini"_s), QSettings::IniFormat);
    state.setValue(u"strip/screen"_s, u"screen"_s);
    state.setValue(u"strip/offset"_s, QPoint(5000, -70));
  }
  RunningProgram program(floating(), environment_);
  EXPECT_TRUE(stripIsAt(QRect(600, 0, 300, 24)));
}

TEST_F(FloatingStrip, WaitsOnThePrimaryScreenForItsOwn) {
  desk_->setMonitor(u"LEFT"_s, QRect(0, 0, 450, Height), u"screen"_s);
  desk_->setMonitor(u"RIGHT"_s, QRect(450, 0, 450, Height), u"none"_s);
  {
    QSettings state(folder_.filePath(u"zqticker/windows.ini"_s), QSettings::IniFormat);
    state.setValue(u"strip/screen"_s, u"RIGHT"_s);
    state.setValue(u"strip/offset"_s, QPoint(100, 50));
  }
  RunningProgram program(floating(), environment_);
  ASSERT_TRUE(stripIsAt(QRect(550, 50, 150, 24)));
  desk_->removeMonitor(u"RIGHT"_s);
  EXPECT_TRUE(stripIsAt(QRect(100, 50, 150, 24)));
  desk_->setMonitor(u"RIGHT"_s, QRect(450, 0, 450, Height), u"none"_s);
  EXPECT_TRUE(stripIsAt(QRect(550, 50, 150, 24)));
  EXPECT_EQ(remembered(), QPoint(100, 50)) << "nobody has moved it";
}

TEST_F(FloatingStrip, BecomesADockAndFloatsAgainByTheSetting) {
  RunningProgram program({u"--separate"_s, u"--text"_s, u" . "_s}, environment_);
  const QRect docked(0, Height - 24, Width, 24);
  const QString free = u"0, 0, %1, %2"_s.arg(Width).arg(Height);
  const QString taken = u"0, 0, %1, %2"_s.arg(Width).arg(Height - 24);
  const auto room = [&] { return desk_->property({}, u"_NET_WORKAREA"_s); };
  ASSERT_TRUE(stripIsAt(docked));
  EXPECT_TRUE(waitUntil([&] { return room().startsWith(taken); }));
  set(u"position"_s, u"floating"_s);
  EXPECT_TRUE(stripIsAt(Usual));
  EXPECT_TRUE(waitUntil([&] { return room().startsWith(free); }));
  set(u"position"_s, u"bottom"_s);
  EXPECT_TRUE(stripIsAt(docked));
  EXPECT_TRUE(waitUntil([&] { return room().startsWith(taken); }));
}
