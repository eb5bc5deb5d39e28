#include "app/x11/ScreenReservation.h"

#include "app/x11/XConnection.h"
#include "app/x11/x_properties.h"

#include <QtCore/QEvent>
#include <QtWidgets/QWidget>

namespace zq::app {

namespace {
constexpr std::uint32_t EveryDesktop = 0xffffffff;

// Left, right, top and bottom, as all these properties have them.
std::size_t indexOf(Qt::Edge edge) {
  switch (edge) {
  case Qt::LeftEdge:
    return 0;
  case Qt::RightEdge:
    return 1;
  case Qt::TopEdge:
    return 2;
  case Qt::BottomEdge:
    break;
  }
  return 3;
}
} // namespace

ScreenReservation::ScreenReservation(QWidget& window) : window_(window) {
  window.installEventFilter(this);
}

ScreenReservation::~ScreenReservation() = default;

void ScreenReservation::reserve(const std::optional<EdgeReservation>& room, bool isAtEdge) {
  if (room == room_ && isAtEdge == isAtEdge_)
    return;
  room_ = room;
  isAtEdge_ = isAtEdge;
  writeRoom();
}

bool ScreenReservation::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::WinIdChange)
    writeRoom();
  // It comes before the window is mapped; window managers take their hints from windows that they
  // manage no more.
  if (event->type() == QEvent::Show)
    writeHints();
  return false;
}

void ScreenReservation::writeRoom() {
  xcb_connection_t* connection = XConnection::ofQt();
  const auto window = static_cast<xcb_window_t>(window_.internalWinId());
  if (!connection || !window)
    return;
  const xcb_atom_t whole = atomOf(connection, "_NET_WM_STRUT");
  const xcb_atom_t partial = atomOf(connection, "_NET_WM_STRUT_PARTIAL");
  if (room_) {
    // The depths of four bands, then the ends of each.
    std::vector<std::uint32_t> values(12);
    const std::size_t index = indexOf(room_->edge);
    values[index] = static_cast<std::uint32_t>(room_->depth);
    values[4 + 2 * index] = static_cast<std::uint32_t>(room_->first);
    values[5 + 2 * index] = static_cast<std::uint32_t>(room_->last);
    writeValues(connection, window, partial, XCB_ATOM_CARDINAL, values);
    values.resize(4);
    if (isAtEdge_)
      writeValues(connection, window, whole, XCB_ATOM_CARDINAL, values);
  } else {
    xcb_delete_property(connection, window, partial);
  }
  if (!room_ || !isAtEdge_)
    xcb_delete_property(connection, window, whole);
  xcb_flush(connection);
}

void ScreenReservation::writeHints() {
  xcb_connection_t* connection = XConnection::ofQt();
  const auto window = static_cast<xcb_window_t>(window_.internalWinId());
  if (!connection || !window)
    return;
  // Qt makes a utility of a tool window, whatever it is asked for; window managers put those where
  // they like, and bring them back inside when screens change.
  writeValues(
      connection, window, atomOf(connection, "_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
      {atomOf(connection, isDock_ ? "_NET_WM_WINDOW_TYPE_DOCK" : "_NET_WM_WINDOW_TYPE_UTILITY"),
       atomOf(connection, "_NET_WM_WINDOW_TYPE_NORMAL")});
  writeValues(connection, window, atomOf(connection, "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL,
              {EveryDesktop});
  // Qt adds its own to these when it maps the window.
  writeValues(connection, window, atomOf(connection, "_NET_WM_STATE"), XCB_ATOM_ATOM,
              {atomOf(connection, "_NET_WM_STATE_STICKY"),
               atomOf(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
               atomOf(connection, "_NET_WM_STATE_SKIP_PAGER")});
  writeValues(connection, window, atomOf(connection, StripMark), XCB_ATOM_CARDINAL, {1});
}

} // namespace zq::app
