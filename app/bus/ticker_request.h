// What a command asks of the ticker that runs.
#pragma once

#include "app/bus/TickerClient.h"

namespace zq::app {

// Calls `request` of the running ticker, which is never started for it. Raises RunTimeError, which
// begins with the command's name, where there is no bus or no ticker, and for its refusal.
void askRunningTicker(const QString& command, BusReply (TickerClient::*request)());

} // namespace zq::app
