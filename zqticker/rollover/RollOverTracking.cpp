#include "zqticker/rollover/RollOverTracking_p.h"

#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"

#include <utility>

using namespace zq::platform;

namespace zq {

RollOverTracking::RollOverTracking(const Ref<ZQRollOverButtonCell>& cell, const Event& event,
                                   const QRectF& inRect, ControlView* ofView, bool untilMouseUp)
    : TrackingSession(cell, event, inRect, ofView, untilMouseUp) {}

ZQRollOverButtonCell& RollOverTracking::rollOverCell() const {
  return static_cast<ZQRollOverButtonCell&>(*cell());
}

// Whether the press lies to the right of the title.
bool RollOverTracking::isOnArrow() const {
  const QPointF point = view()->convertPointFromWindow(last_);
  return point.x() >= rollOverCell().textRect().right();
}

TrackingSession::Result RollOverTracking::begin() {
  last_ = press().locationInWindow;
  if (!view())
    return Result::No;
  const bool showsMenu = cell()->menu() && isOnArrow();
  if (showsMenu) {
    cell()->showMenuForEvent(press(), view(), cellFrame());
    if (isAbandoned())
      return Result::No;
  }
  isTracking_ = cell()->startTrackingAt(last_, view());
  return showsMenu ? Result::Yes : Result::Running;
}

TrackingSession::Result RollOverTracking::pass(const Event& event) {
  const QPointF last = std::exchange(last_, event.locationInWindow);
  const bool isUp = event.type == EventType::LeftMouseUp;
  bool isStopped = false;

  if (isTracking_) {
    isStopped = !cell()->continueTracking(last, last_, view());
    if (isAbandoned())
      return Result::No;
    if (isStopped) {
      // Never said to be up, not even by the release, which is deliberate: cells that stop by
      // themselves have always been told so.
      cell()->stopTracking(last, last_, view(), false);
      if (isAbandoned())
        return Result::No;
    }
    if (cell()->isContinuous()) {
      view()->sendAction(cell()->action(), cell()->target());
      if (isAbandoned())
        return Result::No;
    }
  }

  bool isInside = isUp;
  if (!isUntilMouseUp()) {
    isInside = this->isInside(event);
    rollOverCell().setMouseOver(isInside && view()->tracksMouseInside());
    if (!isInside)
      return Result::No;
  }
  if (!isStopped && !isUp)
    return Result::Running;
  if (isInside && !cell()->isContinuous())
    cell()->performClick(view());
  return isInside ? Result::Yes : Result::No;
}

TrackingSession::Result RollOverTracking::deadlineReached() {
  cell()->showMenuForEvent(press(), view(), cellFrame());
  return Result::Yes;
}

std::optional<double> RollOverTracking::delaySeconds() const {
  if (!cell()->menu())
    return std::nullopt;
  return rollOverCell().popUpMenuDelay();
}

} // namespace zq
