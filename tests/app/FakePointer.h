// What a pointer or a finger does to a widget, as the toolkit tells it. The place where the toolkit
// finds the pointer stays.
#pragma once

#include <QtGui/QEnterEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

namespace zq::app::testing {

inline void enter(QWidget& widget, QPointF point = {5, 5}) {
  QEnterEvent event(point, widget.mapTo(widget.window(), point), widget.mapToGlobal(point));
  QApplication::sendEvent(&widget, &event);
  // Buttons hear of it once the toolkit is through with it.
  QCoreApplication::sendPostedEvents();
}

inline void leave(QWidget& widget) {
  QEvent event(QEvent::Leave);
  QApplication::sendEvent(&widget, &event);
  QCoreApplication::sendPostedEvents();
}

inline void send(QWidget& widget, QEvent::Type type, QPointF point, Qt::MouseButton button,
                 Qt::MouseButtons buttons,
                 Qt::MouseEventSource source = Qt::MouseEventNotSynthesized) {
  QMouseEvent event(type, point, widget.mapTo(widget.window(), point), widget.mapToGlobal(point),
                    button, buttons, Qt::NoModifier, source);
  QApplication::sendEvent(&widget, &event);
}

inline void move(QWidget& widget, QPointF point) {
  send(widget, QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton);
}

inline void press(QWidget& widget, QPointF point = {5, 5},
                  Qt::MouseButton button = Qt::LeftButton) {
  send(widget, QEvent::MouseButtonPress, point, button, button);
}

inline void release(QWidget& widget, QPointF point = {5, 5},
                    Qt::MouseButton button = Qt::LeftButton) {
  send(widget, QEvent::MouseButtonRelease, point, button, Qt::NoButton);
}

// A press and a release that the toolkit makes of a touch.
inline void tap(QWidget& widget, QPointF point = {5, 5}) {
  send(widget, QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton,
       Qt::MouseEventSynthesizedByQt);
  send(widget, QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton,
       Qt::MouseEventSynthesizedByQt);
}

} // namespace zq::app::testing
