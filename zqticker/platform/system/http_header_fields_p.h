// Header fields of an HTTP message and the syntax that many of them share.
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

#include <initializer_list>
#include <optional>
#include <utility>

namespace zq::platform {

// Names and values in the order in which they came. Names are compared without regard to case.
using HTTPHeaderFields = QList<std::pair<QString, QString>>;

bool isHTTPFieldName(QStringView name, QLatin1StringView other);

// The values of every field called `name`, joined by ", " in their order; nothing without one.
std::optional<QString> httpFieldValue(const HTTPHeaderFields& fields, QLatin1StringView name);

// The elements of a comma-separated list, trimmed, without empty ones. A comma between double
// quotes does not part elements; quotes stay in place.
QList<QStringView> httpListElements(QStringView value);

// `fields` without those called one of `names`.
HTTPHeaderFields withoutHTTPFields(const HTTPHeaderFields& fields,
                                   std::initializer_list<QLatin1StringView> names);

} // namespace zq::platform
