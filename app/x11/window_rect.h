// Where windows stand on the X screen.
#pragma once

#include <QtCore/QRect>

#include <xcb/xcb.h>

#include <optional>

namespace zq::app {

// A request that has been sent.
struct WindowRectRequest {
  xcb_get_geometry_cookie_t size;
  xcb_translate_coordinates_cookie_t corner;
};

// A request for the place of a window on the X screen of `root`, and its answer: what is within the
// window's border, in device pixels; nothing where the window has gone. Several are asked for
// before the first answer is waited for.
WindowRectRequest askForRect(xcb_connection_t* connection, xcb_window_t window, xcb_window_t root);
std::optional<QRect> rectOf(xcb_connection_t* connection, const WindowRectRequest& asked);

} // namespace zq::app
