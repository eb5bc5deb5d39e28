#include "app/x11/window_rect.h"

#include "app/x11/x_replies.h"

namespace zq::app {

WindowRectRequest askForRect(xcb_connection_t* connection, xcb_window_t window, xcb_window_t root) {
  return {xcb_get_geometry(connection, window),
          xcb_translate_coordinates(connection, window, root, 0, 0)};
}

std::optional<QRect> rectOf(xcb_connection_t* connection, const WindowRectRequest& asked) {
  const auto size = owned(xcb_get_geometry_reply(connection, asked.size, nullptr));
  const auto corner = owned(xcb_translate_coordinates_reply(connection, asked.corner, nullptr));
  if (!size || !corner)
    return std::nullopt;
  return QRect(corner->dst_x, corner->dst_y, size->width, size->height);
}

} // namespace zq::app
