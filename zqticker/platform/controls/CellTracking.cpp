#include "zqticker/platform/controls/CellTracking_p.h"

#include "zqticker/platform/controls/Cell.h"
#include "zqticker/platform/controls/ControlView.h"

#include <utility>

namespace zq::platform {

TrackingSession::Result CellTracking::begin() {
  last_ = press().locationInWindow;
  isTracking_ = view() && cell()->startTrackingAt(last_, view());
  return Result::Running;
}

TrackingSession::Result CellTracking::pass(const Event& event) {
  const QPointF last = std::exchange(last_, event.locationInWindow);
  const bool isUp = event.type == EventType::LeftMouseUp;
  const bool hasLeft = !isUntilMouseUp() && !isInside(event);
  bool isStopped = false;

  if (isTracking_) {
    isStopped = !cell()->continueTracking(last, last_, view());
    if (isAbandoned())
      return Result::No;
    if (isStopped || isUp || hasLeft) {
      cell()->stopTracking(last, last_, view(), isUp);
      if (isAbandoned())
        return Result::No;
    }
    if (cell()->isContinuous()) {
      view()->sendAction(cell()->action(), cell()->target());
      if (isAbandoned())
        return Result::No;
    }
  }
  if (hasLeft || (isStopped && !isUp && isUntilMouseUp()))
    return Result::No;
  if (!isUp && !isStopped)
    return Result::Running;
  if (!cell()->isContinuous())
    cell()->performClick(view());
  else if (cell()->clickChangesState(view()))
    cell()->setNextState();
  return Result::Yes;
}

} // namespace zq::platform
