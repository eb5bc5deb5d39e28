// The count of blanks that an X server keeps.
#pragma once

#include <QtCore/QByteArray>

#include <xcb/present.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <optional>

namespace zq::app::testing {

// The number of the blank that comes next on the server `display`; nothing where it cannot be
// asked.
inline std::optional<std::uint64_t> nextBlankOf(const QByteArray& display) {
  xcb_connection_t* connection = xcb_connect(display.constData(), nullptr);
  std::optional<std::uint64_t> count;
  const xcb_query_extension_reply_t* extension =
      xcb_connection_has_error(connection) ? nullptr
                                           : xcb_get_extension_data(connection, &xcb_present_id);
  if (extension && extension->present) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    std::free(xcb_present_query_version_reply(
        connection, xcb_present_query_version(connection, 1, 2), nullptr));
    xcb_present_select_input(connection, xcb_generate_id(connection), screen->root,
                             XCB_PRESENT_EVENT_MASK_COMPLETE_NOTIFY);
    xcb_present_notify_msc(connection, screen->root, 1, 0, 1, 0);
    xcb_flush(connection);
    while (xcb_generic_event_t* event = count ? nullptr : xcb_wait_for_event(connection)) {
      const auto* report = reinterpret_cast<xcb_present_complete_notify_event_t*>(event);
      if ((event->response_type & 0x7f) == XCB_GE_GENERIC &&
          report->event_type == XCB_PRESENT_COMPLETE_NOTIFY)
        count = std::uint64_t(report->msc); // a copy: events are packed
      std::free(event);
    }
  }
  xcb_disconnect(connection);
  return count;
}

} // namespace zq::app::testing
