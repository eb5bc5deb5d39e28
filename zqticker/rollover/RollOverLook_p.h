// Which colours and shadows a rollover button's cell shows in its present state.
#pragma once

#include "zqticker/rollover/appearance_attributes.h"

class ZQRollOverButtonCell;

namespace zq {

class RollOverDrawings;

struct RollOverLook {
  // Whether it is pressed in: the highlighted outline, and a body that casts bodyShadow.
  bool isPressed = false;
  // Of a flat body, and what both ends of a gradient are; the latter without a shading colour is
  // not used. They differ for a disabled cell only.
  ZQColorAttribute controlColor;
  ZQColorAttribute gradientColor;
  // Null for a flat body.
  ZQColorAttribute shadingColor;
  ZQColorAttribute textColor;
  ZQColorAttribute arrowColor;
  // Of arrow and title.
  ZQShadowAttribute textShadow;
  ZQShadowAttribute bodyShadow;
};

// The look of the interior.
RollOverLook lookOf(const ZQRollOverButtonCell& cell, RollOverDrawings& drawings);

// The colour of the frame.
ZQColorAttribute frameColorOf(const ZQRollOverButtonCell& cell, RollOverDrawings& drawings);

} // namespace zq
