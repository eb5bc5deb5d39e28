// Which sign stands where on a strip.
#pragma once

#include "app/display/Strip.h"

#include <QtCore/QRectF>

#include <optional>
#include <vector>

namespace zq::app {

class SignItem;
class TickerDisplay;

// A sign on the strip, as it stood when the display last moved.
struct SignSpot {
  Strip::Entry entry;
  std::uint64_t run = 0; // its showing
  QRectF area; // the part in sight, as broad as the strip: points from the upper left, y downwards
  bool isLeaving = false; // its leading edge has left the strip

  const SignItem& item() const;
};

// What the run shows, without the gap behind it, whether in sight or not; as `area` above.
QRectF areaOf(const TickerDisplay& display, const Strip::Run& run);

// The sign that stands at `point`; nothing between signs.
std::optional<SignSpot> signAt(const TickerDisplay& display, QPointF point);

// The showing with this number, as long as a part of it is in sight.
std::optional<SignSpot> spotOfRun(const TickerDisplay& display, std::uint64_t run);

// Those in sight in the order of entering: the one that leaves next is the first.
std::vector<SignSpot> signsInSight(const TickerDisplay& display);

} // namespace zq::app
