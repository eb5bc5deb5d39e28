// How the platform's own cells follow the mouse.
#pragma once

#include "zqticker/platform/controls/TrackingSession.h"

namespace zq::platform {

// Yes when the button comes up, over the cell or wherever it may; No when the pointer leaves. A
// click of a cell that is not continuous is performed at the end, the action of a continuous one
// sent on every pass.
class CellTracking : public TrackingSession {
 public:
  using TrackingSession::TrackingSession;

 protected:
  Result begin() override;
  Result pass(const Event& event) override;

 private:
  bool isTracking_ = false;
  QPointF last_;
};

} // namespace zq::platform
