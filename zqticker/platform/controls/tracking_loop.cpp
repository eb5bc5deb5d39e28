#include "zqticker/platform/controls/tracking_loop_p.h"

#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/mouse_events_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QWidget>

#include <cmath>
#include <exception>
#include <utility>

namespace zq::platform {

namespace {

class TrackingLoop : public QObject {
 public:
  TrackingLoop(TrackingSession& session, QWidget* widget) : session_(session), widget_(widget) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this,
            [this] { perform([this] { session_.reachDeadline(); }); });
    connect(widget, &QObject::destroyed, this, [this] { finish(); });
  }

  void run() {
    restartTimer();
    QCoreApplication::instance()->installEventFilter(this);
    loop_.exec();
    QCoreApplication::instance()->removeEventFilter(this);
    session_.cancel();
    // What an action raised could not pass through the event loop.
    if (exception_)
      std::rethrow_exception(exception_);
  }

  bool eventFilter(QObject* receiver, QEvent* event) override {
    if (!widget_ || !receiver->isWidgetType())
      return false;
    const bool isOfTracking = (event->type() == QEvent::MouseMove &&
                               (static_cast<QMouseEvent*>(event)->buttons() & Qt::LeftButton)) ||
                              (event->type() == QEvent::MouseButtonRelease &&
                               static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton);
    if (!isOfTracking)
      return false;
    const Event converted = eventOf(*static_cast<QMouseEvent*>(event), *widget_);
    perform([&] { session_.handleEvent(converted); });
    return true;
  }

 private:
  template <class Step>
  void perform(Step step) {
    timer_.stop();
    try {
      step();
    } catch (...) {
      exception_ = std::current_exception();
    }
    if (session_.result() == TrackingSession::Result::Running)
      restartTimer();
    else
      finish();
  }

  void restartTimer() {
    if (const std::optional<int> milliseconds = millisecondsToDeadline(session_))
      timer_.start(*milliseconds);
  }

  void finish() {
    timer_.stop();
    loop_.quit();
  }

  TrackingSession& session_;
  QPointer<QWidget> widget_;
  QEventLoop loop_;
  QTimer timer_;
  std::exception_ptr exception_;
};

} // namespace

std::optional<int> millisecondsToDeadline(const TrackingSession& session) {
  const std::optional<double> seconds = session.secondsToDeadline();
  // As long as a timer can run, some 24 days.
  constexpr double longest = 2'147'483;
  if (!seconds || *seconds > longest)
    return std::nullopt;
  return int(std::ceil(*seconds * 1000));
}

TrackingSession::Result runToItsEnd(TrackingSession& session, ControlView* view) {
  QWidget* widget = view ? view->widget() : nullptr;
  if (widget) {
    const Weak<ControlView> guard = view;
    if (session.start() == TrackingSession::Result::Running && guard)
      TrackingLoop(session, widget).run();
  }
  session.cancel();
  return session.result();
}

} // namespace zq::platform
