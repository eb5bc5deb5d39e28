#include "app/ticker/FloatingMove.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

namespace zq::app {

FloatingMove::FloatingMove(QWidget& window) : window_(window) {}

FloatingMove::~FloatingMove() = default;

void FloatingMove::setEnabled(bool enabled) {
  if (enabled == isEnabled_)
    return;
  isEnabled_ = enabled;
  held_.reset();
  // The filter that was installed last is asked first.
  if (enabled)
    window_.installEventFilter(this);
  else
    window_.removeEventFilter(this);
}

bool FloatingMove::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
  case QEvent::MouseButtonPress:
    return press(*static_cast<QMouseEvent*>(event));
  case QEvent::MouseMove:
    if (!held_)
      return false;
    window_.move(static_cast<QMouseEvent*>(event)->globalPosition().toPoint() - *held_);
    return true;
  case QEvent::MouseButtonRelease:
    if (!held_)
      return false;
    held_.reset();
    return true;
  default:
    return false;
  }
}

bool FloatingMove::press(const QMouseEvent& event) {
  if (event.button() != Qt::LeftButton ||
      !(event.modifiers() & (Qt::AltModifier | Qt::MetaModifier)))
    return false;
  // An X server lets every window move itself; elsewhere only the compositor can.
  const bool isX11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  QWindow* window = window_.windowHandle();
  if (isX11 || !window || !window->startSystemMove())
    held_ = event.globalPosition().toPoint() - window_.pos();
  return true;
}

} // namespace zq::app
