#include "app/x11/TruePosition.h"

#include "app/x11/window_rect.h"
#include "app/x11/x_replies.h"

#include <QtCore/QEvent>
#include <QtWidgets/QWidget>

namespace zq::app {

TruePosition::TruePosition(QWidget& window)
    : widget_(window), telling_([this] {
        if (connection_)
          tell();
      }) {
  window.installEventFilter(this);
  listen();
}

TruePosition::~TruePosition() = default;

bool TruePosition::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::WinIdChange)
    listen();
  return false;
}

void TruePosition::listen() {
  if (const std::shared_ptr<XConnection> present = XConnection::shared(); present != connection_) {
    connection_ = present;
    if (connection_) {
      connect(connection_.get(), &XConnection::received, this, &TruePosition::receive);
      connect(connection_.get(), &XConnection::lost, this, &TruePosition::listen,
              Qt::QueuedConnection);
    }
  }
  window_ = static_cast<xcb_window_t>(widget_.internalWinId());
  frame_ = XCB_WINDOW_NONE;
  xcb_connection_t* qt = XConnection::ofQt();
  if (window_ == XCB_WINDOW_NONE || !qt || !connection_)
    return;
  // The server has made the window once it answers.
  awaitServer(qt);
  connection_->selectEvents(window_, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  findFrame();
}

// The window between this one and the root, on which its place depends.
void TruePosition::findFrame() {
  xcb_connection_t* x = connection_->get();
  frame_ = XCB_WINDOW_NONE;
  for (xcb_window_t inner = window_;;) {
    const auto tree = owned(xcb_query_tree_reply(x, xcb_query_tree(x, inner), nullptr));
    if (!tree || tree->parent == XCB_WINDOW_NONE || tree->parent == tree->root)
      break;
    frame_ = inner = tree->parent;
  }
  if (frame_ != XCB_WINDOW_NONE)
    connection_->selectEvents(frame_, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  connection_->flush();
}

void TruePosition::receive(const xcb_generic_event_t* event) {
  switch (typeOf(*event)) {
  case XCB_REPARENT_NOTIFY:
    if (reinterpret_cast<const xcb_reparent_notify_event_t*>(event)->window != window_)
      return;
    findFrame();
    telling_.request();
    break;
  case XCB_CONFIGURE_NOTIFY: {
    const auto changed = reinterpret_cast<const xcb_configure_notify_event_t*>(event)->window;
    if (changed != XCB_WINDOW_NONE && (changed == window_ || changed == frame_))
      telling_.request();
    break;
  }
  default:
    break;
  }
}

// By an event such as window managers send: it goes to the connection that has made the window.
void TruePosition::tell() {
  xcb_connection_t* x = connection_->get();
  if (const auto place = rectOf(x, askForRect(x, window_, connection_->screen()->root))) {
    xcb_configure_notify_event_t event{};
    event.response_type = XCB_CONFIGURE_NOTIFY;
    event.event = window_;
    event.window = window_;
    event.x = static_cast<std::int16_t>(place->x());
    event.y = static_cast<std::int16_t>(place->y());
    event.width = static_cast<std::uint16_t>(place->width());
    event.height = static_cast<std::uint16_t>(place->height());
    xcb_send_event(x, false, window_, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&event));
  }
  connection_->flush();
}

} // namespace zq::app
