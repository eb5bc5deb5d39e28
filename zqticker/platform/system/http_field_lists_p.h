// Lists in the values of HTTP fields, and lists of fields.
#pragma once

#include "zqticker/platform/system/URLResponse.h"

#include <initializer_list>

namespace zq::platform {

// Field names and many words in values have no case.
bool isHTTPFieldName(QStringView name, QLatin1StringView other);

// The elements of a comma-separated list, trimmed, without empty ones. A comma between double
// quotes does not part elements; quotes stay in place.
QList<QStringView> httpListElements(QStringView value);

// `fields` without those called one of `names`.
HTTPHeaderFields withoutHTTPFields(const HTTPHeaderFields& fields,
                                   std::initializer_list<QLatin1StringView> names);

} // namespace zq::platform
