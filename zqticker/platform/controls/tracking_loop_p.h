// Tracking for callers who want to wait.
#pragma once

#include "zqticker/platform/controls/TrackingSession.h"

namespace zq::platform {

// Starts `session`, which the caller owns, and runs an event loop until it has ended. The loop
// takes what the left button does anywhere in the application, as seen from the window of `view`.
TrackingSession::Result runToItsEnd(TrackingSession& session, ControlView* view);

// How long a timer is to run for a deadline in so many seconds; no timer where it never comes.
std::optional<int> millisecondsToDeadline(const TrackingSession& session);

} // namespace zq::platform
