#include "zqticker/platform/controls/WindowWatch_p.h"

#include "zqticker/platform/controls/callback_border_p.h"
#include "zqticker/platform/controls/view_notifications.h"
#include "zqticker/platform/system/NotificationCenter.h"

#include <QtCore/QEvent>
#include <QtWidgets/QWidget>

namespace zq::platform {

WindowWatch::WindowWatch(QWidget* window)
    : QObject(window), windowObject_(std::make_shared<Object>()) {
  window->installEventFilter(this);
}

WindowWatch* WindowWatch::of(QWidget* window) {
  if (auto* found = window->findChild<WindowWatch*>(QString(), Qt::FindDirectChildrenOnly))
    return found;
  return new WindowWatch(window);
}

bool WindowWatch::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
  case QEvent::Resize:
    logRaised([object = windowObject_] {
      NotificationCenter::defaultCenter().postNotificationName(WindowDidResizeNotification, object);
    });
    break;
  case QEvent::WindowBlocked:
    Q_EMIT blocked();
    break;
  case QEvent::WindowUnblocked:
    Q_EMIT unblocked();
    break;
  default:
    break;
  }
  return false;
}

Ref<Object> windowObject(QWidget* widget) {
  return widget ? WindowWatch::of(widget->window())->windowObject() : nullptr;
}

} // namespace zq::platform
