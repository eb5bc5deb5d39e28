// What the pointer did, as cells see it.
#pragma once

#include <QtCore/QPointF>
#include <QtCore/Qt>

#include <cstdint>

namespace zq::platform {

enum class EventType : int {
  LeftMouseDown = 1,
  LeftMouseUp = 2,
  RightMouseDown = 3,
  RightMouseUp = 4,
  MouseMoved = 5,
  LeftMouseDragged = 6,
  RightMouseDragged = 7,
  MouseEntered = 8,
  MouseExited = 9,
};

// A set of event types has the bit of each.
constexpr std::uint64_t eventMask(EventType type) {
  return std::uint64_t(1) << int(type);
}

// What tracking waits for.
inline constexpr std::uint64_t TrackingEventMask =
    eventMask(EventType::LeftMouseUp) | eventMask(EventType::LeftMouseDragged);

struct Event {
  EventType type = EventType::MouseMoved;
  // In points of the window: the origin at its lower left, y upwards.
  QPointF locationInWindow;
  Qt::KeyboardModifiers modifierFlags;
  // Seconds on a clock that only goes forwards.
  double timestamp = 0;
  // The window system's number of the window; 0 where it has none yet.
  std::int64_t windowNumber = 0;
  // The same for a press and all that belongs to it; 0 for the pointer's other movements.
  int eventNumber = 0;
  // 1 for a single click, 2 for the second of a double click.
  int clickCount = 0;
  // 0 to 1.
  float pressure = 0;
};

} // namespace zq::platform
