#include "app/x11/XConnection.h"

#include "app/x11/x_replies.h"

#include <QtCore/QLoggingCategory>
#include <QtGui/QGuiApplication>

#include <cstdlib>
#include <utility>

namespace zq::app {

namespace {
Q_LOGGING_CATEGORY(x11Log, "zqticker.x11", QtWarningMsg)

xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; number > 0 && screens.rem > 1; --number)
    xcb_screen_next(&screens);
  return screens.rem > 0 ? screens.data : nullptr;
}
} // namespace

std::shared_ptr<XConnection> XConnection::shared() {
  static std::weak_ptr<XConnection> current;
  if (std::shared_ptr<XConnection> present = current.lock(); present && !present->isLost_)
    return present;
  if (!ofQt())
    return nullptr;
  int number = 0;
  xcb_connection_t* connection = xcb_connect(nullptr, &number);
  xcb_screen_t* screen =
      xcb_connection_has_error(connection) ? nullptr : screenOf(connection, number);
  if (!screen) {
    xcb_disconnect(connection);
    return nullptr;
  }
  std::shared_ptr<XConnection> made(new XConnection(connection, screen));
  current = made;
  return made;
}

xcb_connection_t* XConnection::ofQt() {
  const auto* native =
      qApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
  return native ? native->connection() : nullptr;
}

XConnection::XConnection(xcb_connection_t* connection, xcb_screen_t* screen)
    : connection_(connection), screen_(screen),
      notifier_(xcb_get_file_descriptor(connection), QSocketNotifier::Read),
      receiving_([this] { receive(); }) {
  connect(&notifier_, &QSocketNotifier::activated, this, &XConnection::receive);
}

XConnection::~XConnection() {
  notifier_.setEnabled(false);
  std::free(queued_);
  xcb_disconnect(connection_);
}

// The server keeps one set of events for each window and connection.
void XConnection::selectEvents(xcb_window_t window, std::uint32_t events) {
  std::uint32_t& selected = selected_[window];
  selected |= events;
  xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &selected);
}

void XConnection::flush() {
  xcb_flush(connection_);
  if (!queued_)
    queued_ = xcb_poll_for_queued_event(connection_);
  if (queued_)
    receiving_.request();
}

bool XConnection::isButtonPressed() {
  constexpr int AnyButton = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
  const auto pointer = owned(
      xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, screen_->root), nullptr));
  flush();
  return pointer && (pointer->mask & AnyButton);
}

xcb_generic_event_t* XConnection::next() {
  return queued_ ? std::exchange(queued_, nullptr) : xcb_poll_for_event(connection_);
}

void XConnection::receive() {
  // Whoever receives may ask, and flush, again.
  if (isReceiving_ || isLost_)
    return;
  // Whoever holds it may let it go meanwhile.
  const std::shared_ptr<XConnection> self = shared_from_this();
  isReceiving_ = true;
  while (xcb_generic_event_t* event = next()) {
    if (event->response_type == 0)
      qCDebug(x11Log, "request failed: %d",
              reinterpret_cast<xcb_generic_error_t*>(event)->error_code);
    else
      Q_EMIT received(event);
    if (typeOf(*event) == XCB_DESTROY_NOTIFY)
      selected_.remove(reinterpret_cast<xcb_destroy_notify_event_t*>(event)->window);
    std::free(event);
  }
  isReceiving_ = false;
  if (xcb_connection_has_error(connection_)) {
    isLost_ = true;
    notifier_.setEnabled(false);
    Q_EMIT lost();
  }
}

void awaitServer(xcb_connection_t* connection) {
  std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

} // namespace zq::app
