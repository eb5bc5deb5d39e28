// How a rollover button's cell follows the mouse.
#pragma once

#include "zqticker/platform/controls/TrackingSession.h"

class ZQRollOverButtonCell;

namespace zq {

// Clicks, and on a cell with a menu pops it up: at the start where the press lies to the right of
// the title, else when the deadline comes. Keeps the cell's mouse-over flag up to date on the way.
class RollOverTracking : public platform::TrackingSession {
 public:
  RollOverTracking(const std::shared_ptr<ZQRollOverButtonCell>& cell, const platform::Event& event,
                   const QRectF& inRect, platform::ControlView* ofView, bool untilMouseUp);

 protected:
  Result begin() override;
  Result pass(const platform::Event& event) override;
  Result deadlineReached() override;
  std::optional<double> delaySeconds() const override;

 private:
  ZQRollOverButtonCell& rollOverCell() const;
  bool isOnArrow() const;

  bool isTracking_ = false;
  QPointF last_;
};

} // namespace zq
