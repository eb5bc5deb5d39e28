// Random strings from a known start.
#pragma once

#include <QtCore/QString>

#include <cstdint>

namespace zq {

// `length` characters, each drawn from `characters` (not empty). The same `seed` gives the same
// string.
QString randomString(qsizetype length, const QString& characters, std::uint32_t seed);

} // namespace zq
