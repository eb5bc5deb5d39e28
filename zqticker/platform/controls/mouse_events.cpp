#include "zqticker/platform/controls/mouse_events_p.h"

#include <QtCore/QDeadlineTimer>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QWidget>

namespace zq::platform {

static EventType typeOf(const QMouseEvent& event) {
  const bool isRight = event.button() == Qt::RightButton;
  switch (event.type()) {
  case QEvent::MouseButtonPress:
  case QEvent::MouseButtonDblClick:
    return isRight ? EventType::RightMouseDown : EventType::LeftMouseDown;
  case QEvent::MouseButtonRelease:
    return isRight ? EventType::RightMouseUp : EventType::LeftMouseUp;
  default:
    if (event.buttons() & Qt::LeftButton)
      return EventType::LeftMouseDragged;
    return event.buttons() & Qt::RightButton ? EventType::RightMouseDragged : EventType::MouseMoved;
  }
}

// Counts presses; what follows a press carries its number.
static int numberOf(EventType type) {
  static int presses = 0;
  if (type == EventType::LeftMouseDown || type == EventType::RightMouseDown)
    return ++presses;
  return type == EventType::MouseMoved ? 0 : presses;
}

QPointF windowPointFromGlobal(QPointF globalPosition, const QWidget& widget) {
  const QWidget* window = widget.window();
  const QPointF point = window->mapFromGlobal(globalPosition);
  return {point.x(), window->height() - point.y()};
}

QPointF globalPointFromWindow(QPointF windowPoint, const QWidget& widget) {
  const QWidget* window = widget.window();
  return window->mapToGlobal(QPointF(windowPoint.x(), window->height() - windowPoint.y()));
}

Event eventAt(EventType type, QPointF globalPosition, const QWidget& widget) {
  Event event;
  event.type = type;
  event.locationInWindow = windowPointFromGlobal(globalPosition, widget);
  event.modifierFlags = QGuiApplication::keyboardModifiers();
  event.timestamp = double(QDeadlineTimer::current().deadlineNSecs()) / 1e9;
  event.windowNumber = std::int64_t(widget.window()->internalWinId());
  return event;
}

Event eventOf(const QMouseEvent& mouse, const QWidget& widget) {
  const EventType type = typeOf(mouse);
  Event event = eventAt(type, mouse.globalPosition(), widget);
  event.modifierFlags = mouse.modifiers();
  if (mouse.timestamp() != 0)
    event.timestamp = double(mouse.timestamp()) / 1000;
  event.eventNumber = numberOf(type);
  event.clickCount = mouse.type() == QEvent::MouseButtonDblClick ? 2 : 1;
  if (type == EventType::MouseMoved)
    event.clickCount = 0;
  event.pressure = type == EventType::LeftMouseDown || type == EventType::LeftMouseDragged ? 1 : 0;
  return event;
}

} // namespace zq::platform
