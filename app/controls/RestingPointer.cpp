#include "app/controls/RestingPointer.h"

#include <QtGui/QCursor>
#include <QtGui/QInputDevice>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

namespace zq::app {

namespace {
// Points by which a hand that holds still may move the pointer.
constexpr double Tremor = 4;

bool isByFinger(const QMouseEvent& event) {
  return event.source() != Qt::MouseEventNotSynthesized ||
         (event.device() && event.device()->type() == QInputDevice::DeviceType::TouchScreen);
}
} // namespace

RestingPointer::RestingPointer(QWidget* widget) : widget_(widget) {
  widget->setMouseTracking(true);
  widget->installEventFilter(this);
  for (QTimer* timer : {&rest_, &end_}) {
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
  }
  connect(&rest_, &QTimer::timeout, this, [this] { setResting(true); });
  connect(&end_, &QTimer::timeout, this, [this] { setResting(false); });
}

RestingPointer::~RestingPointer() = default;

void RestingPointer::watchPresses(QWidget* part) {
  part->installEventFilter(this);
}

bool RestingPointer::eventFilter(QObject* receiver, QEvent* event) {
  if (receiver != widget_ && event->type() != QEvent::MouseButtonPress)
    return false;
  switch (event->type()) {
  case QEvent::Enter:
    enter(static_cast<QEnterEvent*>(event)->globalPosition());
    break;
  case QEvent::MouseMove:
    move(*static_cast<QMouseEvent*>(event));
    break;
  case QEvent::MouseButtonPress:
    press(*static_cast<QMouseEvent*>(event));
    break;
  case QEvent::Leave:
    leave();
    break;
  case QEvent::Hide:
    reset();
    break;
  default:
    break;
  }
  return false;
}

void RestingPointer::enter(QPointF place) {
  isInside_ = true;
  isByTouch_ = false;
  place_ = place;
  end_.stop();
  if (!isResting_ && !isHeld_)
    rest_.start(RestMilliseconds);
}

void RestingPointer::move(const QMouseEvent& event) {
  if (isByFinger(event))
    return;
  const QPointF way = event.globalPosition() - place_;
  if (isInside_ && way.manhattanLength() <= Tremor)
    return;
  enter(event.globalPosition());
}

void RestingPointer::press(const QMouseEvent& event) {
  if (event.button() != Qt::LeftButton || isHeld_)
    return;
  rest_.stop();
  isByTouch_ = isByFinger(event);
  setResting(true);
  // Whatever the toolkit made of it, nothing is over the widget once the finger is off.
  if (isByTouch_)
    isInside_ = false;
  awaitEnd();
}

void RestingPointer::leave() {
  rest_.stop();
  isInside_ = false;
  awaitEnd();
}

void RestingPointer::reset() {
  rest_.stop();
  end_.stop();
  isInside_ = isByTouch_ = false;
  setResting(false);
}

void RestingPointer::setHeld(bool held) {
  if (held == isHeld_)
    return;
  isHeld_ = held;
  rest_.stop();
  end_.stop();
  if (held)
    return;
  // What held it may have kept enters and leaves to itself.
  if (!isByTouch_ && isInside())
    enter(QCursor::pos());
  else
    leave();
}

bool RestingPointer::isInside() const {
  const QWidget* under = QApplication::widgetAt(QCursor::pos());
  return under && (under == widget_ || widget_->isAncestorOf(under));
}

void RestingPointer::awaitEnd() {
  if (isResting_ && !isHeld_ && !isInside_)
    end_.start(isByTouch_ ? TapMilliseconds : LeaveMilliseconds);
}

void RestingPointer::setResting(bool resting) {
  if (resting == isResting_)
    return;
  isResting_ = resting;
  Q_EMIT restingChanged(resting);
}

} // namespace zq::app
