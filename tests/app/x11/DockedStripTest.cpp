// A strip at an edge among other windows, on a real X server with a window manager.
#include "tests/app/x11/StripOnDesk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 1000;
constexpr int Height = 400;

class DockedStrip : public StripOnDesk {
 protected:
  DockedStrip() : StripOnDesk(QSize(Width, Height)) {}

  // Where a maximised window's frame lies.
  bool otherFills(const QRect& room) {
    return waitUntil([&] {
      const QRect inner = desk_->rectOfOnly(u"other"_s);
      const QStringList frame =
          desk_->property(desk_->windows(u"other"_s).value(0), u"_NET_FRAME_EXTENTS"_s)
              .split(u", "_s);
      return frame.size() == 4 && inner.adjusted(-frame[0].toInt(), -frame[2].toInt(),
                                                 frame[1].toInt(), frame[3].toInt()) == room;
    });
  }
  // The rows or columns of the rects of all strips, from above or from the left.
  std::vector<QRect> allStrips() {
    std::vector<QRect> rects;
    for (const QString& window : desk_->strips())
      rects.push_back(desk_->rectOf(window));
    std::sort(rects.begin(), rects.end(),
              [](const QRect& a, const QRect& b) { return a.top() < b.top(); });
    return rects;
  }
};
} // namespace

TEST_F(DockedStrip, KeepsMaximizedWindowsFromLyingUnderIt) {
  const struct {
    QString position, direction;
    QRect strip, rest;
  } cases[] = {
      {u"bottom"_s, u"horizontal"_s, {0, 376, Width, 24}, {0, 0, Width, 376}},
      {u"top"_s, u"horizontal"_s, {0, 0, Width, 24}, {0, 24, Width, 376}},
      {u"left"_s, u"vertical"_s, {0, 0, 240, Height}, {240, 0, 760, Height}},
      {u"right"_s, u"vertical"_s, {760, 0, 240, Height}, {0, 0, 760, Height}},
  };
  startOther({u"maximized"_s});
  for (const auto& one : cases) {
    RunningProgram program(strip({u"--position"_s, one.position, u"--direction"_s, one.direction}),
                           environment_);
    EXPECT_TRUE(stripIsAt(one.strip)) << one.position.toStdString();
    EXPECT_TRUE(otherFills(one.rest)) << one.position.toStdString();
    program.interrupt(SIGINT);
    EXPECT_EQ(program.awaitStatus(), 0);
    EXPECT_TRUE(otherFills(QRect(0, 0, Width, Height))) << "the room is given back";
  }
}

TEST_F(DockedStrip, IsADockOnEveryDesktopAndInNoList) {
  RunningProgram program(strip(), environment_);
  ASSERT_TRUE(stripIsAt(QRect(0, 376, Width, 24)));
  const QString window = awaitStrip();
  EXPECT_TRUE(
      desk_->property(window, u"_NET_WM_WINDOW_TYPE"_s).startsWith(u"_NET_WM_WINDOW_TYPE_DOCK"_s));
  EXPECT_EQ(desk_->property(window, u"_NET_WM_DESKTOP"_s), u"4294967295"_s);
  const QString state = desk_->property(window, u"_NET_WM_STATE"_s);
  for (const QString& part : {u"SKIP_TASKBAR"_s, u"SKIP_PAGER"_s, u"ABOVE"_s})
    EXPECT_TRUE(state.contains(part)) << state.toStdString();
  EXPECT_EQ(desk_->property(window, u"_NET_WM_STRUT"_s), u"0, 0, 0, 24"_s);
}

TEST_F(DockedStrip, LeavesTheKeyboardToOthers) {
  startOther({u"maximized"_s});
  const auto focus = [&] { return desk_->ask(u"xdotool"_s, {u"getactivewindow"_s}); };
  ASSERT_TRUE(waitUntil([&] {
    const QStringList others = desk_->windows(u"other"_s);
    return others.size() == 1 && focus() == others.first();
  }));
  const QString before = focus();
  RunningProgram program(strip(), environment_);
  ASSERT_TRUE(stripIsAt(QRect(0, 376, Width, 24)));
  ASSERT_TRUE(otherFills(QRect(0, 0, Width, 376)));
  EXPECT_EQ(focus(), before);
  desk_->ask(u"xdotool"_s, {u"mousemove"_s, u"500"_s, u"390"_s, u"click"_s, u"1"_s});
  // The window manager has dealt with the click when it has dealt with what comes after it.
  desk_->ask(u"xdotool"_s, {u"set_num_desktops"_s, u"3"_s});
  ASSERT_TRUE(
      waitUntil([&] { return desk_->ask(u"xdotool"_s, {u"get_num_desktops"_s}) == "3"_L1; }));
  EXPECT_EQ(focus(), before);
}

TEST_F(DockedStrip, ReservesDevicePixels) {
  const struct {
    QString scale;
    QString room;
  } cases[] = {{u"1"_s, u"0, 0, 0, 24, 0, 0, 0, 0, 0, 0, 0, 999"_s},
               {u"1.25"_s, u"0, 0, 0, 30, 0, 0, 0, 0, 0, 0, 0, 999"_s},
               {u"1.5"_s, u"0, 0, 0, 36, 0, 0, 0, 0, 0, 0, 0, 999"_s},
               {u"2"_s, u"0, 0, 0, 48, 0, 0, 0, 0, 0, 0, 0, 999"_s}};
  for (const auto& one : cases) {
    QProcessEnvironment environment = environment_;
    environment.insert(u"QT_SCALE_FACTOR"_s, one.scale);
    RunningProgram program(strip(), environment);
    // Whole points do not always fit into the screen.
    EXPECT_TRUE(waitUntil([&] {
      const QStringList told = desk_->stripRoom().split(u", "_s);
      const QStringList wanted = one.room.split(u", "_s);
      return told.size() == 12 && told.mid(4) == wanted.mid(4) &&
             std::abs(told[3].toInt() - wanted[3].toInt()) <= 1 &&
             desk_->strip().top() == Height - told[3].toInt();
    })) << one.scale.toStdString()
        << ": " << desk_->stripRoom().toStdString();
  }
}

