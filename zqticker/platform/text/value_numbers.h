// What values of any kind answer when they are asked for a number.
//
// Numbers, booleans, decimal numbers and texts answer; nothing, data, dates, lists, maps and
// reference objects do not, and give std::nullopt.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <optional>

namespace zq::platform {

// Whole numbers keep their low bits, as a conversion in C does. Others are cut toward zero; beyond
// the range they give the nearest number in it, and what is not a number gives 0. Texts count as by
// number_parsing.h.
ZQTICKER_EXPORT std::optional<qlonglong> longLongValueOf(const Any& value);
ZQTICKER_EXPORT std::optional<int> intValueOf(const Any& value);

// Rounded to single precision once.
ZQTICKER_EXPORT std::optional<float> floatValueOf(const Any& value);

// A number or a text as it stands in a message; "(null)" for nothing, else the name of its type.
ZQTICKER_EXPORT QString descriptionOf(const Any& value);

} // namespace zq::platform
