// Which moves of a floating strip are remembered, without a window system.
#include "app/ticker/StripPlace.h"

#include "app/display/FrameClock.h"
#include "app/display/StripWidget.h"
#include "app/display/TickerDisplay.h"
#include "app/settings/ChosenScreen.h"
#include "app/ticker/window_place.h"
#include "tests/support/LogWatch.h"

#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace zq::app;

namespace {
class FloatingPlace : public ::testing::Test {
 protected:
  FloatingPlace() {
    zq::testing::allowLog(u"does not support raise()"_s);
    zq::testing::allowLog(u"does not support propagateSizeHints()"_s);
    options_.edge = Edge::Floating;
  }

  void start(const MovingTimes& times) {
    place_.emplace(widget_, screen_, file(), times);
    take();
    widget_.show();
    QApplication::processEvents();
    usual_ = widget_.pos();
  }
  void take() { place_->take(options_, lookIn(place_->room(), options_)); }

  // Runs the event loop until a timer that begins now has ended, and so all that had to end before.
  static void passMoving() {
    QEventLoop loop;
    QTimer::singleShot(Moving, &loop, &QEventLoop::quit);
    loop.exec();
  }
  std::optional<QPoint> remembered() const {
    const QSettings state(file(), QSettings::IniFormat);
    if (!state.contains(u"strip/offset"_s))
      return std::nullopt;
    return state.value(u"strip/offset"_s).toPoint();
  }
  void send(QEvent::Type type, QPoint point) {
    QMouseEvent event(type, point, widget_.mapToGlobal(point), Qt::LeftButton, Qt::LeftButton,
                      Qt::MetaModifier);
    QApplication::sendEvent(&widget_, &event);
  }

  static constexpr auto Moving = 1ms;
  static constexpr auto Long = 1h;

  QString file() const { return folder_.filePath(u"windows.ini"_s); }

  QTemporaryDir folder_;
  RunOptions options_;
  ChosenScreen screen_;
  TickerDisplay display_{FrameClock::now()};
  StripWidget widget_{display_, Qt::white};
  std::optional<StripPlace> place_;
  QPoint usual_;
};
} // namespace

TEST_F(FloatingPlace, IsRememberedOnceItHasSettled) {
  start({Moving, 0ms});
  passMoving();
  widget_.move(usual_ - QPoint(20, 30));
  passMoving();
  EXPECT_EQ(remembered(), usual_ - QPoint(20, 30));
}

TEST_F(FloatingPlace, IsNotRememberedWhereNobodyHasMovedItWhileItSettles) {
  start({Moving, Long});
  widget_.move(usual_ - QPoint(20, 30));
  passMoving();
  EXPECT_EQ(remembered(), std::nullopt);
  take();
  EXPECT_EQ(widget_.pos(), usual_) << "it goes where it was";
}

TEST_F(FloatingPlace, IsRememberedWhereTheUserDragsItWhileItSettles) {
  start({Moving, Long});
  send(QEvent::MouseButtonPress, QPoint(5, 5));
  send(QEvent::MouseMove, QPoint(-15, -25));
  EXPECT_EQ(widget_.pos(), usual_ - QPoint(20, 30));
  send(QEvent::MouseButtonRelease, QPoint(5, 5));
  passMoving();
  EXPECT_EQ(remembered(), usual_ - QPoint(20, 30));
}

TEST_F(FloatingPlace, IsNotRememberedWhereItComesBackToItsOwn) {
  start({Moving, 0ms});
  passMoving();
  widget_.move(usual_ - QPoint(20, 30));
  widget_.move(usual_);
  passMoving();
  EXPECT_EQ(remembered(), std::nullopt);
}

TEST_F(FloatingPlace, StaysWhereItIsMovedToWhenItIsPlacedAnew) {
  start({Long, 0ms});
  passMoving();
  widget_.move(usual_ - QPoint(20, 30));
  take();
  EXPECT_EQ(widget_.pos(), usual_ - QPoint(20, 30));
  EXPECT_EQ(remembered(), usual_ - QPoint(20, 30));
}
