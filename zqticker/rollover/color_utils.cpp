#include "zqticker/rollover/color_utils.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/graphics/SystemColors.h"
#include "zqticker/rollover/color_utils_p.h"

#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq {

namespace {

HSBA componentsOf(const Color& color) {
  return {color.hueComponent(), color.saturationComponent(), color.brightnessComponent(),
          color.alphaComponent()};
}

Ref<Color> calibrated(const HSBA& components) {
  return Color::calibratedHSB(components.hue, components.saturation, components.brightness,
                              components.alpha);
}

} // namespace

HSBA lighterComponents(HSBA components) {
  double& b = components.brightness;
  double& s = components.saturation;
  if (!(b > 0.4)) {
    b = 0.6;
  } else if (b < 0.9) {
    // Beyond 1 from 0.7 on, and handed on like that: it is the colour's business to limit it.
    b = b + 0.3 * b + 0.1;
  } else {
    b = 1;
    if (s > 0.12) {
      s = s - 0.1 - 0.5 * s;
      if (!(s > 0))
        s = 0;
    } else {
      s = s + 0.25;
    }
  }
  return components;
}

Ref<Color> lightYellowColor() {
  return Color::calibratedHSB(0.2, 0.2, 1);
}

Ref<Color> accentColor(const Ref<Color>& color) {
  if (!color)
    return nullptr;
  HSBA components = componentsOf(*color);
  // Dark colours go to full brightness, all others to half of theirs: not symmetric, on purpose.
  if (components.brightness <= 0.3) {
    components =
        componentsOf(*SystemColors::colorForControlTint(SystemColors::currentControlTint()));
    components.brightness = 1;
  } else {
    components.brightness *= 0.5;
  }
  components.saturation = 1;
  return calibrated(components);
}

Ref<Color> lighterColor(const Ref<Color>& color) {
  return color ? calibrated(lighterComponents(componentsOf(*color))) : nullptr;
}

Ref<Color> disabledColor(const Ref<Color>& color) {
  if (!color)
    return nullptr;
  // The alpha is cut to a whole number first, so that what is not opaque vanishes. Looks are
  // designed for it.
  return color->colorWithAlphaComponent(std::trunc(color->alphaComponent()) * 0.5);
}

} // namespace zq

Ref<Color> zq_toolTipColor() {
  const Ref<Color> color = SystemColors::colorNamed(u"toolTipColor"_s);
  return color ? color : zq::lightYellowColor();
}

Ref<Color> zq_toolTipTextColor() {
  const Ref<Color> color = SystemColors::colorNamed(u"toolTipTextColor"_s);
  return color ? color : Color::calibratedWhite(0);
}

Ref<Shadow> zqRollOverButtonDefaultControlShadow() {
  return std::make_shared<Shadow>(QSizeF(0, -1), 1,
                                  SystemColors::colorNamed(u"controlLightHighlightColor"_s));
}

Ref<Shadow> zqRollOverButtonDefaultHighlightedControlShadow() {
  return std::make_shared<Shadow>(QSizeF(0, 1), 1,
                                  SystemColors::colorNamed(u"controlDarkShadowColor"_s));
}

Ref<Shadow> zqRollOverButtonDefaultTextShadow() {
  return std::make_shared<Shadow>(QSizeF(0, -1), 1, Color::calibratedWhite(0.3));
}
