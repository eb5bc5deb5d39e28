#include "app/x11/active_window.h"

#include <QtCore/QByteArrayView>
#include <QtGui/QGuiApplication>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace zq::app {

namespace {
// More than any window manager supports.
constexpr std::uint32_t MostAtoms = 1024;
// Who asks for the activation, see the extended window manager hints: a pager, which is to say the
// user.
constexpr std::uint32_t SourceUser = 2;

template <class Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

xcb_connection_t* toolkitConnection() {
  const auto* x11 =
      qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
  return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atomOf(xcb_connection_t* connection, QByteArrayView name) {
  const Owned<xcb_intern_atom_reply_t> reply(
      xcb_intern_atom_reply(
          connection,
          xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data()),
          nullptr),
      &std::free);
  return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

xcb_window_t rootOf(xcb_connection_t* connection) {
  return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

// A property of the root window, of 32-bit values.
Owned<xcb_get_property_reply_t> rootProperty(xcb_connection_t* connection, xcb_atom_t name,
                                             xcb_atom_t type) {
  return {xcb_get_property_reply(
              connection,
              xcb_get_property(connection, 0, rootOf(connection), name, type, 0, MostAtoms),
              nullptr),
          &std::free};
}

bool knowsActivation(xcb_connection_t* connection, xcb_atom_t activeWindowAtom) {
  const xcb_atom_t supported = atomOf(connection, "_NET_SUPPORTED");
  if (activeWindowAtom == XCB_ATOM_NONE || supported == XCB_ATOM_NONE)
    return false;
  const auto reply = rootProperty(connection, supported, XCB_ATOM_ATOM);
  if (!reply || reply->format != 32)
    return false;
  const auto* first = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
  const auto* end = first + reply->value_len;
  return std::find(first, end, activeWindowAtom) != end;
}

bool isViewable(xcb_connection_t* connection, xcb_window_t window) {
  const Owned<xcb_get_window_attributes_reply_t> reply(
      xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window),
                                      nullptr),
      &std::free);
  return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}
} // namespace

bool isOnXServer() {
  return toolkitConnection() != nullptr;
}

WId activeWindow() {
  xcb_connection_t* connection = toolkitConnection();
  if (!connection)
    return 0;
  const xcb_atom_t name = atomOf(connection, "_NET_ACTIVE_WINDOW");
  if (name == XCB_ATOM_NONE)
    return 0;
  const auto reply = rootProperty(connection, name, XCB_ATOM_WINDOW);
  if (!reply || reply->format != 32 || reply->value_len == 0)
    return 0;
  return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

bool activateWindow(WId window) {
  xcb_connection_t* connection = toolkitConnection();
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
  xcb_connection_t* connection = toolkitConnection();
  if (!connection)
    return;
  xcb_set_input_focus(connection, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT,
                      XCB_CURRENT_TIME);
  xcb_flush(connection);
}

} // namespace zq::app
