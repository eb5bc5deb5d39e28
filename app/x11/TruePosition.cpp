#include "app/x11/TruePosition.h"

#include <QtCore/QEvent>
#include <QtWidgets/QWidget>

#include <cstdlib>

namespace zq::app {

namespace {
constexpr std::uint8_t EventType = 0x7f; // without the bit of events that another client has sent

template <class Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
  return {reply, &std::free};
}
} // namespace

TruePosition::TruePosition(QWidget& window) : widget_(window), connection_(XConnection::shared()) {
  if (!connection_)
    return;
  connect(connection_.get(), &XConnection::received, this, &TruePosition::receive);
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
  window_ = static_cast<xcb_window_t>(widget_.internalWinId());
  frame_ = XCB_WINDOW_NONE;
  xcb_connection_t* qt = XConnection::ofQt();
  if (window_ == XCB_WINDOW_NONE || !qt)
    return;
  // The server has made the window once it answers.
  owned(xcb_get_geometry_reply(qt, xcb_get_geometry(qt, window_), nullptr));
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
  switch (event->response_type & EventType) {
  case XCB_REPARENT_NOTIFY:
    if (reinterpret_cast<const xcb_reparent_notify_event_t*>(event)->window != window_)
      return;
    findFrame();
    tellSoon();
    break;
  case XCB_CONFIGURE_NOTIFY: {
    const auto changed = reinterpret_cast<const xcb_configure_notify_event_t*>(event)->window;
    if (changed != XCB_WINDOW_NONE && (changed == window_ || changed == frame_))
      tellSoon();
    break;
  }
  default:
    break;
  }
}

void TruePosition::tellSoon() {
  if (isDue_)
    return;
  isDue_ = true;
  QMetaObject::invokeMethod(
      this,
      [this] {
        isDue_ = false;
        tell();
      },
      Qt::QueuedConnection);
}

// By an event such as window managers send: it goes to the connection that has made the window.
void TruePosition::tell() {
  xcb_connection_t* x = connection_->get();
  const auto asked = xcb_get_geometry(x, window_);
  const auto corner = owned(xcb_translate_coordinates_reply(
      x, xcb_translate_coordinates(x, window_, connection_->screen()->root, 0, 0), nullptr));
  const auto size = owned(xcb_get_geometry_reply(x, asked, nullptr));
  if (corner && size) {
    xcb_configure_notify_event_t event{};
    event.response_type = XCB_CONFIGURE_NOTIFY;
    event.event = window_;
    event.window = window_;
    event.x = corner->dst_x;
    event.y = corner->dst_y;
    event.width = size->width;
    event.height = size->height;
    xcb_send_event(x, false, window_, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&event));
    Q_EMIT told(QRect(event.x, event.y, event.width, event.height));
  }
  connection_->flush();
}

} // namespace zq::app
