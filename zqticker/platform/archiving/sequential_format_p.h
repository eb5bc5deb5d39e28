// The format of sequential archives: a binary property list, an array of the signature, the version
// and the values.
//
// Strings, data, booleans, numbers and dates stand as they are. A UID n stands for the n-th object
// that was begun, from 0. A dictionary without keys is nothing; one of a single key is a list, its
// elements, or a map, its keys and values in turn; an object has a class name and its values.
#pragma once

#include <QtCore/QLatin1StringView>

namespace zq::platform {

inline constexpr QLatin1StringView SequentialSignature("ZQSequentialArchive");
inline constexpr int SequentialVersion = 1;
// How many elements of the array stand before the values.
inline constexpr unsigned SequentialHeaderCount = 2;

inline constexpr QLatin1StringView SequentialListKey("list");
inline constexpr QLatin1StringView SequentialMapKey("map");
inline constexpr QLatin1StringView SequentialClassKey("class");
inline constexpr QLatin1StringView SequentialValuesKey("values");

} // namespace zq::platform
