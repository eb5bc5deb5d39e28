// Calls as the bus brings them, read.
#pragma once

#include "app/bus/BusRequest.h"

#include <optional>

class QDBusMessage;

namespace zq::app {

// The request that a call of the ticker's interface makes. Nothing where the interface has no such
// method. Raises BusFailure for arguments of other types (InvalidArguments), and for ones that are
// too large (TooMuch).
std::optional<BusRequest> readCall(const QDBusMessage& call);

// The request in a display-message notification. Raises the same.
BusRequest readNotification(const QDBusMessage& signal);

} // namespace zq::app
