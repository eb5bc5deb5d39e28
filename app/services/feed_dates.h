// Dates as feeds write them.
#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QStringView>

#include <optional>

namespace zq::app {

// The moment that `text` names, in UTC; nothing where it names none. Takes RFC 822 (with or without
// a weekday, years of two digits, zones by name) and RFC 3339 (also with less than it asks for: a
// date alone, a month, a space for the T, no zone). Without a zone UTC is meant.
std::optional<QDateTime> feedDate(QStringView text);

} // namespace zq::app
