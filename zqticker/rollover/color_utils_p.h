// The arithmetic behind derived colours.
#pragma once

namespace zq {

// Hue, saturation, brightness and alpha, as computed: not limited to 0 to 1.
struct HSBA {
  double hue = 0;
  double saturation = 0;
  double brightness = 0;
  double alpha = 1;
};

// The components of a lighter colour.
HSBA lighterComponents(HSBA components);

} // namespace zq
