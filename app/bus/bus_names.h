// How the ticker is called on the session bus.
#pragma once

#include <QtCore/QLatin1StringView>

namespace zq::app {

inline constexpr QLatin1StringView TickerBusName("org.zqticker.Ticker");
inline constexpr QLatin1StringView TickerObjectPath("/org/zqticker/Ticker");
inline constexpr QLatin1StringView TickerInterface("org.zqticker.Ticker1");
inline constexpr QLatin1StringView DisplayMessageSignal("ZQTickerDisplayMessageNotification");

// Errors of calls.
inline constexpr QLatin1StringView InvalidMessageError("org.zqticker.Error.InvalidMessage");
inline constexpr QLatin1StringView InvalidSignError("org.zqticker.Error.InvalidSign");
inline constexpr QLatin1StringView TooMuchError("org.zqticker.Error.TooMuch");
inline constexpr QLatin1StringView FailedError("org.zqticker.Error.Failed");
// For replies that never came from a bus: there is none.
inline constexpr QLatin1StringView NoBusError("org.zqticker.Error.NoBus");

// The bus itself.
inline constexpr QLatin1StringView BusDaemonName("org.freedesktop.DBus");
inline constexpr QLatin1StringView BusDaemonPath("/org/freedesktop/DBus");

} // namespace zq::app
