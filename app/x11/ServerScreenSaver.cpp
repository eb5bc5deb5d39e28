#include "app/x11/ServerScreenSaver.h"

#include "app/x11/x_replies.h"

#include <xcb/screensaver.h>

#include <utility>

namespace zq::app {

ServerScreenSaver::ServerScreenSaver(QObject* parent) : QObject(parent) {
  std::shared_ptr<XConnection> connection = XConnection::shared();
  if (!connection)
    return;
  xcb_connection_t* server = connection->get();
  const xcb_query_extension_reply_t* extension =
      xcb_get_extension_data(server, &xcb_screensaver_id);
  if (!extension || !extension->present)
    return;
  connection_ = std::move(connection);
  eventCode_ = extension->first_event + XCB_SCREENSAVER_NOTIFY;
  connect(connection_.get(), &XConnection::received, this, &ServerScreenSaver::receive);
  // Nobody would tell that it has ended.
  connect(connection_.get(), &XConnection::lost, this,
          [this] { setState(XCB_SCREENSAVER_STATE_OFF); });
  const xcb_window_t root = connection_->screen()->root;
  xcb_screensaver_select_input(server, root, XCB_SCREENSAVER_EVENT_NOTIFY_MASK);
  if (const auto state = owned(xcb_screensaver_query_info_reply(
          server, xcb_screensaver_query_info(server, root), nullptr)))
    setState(state->state);
  connection_->flush();
}

ServerScreenSaver::~ServerScreenSaver() = default;

void ServerScreenSaver::receive(const xcb_generic_event_t* event) {
  if (typeOf(*event) == eventCode_)
    setState(reinterpret_cast<const xcb_screensaver_notify_event_t*>(event)->state);
}

void ServerScreenSaver::setState(int state) {
  const bool isActive = state == XCB_SCREENSAVER_STATE_ON || state == XCB_SCREENSAVER_STATE_CYCLE;
  if (isActive == isActive_)
    return;
  isActive_ = isActive;
  Q_EMIT changed();
}

} // namespace zq::app
