#include "zqticker/platform/controls/PointerMonitor_p.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QThread>
#include <QtGui/QCursor>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

using namespace Qt::StringLiterals;

namespace zq::platform {

PointerPlace PointerPlace::now() {
  // There the place of a pointer that has left the program's windows is not known.
  if (QGuiApplication::platformName().startsWith("wayland"_L1))
    return {};
  const QPoint position = QCursor::pos();
  const QWidget* widget = QApplication::widgetAt(position);
  for (const QWidget* owner : {QApplication::activePopupWidget(), QWidget::mouseGrabber()})
    if (owner && widget != owner && !(widget && owner->isAncestorOf(widget)))
      widget = nullptr;
  return {widget, position};
}

std::optional<QPointF> PointerPlace::over(const QWidget* view) const {
  if (!widget || !view->isVisible() || (widget != view && !view->isAncestorOf(widget)))
    return std::nullopt;
  return view->mapFromGlobal(globalPosition);
}

PointerMonitor::PointerMonitor() = default;

PointerMonitor& PointerMonitor::shared() {
  // Never freed: views may go after the application object.
  static auto* const shared = new PointerMonitor;
  return *shared;
}

void PointerMonitor::addListener() {
  if (++listeners_ > 1)
    return;
  grabber_ = QWidget::mouseGrabber();
  popup_ = QApplication::activePopupWidget();
  const auto* dispatcher = QAbstractEventDispatcher::instance(thread());
  connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &PointerMonitor::look);
  connect(dispatcher, &QAbstractEventDispatcher::awake, this, &PointerMonitor::look);
}

void PointerMonitor::removeListener() {
  if (--listeners_ > 0)
    return;
  if (const auto* dispatcher = QAbstractEventDispatcher::instance(thread()))
    dispatcher->disconnect(this);
}

void PointerMonitor::look() {
  const QWidget* grabber = QWidget::mouseGrabber();
  const QWidget* popup = QApplication::activePopupWidget();
  if (grabber == grabber_ && popup == popup_)
    return;
  grabber_ = grabber;
  popup_ = popup;
  Q_EMIT ownerOfPointerChanged(PointerPlace::now());
}

} // namespace zq::platform
