// What the lines of one source have in common.
#pragma once

#include "app/display/SignOrigin.h"
#include "zqticker/platform/objects/Object.h"

namespace zq::platform {
class Color;
class Font;
} // namespace zq::platform

namespace zq::app {

// Where lines come from, and how they look. Lines hold it together, however many there are.
struct LineSource {
  SignOrigin origin;
  platform::Ref<platform::Font> font;   // null for the strip's
  platform::Ref<platform::Color> color; // null for the strip's
};

} // namespace zq::app
