#include "app/display/StripSurface.h"

#include "app/x11/PixmapSurface.h"
#include "app/x11/XConnection.h"

#include <QtCore/QChildEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

namespace zq::app {

StripSurface::StripSurface(QWidget& window) : window_(window) {
  window.installEventFilter(this);
  for (QObject* child : window.children())
    child->installEventFilter(this);
}

StripSurface::~StripSurface() = default;

void StripSurface::show(const StripFrame& frame, const QColor& background) {
  if (way_ == Way::Painter || !isAlone(background) || !showNatively(frame, background))
    window_.repaint();
}

// The requests of Qt and ours go to the server on two connections, whose order it does not keep:
// whenever the way changes the one waits for the other.
void StripSurface::paint(const QPaintEvent& event, const StripFrame& frame,
                         const QColor& background) {
  awaitNative();
  isPaintedDue_ = true;
  if (event.region().contains(window_.rect()))
    isStoreOld_ = false;
  const double scale = window_.devicePixelRatioF();
  QPainter painter(&window_);
  painter.scale(1 / scale, 1 / scale);
  paintFrame(painter, frame, background);
}

// Whether the frame is all that the window shows, and hides all that is below.
bool StripSurface::isAlone(const QColor& background) const {
  if (background.alpha() < 255 || window_.testAttribute(Qt::WA_TranslucentBackground))
    return false;
  for (const QObject* object : window_.children())
    if (object->isWidgetType()) {
      const auto* child = static_cast<const QWidget*>(object);
      if (!child->isWindow() && child->isVisible())
        return false;
    }
  return true;
}

bool StripSurface::showNatively(const StripFrame& frame, const QColor& background) {
  if (!prepareNative())
    return false;
  awaitPainted();
  if (!native_->show(frame, background))
    return false;
  isNativeDue_ = isStoreOld_ = true;
  ++nativeCount_;
  return true;
}

bool StripSurface::prepareNative() {
  const auto id = static_cast<unsigned long>(window_.internalWinId());
  if (native_ && id != native_->window())
    dropNative();
  QWindow* handle = window_.windowHandle();
  if (isLost_ || id == 0 || !handle || !handle->isExposed())
    return false;
  if (native_ || id == tried_)
    return native_ != nullptr;
  tried_ = id;
  const std::shared_ptr<XConnection> connection = XConnection::shared();
  if (!connection)
    return false;
  native_ = PixmapSurface::make(connection, static_cast<xcb_window_t>(id));
  if (!native_)
    return false;
  connect(connection.get(), &XConnection::lost, this, &StripSurface::lose,
          static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection));
  if (handle != handle_) {
    if (handle_)
      handle_->removeEventFilter(this);
    handle_ = handle;
    handle->installEventFilter(this);
  }
  return true;
}

void StripSurface::awaitNative() {
  if (isNativeDue_ && native_)
    native_->await();
  isNativeDue_ = false;
}

void StripSurface::awaitPainted() {
  if (!isPaintedDue_)
    return;
  if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
    awaitServer(x11->connection());
  isPaintedDue_ = false;
}

void StripSurface::dropNative() {
  native_.reset();
  tried_ = 0;
}

void StripSurface::lose() {
  isLost_ = true;
  dropNative();
  window_.update();
}

bool StripSurface::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
  case QEvent::Expose:
    // The window's own picture of itself is older than what was shown; all of it is painted anew
    // before any of it is shown again.
    if (watched == handle_ && isStoreOld_)
      window_.update();
    break;
  case QEvent::WinIdChange:
  case QEvent::Hide:
    if (watched == &window_)
      dropNative();
    break;
  case QEvent::ChildAdded:
    if (watched == &window_)
      static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
    break;
  case QEvent::Show:
    // A part of the window that is painted from now on.
    if (watched != &window_ && watched != handle_)
      awaitNative();
    break;
  default:
    break;
  }
  return false;
}

} // namespace zq::app
