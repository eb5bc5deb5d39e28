#include "zqticker/platform/controls/MenuPopUp_p.h"

#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/Menu.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QMenu>

namespace zq::platform {

MenuPopUp::MenuPopUp(const Ref<Menu>& menu, QMenu* widget, ControlView* view, bool swallowsRelease)
    : menu_(menu), widget_(widget), view_(view), swallowsRelease_(swallowsRelease) {
  connect(widget, &QMenu::aboutToHide, this, &MenuPopUp::close);
  connect(widget, &QObject::destroyed, this, &MenuPopUp::close);
  // The release may go to the menu, to a menu below it or to the view that was pressed.
  if (swallowsRelease)
    QCoreApplication::instance()->installEventFilter(this);
}

MenuPopUp::~MenuPopUp() = default;

bool MenuPopUp::show(QPointF globalPosition) {
  const QPointer<MenuPopUp> alive = this;
  isOpen_ = true;
  if (ControlView* view = view_.get())
    view->menuDidOpen(*menu_);
  if (!alive || !isOpen_)
    return false;
  widget_->popup(globalPosition.toPoint());
  if (!alive || !isOpen_)
    return false;
  if (!widget_->isVisible())
    close();
  return isOpen_;
}

bool MenuPopUp::eventFilter(QObject* receiver, QEvent* event) {
  if (!swallowsRelease_ || !receiver->isWidgetType())
    return false;
  const bool isPress = event->type() == QEvent::MouseButtonPress;
  if ((!isPress && event->type() != QEvent::MouseButtonRelease) ||
      static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton)
    return false;
  // Either the release has come, or it went elsewhere.
  swallowsRelease_ = false;
  return !isPress && qobject_cast<QMenu*>(receiver);
}

void MenuPopUp::close() {
  if (!isOpen_)
    return;
  isOpen_ = false;
  swallowsRelease_ = false;
  deleteLater();
  const Ref<Menu> menu = menu_;
  if (ControlView* view = view_.get())
    view->menuDidClose(*menu);
}

} // namespace zq::platform
