#include "app/x11/active_window.h"

#include "app/x11/XConnection.h"
#include "app/x11/x_properties.h"
#include "app/x11/x_replies.h"

#include <algorithm>

#include <xcb/xcb.h>

namespace zq::app {

namespace {
// Who asks for the activation, see the extended window manager hints: a pager, which is to say the
// user.
constexpr std::uint32_t SourceUser = 2;

xcb_window_t rootOf(xcb_connection_t* connection) {
  return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

bool knowsActivation(xcb_connection_t* connection, xcb_atom_t activeWindowAtom) {
  const auto known = readValues(connection, rootOf(connection),
                                atomOf(connection, "_NET_SUPPORTED"), XCB_ATOM_ATOM);
  return std::find(known.begin(), known.end(), activeWindowAtom) != known.end();
}

bool isViewable(xcb_connection_t* connection, xcb_window_t window) {
  const auto reply = owned(xcb_get_window_attributes_reply(
      connection, xcb_get_window_attributes(connection, window), nullptr));
  return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}
} // namespace

bool isOnXServer() {
  return XConnection::ofQt() != nullptr;
}

WId activeWindow() {
  xcb_connection_t* connection = XConnection::ofQt();
  if (!connection)
    return 0;
  const auto active = readValues(connection, rootOf(connection),
                                 atomOf(connection, "_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
  return active.empty() ? 0 : active.front();
}

bool activateWindow(WId window) {
  xcb_connection_t* connection = XConnection::ofQt();
  const auto id = static_cast<xcb_window_t>(window);
  if (!connection || id == XCB_WINDOW_NONE || !isViewable(connection, id))
    return false;
  const xcb_atom_t name = atomOf(connection, "_NET_ACTIVE_WINDOW");
  if (knowsActivation(connection, name)) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = id;
    event.type = name;
    event.data.data32[0] = SourceUser;
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection, 0, rootOf(connection),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
  } else {
    xcb_set_input_focus(connection, XCB_INPUT_FOCUS_POINTER_ROOT, id, XCB_CURRENT_TIME);
  }
  xcb_flush(connection);
  return true;
}

void leaveKeyboard() {
  xcb_connection_t* connection = XConnection::ofQt();
  if (!connection)
    return;
  xcb_set_input_focus(connection, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT,
                      XCB_CURRENT_TIME);
  xcb_flush(connection);
}

} // namespace zq::app
