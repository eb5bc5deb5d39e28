// Where the session bus and the system bus are.
#pragma once

#include <QtCore/QString>

#include <optional>

namespace zq::app {

// The address in $DBUS_SESSION_BUS_ADDRESS, else that of the socket "bus" in $XDG_RUNTIME_DIR if
// there is one. Nothing where there is no session bus: one is never started.
std::optional<QString> sessionBusAddress();

// Whether the user wants no session bus: $DBUS_SESSION_BUS_ADDRESS is empty or "disabled:".
bool isSessionBusSwitchedOff();

// The address in $DBUS_SYSTEM_BUS_ADDRESS, else where the system bus usually is.
QString systemBusAddress();

} // namespace zq::app
