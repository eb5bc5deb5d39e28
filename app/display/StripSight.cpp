#include "app/display/StripSight.h"

#include <QtCore/QEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

namespace zq::app {

StripSight::StripSight(QWidget& window) : window_(window) {
  window.installEventFilter(this);
  connect(&visibility_, &WindowVisibility::changed, this, &StripSight::update);
  watchWindow();
}

StripSight::~StripSight() = default;

void StripSight::setScreenInSight(bool isInSight) {
  isScreenInSight_ = isInSight;
  update();
}

bool StripSight::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
  case QEvent::WinIdChange:
    watchWindow();
    break;
  case QEvent::Show:
  case QEvent::Hide:
  case QEvent::WindowStateChange:
  case QEvent::Expose:
    update();
    break;
  default:
    break;
  }
  return false;
}

// The window of the window system, which may be made anew. It is exposed once it is on the screen,
// and no longer when a window manager has taken it away.
void StripSight::watchWindow() {
  QWindow* window = window_.internalWinId() != 0 ? window_.windowHandle() : nullptr;
  if (window)
    window->installEventFilter(this);
  visibility_.watch(window);
  update();
}

void StripSight::update() {
  const QWindow* window = window_.windowHandle();
  const bool isInSight = isScreenInSight_ && window_.isVisible() && !window_.isMinimized() &&
                         window && window->isExposed() && !visibility_.isCovered();
  if (isInSight == isInSight_)
    return;
  isInSight_ = isInSight;
  Q_EMIT changed(isInSight);
}

} // namespace zq::app
