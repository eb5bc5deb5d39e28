// Colours and shadows made from others or from the desktop's theme: additions to Color and Shadow.
//
// Every call returns a new object. Thread: main.
#pragma once

#include "zqticker/zqticker_export.h"

#include <memory>

namespace zq::platform {
class Color;
class Shadow;
} // namespace zq::platform

// Color (ZQAdditions)
//
// They take the colour first, null giving null. Its hue, saturation and brightness are those of its
// device RGB; results are calibrated.

namespace zq {

// Hue 0.2, saturation 0.2, brightness 1.
// Operation: + lightYellowColor
ZQTICKER_EXPORT std::shared_ptr<platform::Color> lightYellowColor();

// A fully saturated colour of the same hue and alpha and half the brightness. A dark colour, of a
// brightness of at most 0.3, gives the desktop's tint at full brightness instead, with the tint's
// alpha.
ZQTICKER_EXPORT std::shared_ptr<platform::Color>
accentColor(const std::shared_ptr<platform::Color>& color);

// A brighter colour of the same hue and alpha. Up to a brightness of 0.4 it becomes 0.6, below 0.9
// it grows by 0.3 of itself and 0.1. From 0.9 on brightness becomes 1 and the saturation changes:
// above 0.12 to half of it less 0.1, at least 0; else by 0.25 more.
ZQTICKER_EXPORT std::shared_ptr<platform::Color>
lighterColor(const std::shared_ptr<platform::Color>& color);

// The colour with the alpha 0.5 where it is opaque, and invisible where it is not. A pattern stays
// as it is.
ZQTICKER_EXPORT std::shared_ptr<platform::Color>
disabledColor(const std::shared_ptr<platform::Color>& color);

} // namespace zq

// The theme's colour of tool tips; without one lightYellowColor. The theme is asked on every call.
// Operation: + zq_toolTipColor
ZQTICKER_EXPORT std::shared_ptr<zq::platform::Color> zq_toolTipColor();

// The theme's colour of the text in tool tips; without one black.
// Operation: + zq_toolTipTextColor
ZQTICKER_EXPORT std::shared_ptr<zq::platform::Color> zq_toolTipTextColor();

// Shadow (ZQRollOverButton)
//
// The default shadows of a rollover button, each with a blur radius of one point. Where the theme
// lacks the colour a shadow has none, and is not drawn.

// One point downwards, in the theme's controlLightHighlightColor.
// Operation: + zqRollOverButtonDefaultControlShadow
ZQTICKER_EXPORT std::shared_ptr<zq::platform::Shadow> zqRollOverButtonDefaultControlShadow();

// One point upwards, in the theme's controlDarkShadowColor.
// Operation: + zqRollOverButtonDefaultHighlightedControlShadow
ZQTICKER_EXPORT std::shared_ptr<zq::platform::Shadow>
zqRollOverButtonDefaultHighlightedControlShadow();

// One point downwards, in the calibrated white 0.3.
// Operation: + zqRollOverButtonDefaultTextShadow
ZQTICKER_EXPORT std::shared_ptr<zq::platform::Shadow> zqRollOverButtonDefaultTextShadow();
