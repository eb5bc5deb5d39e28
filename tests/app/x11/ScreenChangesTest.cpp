// The strip where its screen changes, is tiny, or has no window manager, and among windows that are
// raised.
#include "tests/app/x11/StripOnDesk.h"

#include <QtCore/QFile>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 1000;
constexpr int Height = 400;
constexpr int Split = 600; // where the right screen begins
constexpr QRgb Ground = 0x123456;
const QRgb OtherGround = qRgb(90, 110, 90) & 0xffffff;
const QRect Docked(0, 376, Width, 24);
const QRect Floating(333, Height - 48 - 24, 334, 24);
const QString DockedRoom = u"0, 0, 0, 24, 0, 0, 0, 0, 0, 0, 0, 999"_s;

class ChangingScreen : public StripOnDesk {
 protected:
  explicit ChangingScreen(QSize screen = QSize(Width, Height),
                          XServer::Manager manager = XServer::Manager::Installed)
      : StripOnDesk(screen, manager) {}

  void splitScreen() {
    desk_->setMonitor(u"LEFT"_s, QRect(0, 0, Split, Height), u"screen"_s);
    desk_->setMonitor(u"RIGHT"_s, QRect(Split, 0, Width - Split, Height), u"none"_s);
  }
  static QStringList moving(const QStringList& more = {}) {
    return QStringList{u"--separate"_s,   u"--text"_s,  u"A strip that moves"_s,
                       u"--background"_s, u"#123456"_s, u"--continuous"_s,
                       u"--speed"_s,      u"200"_s} +
           more;
  }
  // Whether what `rect` shows comes to be another picture.
  bool moves(const QRect& rect) const {
    const QImage before = server_->screenshot().copy(rect);
    return waitUntil([&] { return server_->screenshot().copy(rect) != before; });
  }
  QRgb pixel(QPoint point) const { return server_->screenshot().pixel(point) & 0xffffff; }
  void expectQuietEnd(RunningProgram& program) {
    program.interrupt(SIGINT);
    EXPECT_EQ(program.awaitStatus(), 0);
    EXPECT_EQ(program.process().readAllStandardError(), "");
  }
};

class UnmanagedScreen : public ChangingScreen {
 protected:
  UnmanagedScreen() : ChangingScreen(QSize(Width, Height), XServer::Manager::None) {}
};

class TinyScreen : public ChangingScreen {
 protected:
  TinyScreen() : ChangingScreen(QSize(Width, 1)) {}
};
} // namespace

TEST_F(ChangingScreen, MayBeUnpluggedWhileSignsMove) {
  splitScreen();
  set(u"screen"_s, u"RIGHT"_s);
  const QString trace = folder_.filePath(u"trace.csv"_s);
  RunningProgram program(moving({u"--trace"_s, trace}), environment_);
  const QRect right(Split, 376, Width - Split, 24);
  const QRect left(0, 376, Split, 24);
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(stripIsAt(right));
    EXPECT_TRUE(moves(right));
    desk_->removeMonitor(u"RIGHT"_s);
    ASSERT_TRUE(stripIsAt(left));
    EXPECT_TRUE(moves(left));
    splitScreen();
  }
  ASSERT_TRUE(stripIsAt(right));
  EXPECT_TRUE(moves(right));
  expectQuietEnd(program);
  const Outcome checked = runZqticker({u"trace"_s, u"check"_s, trace});
  EXPECT_EQ(checked.status, 0) << checked.output.constData() << checked.errors.constData();
}

TEST_F(ChangingScreen, MayChangeItsSizeWhileSignsMove) {
  RunningProgram program(moving(), environment_);
  ASSERT_TRUE(stripIsAt(Docked));
  ASSERT_TRUE(roomIs(DockedRoom));
  const auto xrandr = [&](const QStringList& arguments) { desk_->ask(u"xrandr"_s, arguments); };
  xrandr({u"--newmode"_s, u"700x300"_s, u"31.5"_s, u"700"_s, u"701"_s, u"702"_s, u"703"_s, u"300"_s,
          u"301"_s, u"302"_s, u"303"_s});
  xrandr({u"--addmode"_s, u"screen"_s, u"700x300"_s});
  xrandr({u"--output"_s, u"screen"_s, u"--mode"_s, u"700x300"_s});
  const QRect smaller(0, 276, 700, 24);
  EXPECT_TRUE(stripIsAt(smaller));
  EXPECT_TRUE(roomIs(u"0, 0, 0, 24, 0, 0, 0, 0, 0, 0, 0, 699"_s));
  xrandr({u"--output"_s, u"screen"_s, u"--mode"_s, u"1000x400"_s});
  EXPECT_TRUE(stripIsAt(Docked));
  EXPECT_TRUE(roomIs(DockedRoom));
  EXPECT_TRUE(moves(Docked));
  expectQuietEnd(program);
}

