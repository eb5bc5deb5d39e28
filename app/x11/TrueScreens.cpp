#include "app/x11/TrueScreens.h"

#include "app/x11/x_replies.h"

#include <QtGui/QScreen>

#include <xcb/randr.h>

namespace zq::app {

namespace {
// The first version with monitors, which are the screens of Qt.
constexpr std::uint32_t LeastMajor = 1;
constexpr std::uint32_t LeastMinor = 5;

bool hasMonitors(xcb_connection_t* connection) {
  const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_randr_id);
  if (!extension || !extension->present)
    return false;
  const auto version = owned(xcb_randr_query_version_reply(
      connection, xcb_randr_query_version(connection, LeastMajor, LeastMinor), nullptr));
  return version && (version->major_version > LeastMajor || (version->major_version == LeastMajor &&
                                                             version->minor_version >= LeastMinor));
}
} // namespace

TrueScreens::TrueScreens(QObject* parent)
    : QObject(parent), reading_([this] {
        if (!connection_)
          return;
        const Rects before = rects_;
        rects_ = read();
        if (rects_ != before)
          Q_EMIT changed();
      }) {
  listen();
}

TrueScreens::~TrueScreens() = default;

void TrueScreens::listen() {
  connection_ = XConnection::shared();
  rects_.clear();
  if (!connection_ || !hasMonitors(connection_->get())) {
    connection_.reset();
    return;
  }
  firstEvent_ = xcb_get_extension_data(connection_->get(), &xcb_randr_id)->first_event;
  connect(connection_.get(), &XConnection::received, this, &TrueScreens::receive);
  connect(
      connection_.get(), &XConnection::lost, this,
      [this] {
        listen();
        Q_EMIT changed();
      },
      Qt::QueuedConnection);
  // Monitors that no output changes with are told of as a change of the root alone.
  const xcb_window_t root = connection_->screen()->root;
  connection_->selectEvents(root, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  xcb_randr_select_input(connection_->get(), root,
                         XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                             XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
  rects_ = read();
}

QRect TrueScreens::native(const QScreen& screen) const {
  if (const auto found = rects_.constFind(screen.name()); found != rects_.constEnd())
    return *found;
  const QRect geometry = screen.geometry();
  return QRect(geometry.topLeft(), geometry.size() * screen.devicePixelRatio());
}

QRect TrueScreens::geometry(const QScreen& screen) const {
  if (!rects_.contains(screen.name()))
    return screen.geometry();
  const QRect rect = native(screen);
  return QRect(rect.topLeft(), rect.size() / screen.devicePixelRatio());
}

void TrueScreens::receive(const xcb_generic_event_t* event) {
  const std::uint8_t type = typeOf(*event);
  const bool isOfRoot = type == XCB_CONFIGURE_NOTIFY &&
                        reinterpret_cast<const xcb_configure_notify_event_t*>(event)->window ==
                            connection_->screen()->root;
  if (isOfRoot || type == firstEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
      type == firstEvent_ + XCB_RANDR_NOTIFY)
    reading_.request();
}

TrueScreens::Rects TrueScreens::read() {
  constexpr bool ActiveAlone = true;
  xcb_connection_t* x = connection_->get();
  const auto monitors = owned(xcb_randr_get_monitors_reply(
      x, xcb_randr_get_monitors(x, connection_->screen()->root, ActiveAlone), nullptr));
  Rects rects;
  if (monitors)
    for (auto i = xcb_randr_get_monitors_monitors_iterator(monitors.get()); i.rem;
         xcb_randr_monitor_info_next(&i))
      rects.insert(nameOf(i.data->name),
                   QRect(i.data->x, i.data->y, i.data->width, i.data->height));
  connection_->flush();
  return rects;
}

// Atoms keep their names.
QString TrueScreens::nameOf(xcb_atom_t atom) {
  if (const auto found = names_.constFind(atom); found != names_.constEnd())
    return *found;
  xcb_connection_t* x = connection_->get();
  const auto reply = owned(xcb_get_atom_name_reply(x, xcb_get_atom_name(x, atom), nullptr));
  if (!reply)
    return QString();
  return *names_.insert(atom, QString::fromUtf8(xcb_get_atom_name_name(reply.get()),
                                                xcb_get_atom_name_name_length(reply.get())));
}

} // namespace zq::app
