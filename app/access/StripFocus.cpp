#include "app/access/StripFocus.h"

#include "app/access/FocusRing.h"
#include "app/x11/active_window.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

namespace zq::app {

StripFocus::StripFocus(QWidget& window) : window_(window), ring_(new FocusRing(&window)) {
  window.installEventFilter(this);
}

StripFocus::~StripFocus() = default;

void StripFocus::take() {
  QWindow* handle = window_.windowHandle();
  if (!window_.isVisible() || !handle)
    return;
  isAwaited_ = !handle->isExposed();
  if (isAwaited_)
    handle->installEventFilter(this);
  else
    ask();
}

void StripFocus::ask() {
  isAwaited_ = false;
  accept(true);
  if (!isOnXServer()) {
    window_.activateWindow();
    return;
  }
  const WId active = activeWindow();
  if (active != window_.winId())
    before_ = active;
  activateWindow(window_.winId());
}

void StripFocus::giveBack() {
  if (!isTaken_)
    return;
  // First, so that the window manager does not choose this window again.
  accept(false);
  if (isOnXServer() && !activateWindow(before_))
    leaveKeyboard();
}

// The widget's own flags stay: to change them would take the window off the screen.
void StripFocus::accept(bool acceptsFocus) {
  if (QWindow* handle = window_.windowHandle())
    handle->setFlag(Qt::WindowDoesNotAcceptFocus, !acceptsFocus);
}

void StripFocus::setTaken(bool isTaken) {
  if (isTaken == isTaken_)
    return;
  isTaken_ = isTaken;
  if (!isTaken) {
    accept(false);
    before_ = 0;
  }
  ring_->setVisible(isTaken);
  Q_EMIT changed(isTaken);
}

bool StripFocus::eventFilter(QObject* receiver, QEvent* event) {
  if (receiver != &window_) {
    const auto* handle = qobject_cast<QWindow*>(receiver);
    if (isAwaited_ && event->type() == QEvent::Expose && handle->isExposed())
      ask();
    return false;
  }
  switch (event->type()) {
  case QEvent::WindowActivate:
    setTaken(true);
    break;
  case QEvent::WindowDeactivate:
    setTaken(false);
    break;
  case QEvent::Hide:
    isAwaited_ = false;
    break;
  case QEvent::KeyPress:
    if (const auto* key = static_cast<QKeyEvent*>(event);
        key->key() == Qt::Key_Escape && key->modifiers() == Qt::NoModifier && isTaken_) {
      giveBack();
      return true;
    }
    break;
  default:
    break;
  }
  return false;
}

} // namespace zq::app