TEST_F(DockedStrip, KeepsItsRoomWhenItGetsAnotherWindow) {
  RunningProgram program({u"--separate"_s, u"--text"_s, u" . "_s}, environment_);
  ASSERT_TRUE(stripIsAt(QRect(0, 376, Width, 24)));
  const QString before = awaitStrip();
  set(u"background"_s, u"#80123456"_s);
  ASSERT_TRUE(waitUntil([&] {
    const QStringList now = desk_->strips();
    return now.size() == 1 && now.first() != before;
  }));
  EXPECT_TRUE(roomIs(u"0, 0, 0, 24, 0, 0, 0, 0, 0, 0, 0, 999"_s));
  EXPECT_TRUE(stripIsAt(QRect(0, 376, Width, 24)));
  startOther({u"maximized"_s});
  EXPECT_TRUE(otherFills(QRect(0, 0, Width, 376)));
}

TEST_F(DockedStrip, StandsOverAStripThatWasThereBefore) {
  RunningProgram first(strip(), environment_);
  ASSERT_TRUE(stripIsAt(QRect(0, 376, Width, 24)));
  {
    RunningProgram second(strip({u"--height"_s, u"30"_s}), environment_);
    const std::vector<QRect> stacked{QRect(0, 346, Width, 30), QRect(0, 376, Width, 24)};
    EXPECT_TRUE(waitUntil([&] { return allStrips() == stacked; }));
    startOther({u"maximized"_s});
    EXPECT_TRUE(otherFills(QRect(0, 0, Width, 346)));
    EXPECT_EQ(allStrips(), stacked);
    first.interrupt(SIGINT);
    EXPECT_EQ(first.awaitStatus(), 0);
    EXPECT_TRUE(stripIsAt(QRect(0, 370, Width, 30))) << "moves down when the lower one has gone";
  }
  EXPECT_TRUE(otherFills(QRect(0, 0, Width, Height)));
}

TEST_F(DockedStrip, StandsOverAPanelThatWasThereBefore) {
  ASSERT_NO_FATAL_FAILURE(startPanel(40));
  RunningProgram program(strip(), environment_);
  EXPECT_TRUE(stripIsAt(QRect(0, 336, Width, 24)));
  EXPECT_TRUE(roomIs(u"0, 0, 0, 64, 0, 0, 0, 0, 0, 0, 0, 999"_s));
  endOther();
  EXPECT_TRUE(stripIsAt(QRect(0, 376, Width, 24)));
}

TEST_F(DockedStrip, MakesRoomForAPanelThatComesLater) {
  RunningProgram program(strip(), environment_);
  ASSERT_TRUE(stripIsAt(QRect(0, 376, Width, 24)));
  ASSERT_NO_FATAL_FAILURE(startPanel(40));
  EXPECT_TRUE(stripIsAt(QRect(0, 336, Width, 24)));
}

TEST_F(DockedStrip, ReservesRoomOnItsScreenAlone) {
  desk_->setMonitor(u"LEFT"_s, QRect(0, 0, 600, 300), u"screen"_s);
  desk_->setMonitor(u"RIGHT"_s, QRect(600, 0, 400, Height), u"none"_s);
  RunningProgram right(strip({u"--screen"_s, u"RIGHT"_s}), environment_);
  EXPECT_TRUE(stripIsAt(QRect(600, 376, 400, 24)));
  EXPECT_TRUE(roomIs(u"0, 0, 0, 24, 0, 0, 0, 0, 0, 0, 600, 999"_s));
  startOther({u"maximized"_s});
  EXPECT_TRUE(waitUntil([&] { return !desk_->rectOfOnly(u"other"_s).isEmpty(); }));
  right.interrupt(SIGINT);
  EXPECT_EQ(right.awaitStatus(), 0);
  // Nothing lies under the left one, whose edge is not that of the whole.
  RunningProgram left(strip({u"--screen"_s, u"LEFT"_s}), environment_);
  EXPECT_TRUE(stripIsAt(QRect(0, 276, 600, 24)));
  EXPECT_TRUE(roomIs(u"0, 0, 0, 124, 0, 0, 0, 0, 0, 0, 0, 599"_s));
  EXPECT_EQ(desk_->property(awaitStrip(), u"_NET_WM_STRUT"_s), QString())
      << "it would take the other screen's room where only that is known";
}

TEST_F(DockedStrip, ReservesNothingBetweenTwoScreens) {
  desk_->setMonitor(u"LEFT"_s, QRect(0, 0, 600, Height), u"screen"_s);
  desk_->setMonitor(u"RIGHT"_s, QRect(600, 0, 400, Height), u"none"_s);
  RunningProgram program(
      strip({u"--screen"_s, u"LEFT"_s, u"--direction"_s, u"vertical"_s, u"--width"_s, u"100"_s}),
      environment_);
  EXPECT_TRUE(stripIsAt(QRect(500, 0, 100, Height)));
  EXPECT_EQ(desk_->stripRoom(), QString());
}
