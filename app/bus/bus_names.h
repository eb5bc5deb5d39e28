// How the ticker is called on the session bus.
#pragma once

#include <QtCore/QLatin1StringView>

namespace zq::app {

inline constexpr QLatin1StringView TickerBusName("org.zqticker.Ticker");
inline constexpr QLatin1StringView TickerObjectPath("/org/zqticker/Ticker");
inline constexpr QLatin1StringView TickerInterface("org.zqticker.Ticker1");
inline constexpr QLatin1StringView DisplayMessageSignal("ZQTickerDisplayMessageNotification");

// Errors of calls.
inline constexpr QLatin1StringView InvalidMessageErrorName("org.zqticker.Error.InvalidMessage");
inline constexpr QLatin1StringView InvalidSignErrorName("org.zqticker.Error.InvalidSign");
inline constexpr QLatin1StringView TooMuchErrorName("org.zqticker.Error.TooMuch");
inline constexpr QLatin1StringView FailedErrorName("org.zqticker.Error.Failed");
// For replies that never came from a bus: there is none.
inline constexpr QLatin1StringView NoBusErrorName("org.zqticker.Error.NoBus");

// The bus itself.
inline constexpr QLatin1StringView BusDaemonName("org.freedesktop.DBus");
inline constexpr QLatin1StringView BusDaemonPath("/org/freedesktop/DBus");

} // namespace zq::app
