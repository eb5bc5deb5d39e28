#include "app/display/StripSight.h"

#include <QtCore/QEvent>
#include <QtWidgets/QWidget>

namespace zq::app {

StripSight::StripSight(QWidget& window) : window_(window) {
  window.installEventFilter(this);
  update();
}

StripSight::~StripSight() = default;

bool StripSight::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
  case QEvent::Show:
  case QEvent::Hide:
  case QEvent::WindowStateChange:
    update();
    break;
  default:
    break;
  }
  return false;
}

void StripSight::update() {
  const bool isInSight = window_.isVisible() && !window_.isMinimized();
  if (isInSight == isInSight_)
    return;
  isInSight_ = isInSight;
  Q_EMIT changed(isInSight);
}

} // namespace zq::app