// The pictures of a strip that has come from a screen of another scale are those of one that was
// there from the start.
TEST_F(ChangingScreen, MayHaveAnotherScaleThanTheOneBefore) {
  splitScreen();
  environment_.insert(u"QT_SCREEN_SCALE_FACTORS"_s, u"LEFT=1;RIGHT=2"_s);
  const QStringList still{u"--separate"_s, u"--text"_s,           u"Sharp"_s, u"--background"_s,
                          u"#123456"_s,    u"--reduced-motion"_s, u"on"_s};
  const QRect left(0, 376, Split, 24);
  const QRect right(Split, 352, Width - Split, 48);
  const auto ink = [](const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        count += (image.pixel(x, y) & 0xffffff) == Ground ? 0 : 1;
    return count;
  };
  const auto at = [&](const QRect& rect) { return server_->screenshot().copy(rect); };
  // One that shows its sign, twice the same.
  const auto settled = [&](const QRect& rect) {
    QImage shown;
    EXPECT_TRUE(waitUntil([&] {
      const QImage before = shown;
      shown = at(rect);
      const int count = ink(shown);
      return count > 50 && count < rect.width() * rect.height() / 2 && shown == before;
    }));
    return shown;
  };
  QImage small, large;
  {
    RunningProgram program(still + QStringList{u"--screen"_s, u"LEFT"_s}, environment_);
    ASSERT_TRUE(stripIsAt(left));
    small = settled(left);
  }
  {
    RunningProgram program(still + QStringList{u"--screen"_s, u"RIGHT"_s}, environment_);
    ASSERT_TRUE(stripIsAt(right));
    large = settled(right);
  }
  int fine = 0;
  for (int y = 0; y + 1 < large.height(); y += 2)
    for (int x = 0; x + 1 < large.width(); x += 2)
      fine += large.pixel(x, y) != large.pixel(x + 1, y) ? 1 : 0;
  EXPECT_GT(fine, 20) << "more than doubled pixels";
  RunningProgram program(still, environment_);
  ASSERT_TRUE(stripIsAt(left));
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(waitUntil([&] { return at(left) == small; }));
    set(u"screen"_s, u"RIGHT"_s);
    EXPECT_TRUE(stripIsAt(right));
    EXPECT_TRUE(waitUntil([&] { return at(right) == large; }));
    EXPECT_TRUE(roomIs(u"0, 0, 0, 48, 0, 0, 0, 0, 0, 0, 600, 999"_s));
    set(u"screen"_s, u"primary"_s);
    EXPECT_TRUE(stripIsAt(left));
  }
}

TEST_F(ChangingScreen, HasTheStripAboveWindowsThatAreRaisedLater) {
  const struct {
    QString position;
    QRect strip;
  } cases[] = {{u"bottom"_s, Docked}, {u"floating"_s, Floating}};
  for (const auto& one : cases) {
    RunningProgram program(strip({u"--position"_s, one.position}), environment_);
    ASSERT_TRUE(stripIsAt(one.strip)) << one.position.toStdString();
    startOther({u"window"_s, u"350"_s, u"150"_s, u"300"_s, u"200"_s});
    const QString other = awaitOther();
    ASSERT_FALSE(other.isEmpty());
    // Its lower part lies where the strip is.
    desk_->ask(u"xdotool"_s, {u"windowmove"_s, other, u"350"_s, u"190"_s, u"windowraise"_s, other,
                              u"windowactivate"_s, other});
    ASSERT_TRUE(waitUntil([&] {
      return desk_->rectOf(other).intersects(one.strip) &&
             desk_->ask(u"xdotool"_s, {u"getactivewindow"_s}) == other;
    }));
    const QRect common = desk_->rectOf(other) & one.strip;
    const QPoint above(common.center().x(), one.strip.top() - 3);
    EXPECT_TRUE(waitUntil([&] { return pixel(above) == OtherGround; }));
    EXPECT_TRUE(waitUntil([&] { return pixel(common.center()) == Ground; }))
        << one.position.toStdString();
    endOther();
  }
}

TEST_F(UnmanagedScreen, HasTheStripAtItsEdge) {
  RunningProgram program({u"--separate"_s, u"--text"_s, u" . "_s, u"--continuous"_s}, environment_);
  EXPECT_TRUE(stripIsAt(Docked));
  EXPECT_TRUE(roomIs(DockedRoom));
  set(u"position"_s, u"top"_s);
  EXPECT_TRUE(stripIsAt(QRect(0, 0, Width, 24)));
  EXPECT_TRUE(roomIs(u"0, 0, 24, 0, 0, 0, 0, 0, 0, 999, 0, 0"_s));
  set(u"position"_s, u"floating"_s);
  EXPECT_TRUE(stripIsAt(Floating));
  EXPECT_TRUE(roomIs(QString()));
  set(u"position"_s, u"bottom"_s);
  EXPECT_TRUE(stripIsAt(Docked));
  EXPECT_TRUE(roomIs(DockedRoom));
  expectQuietEnd(program);
}

TEST_F(UnmanagedScreen, MayGetAWindowManagerLater) {
  if (!XServer::hasProgram(u"openbox"_s))
    GTEST_SKIP() << "openbox is not installed";
  RunningProgram program(strip(), environment_);
  ASSERT_TRUE(stripIsAt(Docked));
  server_->startManager();
  EXPECT_TRUE(waitUntil(
      [&] { return desk_->property({}, u"_NET_WORKAREA"_s).startsWith(u"0, 0, 1000, 376"_s); }));
  EXPECT_TRUE(stripIsAt(Docked));
  EXPECT_TRUE(roomIs(DockedRoom));
  expectQuietEnd(program);
}

TEST_F(ChangingScreen, HasAStripOfOnePixel) {
  RunningProgram program(moving({u"--height"_s, u"1"_s}), environment_);
  EXPECT_TRUE(stripIsAt(QRect(0, 399, Width, 1)));
  EXPECT_TRUE(roomIs(u"0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 999"_s));
  EXPECT_TRUE(waitUntil([&] { return pixel(QPoint(2, 399)) == Ground; }));
  expectQuietEnd(program);
}

TEST_F(TinyScreen, HasAStripOfItsSize) {
  RunningProgram program(moving(), environment_);
  EXPECT_TRUE(stripIsAt(QRect(0, 0, Width, 1)));
  EXPECT_TRUE(roomIs(QString())) << "it would be all that there is";
  expectQuietEnd(program);
}
