#include "app/x11/WindowVisibility.h"

#include "app/x11/x_replies.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QWindow>

namespace zq::app {

WindowVisibility::WindowVisibility(QObject* parent) : QObject(parent) {}

WindowVisibility::~WindowVisibility() = default;

void WindowVisibility::watch(QWindow* window) {
  window_ = XCB_WINDOW_NONE;
  setCovered(false);
  auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (!window || !window->handle() || !application)
    return;
  std::shared_ptr<XConnection> connection = XConnection::shared();
  if (!connection)
    return;
  if (connection != connection_) {
    if (connection_)
      connection_->disconnect(this);
    connection_ = connection;
    connect(connection.get(), &XConnection::received, this, &WindowVisibility::receive);
    // Nobody would tell that the window is free again.
    connect(connection.get(), &XConnection::lost, this, [this] { setCovered(false); });
  }
  window_ = static_cast<xcb_window_t>(window->winId());
  // The window must be there before it is named on another connection, and watched before it is
  // shown.
  awaitServer(application->connection());
  connection_->selectEvents(window_, XCB_EVENT_MASK_VISIBILITY_CHANGE);
  awaitServer(connection_->get());
  connection_->flush();
}

void WindowVisibility::receive(const xcb_generic_event_t* event) {
  if (typeOf(*event) != XCB_VISIBILITY_NOTIFY)
    return;
  const auto* told = reinterpret_cast<const xcb_visibility_notify_event_t*>(event);
  if (told->window == window_ && window_ != XCB_WINDOW_NONE)
    setCovered(told->state == XCB_VISIBILITY_FULLY_OBSCURED);
}

void WindowVisibility::setCovered(bool isCovered) {
  if (isCovered == isCovered_)
    return;
  isCovered_ = isCovered;
  Q_EMIT changed();
}

} // namespace zq::app
