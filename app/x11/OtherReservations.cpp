#include "app/x11/OtherReservations.h"

#include "app/x11/window_rect.h"
#include "app/x11/x_properties.h"
#include "app/x11/x_replies.h"

#include <algorithm>

namespace zq::app {

namespace {
// From the depths of four bands and, where they are known, the ends of each.
std::vector<EdgeReservation> reservationsOf(const std::vector<std::uint32_t>& values, QSize whole) {
  constexpr Qt::Edge Edges[] = {Qt::LeftEdge, Qt::RightEdge, Qt::TopEdge, Qt::BottomEdge};
  std::vector<EdgeReservation> found;
  if (values.size() < 4)
    return found;
  const auto numberAt = [&](std::size_t index, int most) {
    return static_cast<int>(
        std::min<std::uint32_t>(values[index], static_cast<std::uint32_t>(most)));
  };
  for (std::size_t i = 0; i < 4; ++i) {
    const bool isUpright = i < 2;
    const int across = isUpright ? whole.width() : whole.height();
    const int along = isUpright ? whole.height() : whole.width();
    EdgeReservation one{Edges[i], numberAt(i, across), 0, along - 1};
    if (values.size() >= 12) {
      one.first = numberAt(4 + 2 * i, along - 1);
      one.last = numberAt(5 + 2 * i, along - 1);
    }
    if (one.depth > 0 && one.first <= one.last)
      found.push_back(one);
  }
  return found;
}
} // namespace

OtherReservations::OtherReservations(QObject* parent)
    : QObject(parent), reading_([this] {
        if (!connection_)
          return;
        const auto reservingBefore = reserving_;
        const QSize wholeBefore = whole_;
        read();
        if (wholeBefore != whole_ || reservingBefore != reserving_)
          Q_EMIT changed();
      }) {
  listen();
}

OtherReservations::~OtherReservations() = default;

void OtherReservations::listen() {
  connection_ = XConnection::shared();
  reserving_.clear();
  known_.clear();
  if (!connection_)
    return;
  connect(connection_.get(), &XConnection::received, this, &OtherReservations::receive);
  connect(
      connection_.get(), &XConnection::lost, this,
      [this] {
        listen();
        Q_EMIT changed();
      },
      Qt::QueuedConnection);
  connection_->selectEvents(connection_->screen()->root,
                            XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  read();
}

std::vector<OtherReservation> OtherReservations::beside(xcb_window_t own) const {
  std::vector<OtherReservation> others;
  const auto ownPlace = std::find(known_.begin(), known_.end(), own);
  for (const Window& window : reserving_) {
    if (window.id == own)
      continue;
    const bool isOlder = std::find(known_.begin(), ownPlace, window.id) != ownPlace;
    for (const EdgeReservation& reservation : window.reservations)
      others.push_back({reservation, window.geometry, window.isStrip, isOlder});
  }
  return others;
}

void OtherReservations::receive(const xcb_generic_event_t* event) {
  const auto isReserving = [this](xcb_window_t id) {
    return std::any_of(reserving_.begin(), reserving_.end(),
                       [&](const Window& window) { return window.id == id; });
  };
  const xcb_window_t root = connection_->screen()->root;
  xcb_connection_t* x = connection_->get();
  switch (typeOf(*event)) {
  case XCB_PROPERTY_NOTIFY: {
    const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
    if (change->window == root) {
      if (change->atom == atomOf(x, "_NET_CLIENT_LIST") ||
          change->atom == atomOf(x, "_NET_WORKAREA") ||
          change->atom == atomOf(x, "_NET_SUPPORTING_WM_CHECK"))
        reading_.request();
    } else if (isReserving(change->window) &&
               (change->atom == atomOf(x, "_NET_WM_STRUT") ||
                change->atom == atomOf(x, "_NET_WM_STRUT_PARTIAL"))) {
      reading_.request();
    }
    break;
  }
  case XCB_CONFIGURE_NOTIFY: {
    const auto* change = reinterpret_cast<const xcb_configure_notify_event_t*>(event);
    if (change->window == root || isReserving(change->window))
      reading_.request();
    break;
  }
  default:
    break;
  }
}

void OtherReservations::read() {
  xcb_connection_t* x = connection_->get();
  const xcb_window_t root = connection_->screen()->root;
  const auto geometry = owned(xcb_get_geometry_reply(x, xcb_get_geometry(x, root), nullptr));
  if (geometry)
    whole_ = QSize(geometry->width, geometry->height);
  known_ = readValues(x, root, atomOf(x, "_NET_CLIENT_LIST"), XCB_ATOM_WINDOW);
  reserving_ = readWindows(known_);
  connection_->flush();
}

std::vector<OtherReservations::Window>
OtherReservations::readWindows(const std::vector<xcb_window_t>& ids) {
  xcb_connection_t* x = connection_->get();
  struct Asked {
    xcb_get_property_cookie_t partial, whole, mark;
    WindowRectRequest rect;
  };
  std::vector<Asked> asked;
  for (const xcb_window_t id : ids)
    asked.push_back({askForValues(x, id, atomOf(x, "_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL),
                     askForValues(x, id, atomOf(x, "_NET_WM_STRUT"), XCB_ATOM_CARDINAL),
                     askForValues(x, id, atomOf(x, StripMark), XCB_ATOM_CARDINAL),
                     askForRect(x, id, connection_->screen()->root)});
  std::vector<Window> found;
  bool isAnyNew = false;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const auto partial = valuesOf(x, asked[i].partial);
    const auto whole = valuesOf(x, asked[i].whole);
    const bool isStrip = !valuesOf(x, asked[i].mark).empty();
    const std::optional<QRect> rect = rectOf(x, asked[i].rect);
    const Window window{ids[i], rect.value_or(QRect()), isStrip,
                        reservationsOf(partial.empty() ? whole : partial, whole_)};
    if (window.reservations.empty() || !rect)
      continue;
    found.push_back(window);
    const bool isNew = std::none_of(reserving_.begin(), reserving_.end(),
                                    [&](const Window& before) { return before.id == window.id; });
    if (isNew)
      connection_->selectEvents(window.id,
                                XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    isAnyNew = isAnyNew || isNew;
  }
  // It may have changed before it was listened to.
  if (isAnyNew)
    reading_.request();
  return found;
}

} // namespace zq::app
