#include "zqticker/rollover/RollOverLook_p.h"

#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/rollover/RollOverDrawings_p.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"

using namespace zq::platform;

namespace zq {

namespace {

constexpr unsigned PressedMask = PushInCellMask | ChangeGrayCellMask | ChangeBackgroundCellMask;
constexpr unsigned OnMask = ChangeGrayCellMask | ChangeBackgroundCellMask;

RollOverLook highlightedLook(const ZQRollOverButtonCell& cell) {
  RollOverLook look;
  look.controlColor = look.gradientColor = cell.highlightedControlColor();
  look.shadingColor = cell.highlightedShadingColor();
  look.textColor = cell.highlightedTextColor();
  look.arrowColor = cell.highlightedArrowColor();
  look.textShadow = cell.highlightedTextShadow();
  return look;
}

RollOverLook mouseoverLook(const ZQRollOverButtonCell& cell) {
  RollOverLook look;
  look.controlColor = look.gradientColor = cell.mouseoverControlColor();
  look.shadingColor = cell.mouseoverShadingColor();
  look.textColor = cell.mouseoverTextColor();
  look.arrowColor = cell.mouseoverArrowColor();
  look.textShadow = cell.mouseoverTextShadow();
  return look;
}

// A disabled cell fades what it draws but for a flat body.
RollOverLook normalLook(const ZQRollOverButtonCell& cell, RollOverDrawings& drawings) {
  RollOverLook look;
  look.controlColor = look.gradientColor = cell.controlColor();
  look.shadingColor = cell.shadingColor();
  look.textColor = cell.textColor();
  look.arrowColor = cell.arrowColor();
  look.textShadow = cell.textShadow();
  if (!cell.isEnabled()) {
    look.gradientColor = drawings.disabled(look.gradientColor);
    look.shadingColor = drawings.disabled(look.shadingColor);
    look.textColor = drawings.disabled(look.textColor);
    look.arrowColor = drawings.disabled(look.arrowColor);
  }
  return look;
}

RollOverLook lookByState(const ZQRollOverButtonCell& cell, RollOverDrawings& drawings) {
  if (cell.isHighlighted() && (cell.highlightsBy() & PressedMask)) {
    RollOverLook look = highlightedLook(cell);
    look.isPressed = true;
    look.bodyShadow = cell.highlightedControlShadow();
    return look;
  }
  if (cell.mouseOver())
    return mouseoverLook(cell);
  if (cell.state() == CellState::On && (cell.showsStateBy() & OnMask))
    return highlightedLook(cell);
  return normalLook(cell, drawings);
}

} // namespace

RollOverLook lookOf(const ZQRollOverButtonCell& cell, RollOverDrawings& drawings) {
  RollOverLook look = lookByState(cell, drawings);
  // The second time in the normal look, which is deliberate: there the arrow of a disabled cell
  // vanishes altogether.
  if (!cell.isEnabled())
    look.arrowColor = drawings.disabled(look.arrowColor);
  return look;
}

Ref<Color> frameColorOf(const ZQRollOverButtonCell& cell, RollOverDrawings& drawings) {
  if (cell.isHighlighted())
    return cell.highlightedFrameColor();
  if (cell.mouseOver())
    return cell.mouseoverFrameColor();
  if (cell.state() == CellState::On)
    return cell.highlightedFrameColor();
  return cell.isEnabled() ? cell.frameColor() : drawings.disabled(cell.frameColor());
}

} // namespace zq
