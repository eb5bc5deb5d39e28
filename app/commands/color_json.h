// Colours and shadows as JSON that people write.
//
// A colour is null for none; "#rrggbb" or "#rrggbbaa" in device RGB; or an object: {"space",
// "components"} with the components from 0 to 1, alpha last and 1 where it is left out;
// {"space": "Catalog", "catalog", "name", "fallback"} for a named colour; {"space": "Archived",
// "archive"} with the colour's keyed archive in base64 for patterns and all others. A shadow is
// null for none, or {"offset": [width, height], "blurRadius", "color"}.
//
// What is written reads back equal. Reading raises JsonError.
#pragma once

#include "app/commands/JsonValue.h"
#include "app/commands/OutputValue.h"
#include "zqticker/platform/objects/Object.h"

namespace zq::platform {
class Color;
class Shadow;
} // namespace zq::platform

namespace zq::app {

OutputValue jsonOfColor(const platform::Ref<platform::Color>& color);
OutputValue jsonOfShadow(const platform::Ref<platform::Shadow>& shadow);

platform::Ref<platform::Color> colorOfJson(const JsonValue& json);
platform::Ref<platform::Shadow> shadowOfJson(const JsonValue& json);

} // namespace zq::app
