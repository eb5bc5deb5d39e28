// How a rollover button's cell looks.
#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/rollover/RollOverDrawings_p.h"
#include "zqticker/rollover/RollOverLook_p.h"
#include "zqticker/rollover/RollOverPictures_p.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"
#include "zqticker/rollover/shading.h"
#include "zqticker/rollover/title_drawing_p.h"

#include <cmath>

using namespace zq::platform;

// From the origin of the frame to that of the outline.
static constexpr QPointF OutlineOffset(1.5, 1.5);
static constexpr double FillFlatness = 0.2;

// Colours and shadows that are null leave what was set before.
static void set(const Ref<Color>& color) {
  if (color)
    color->set();
}
static void set(const Ref<Shadow>& shadow) {
  if (shadow)
    shadow->set();
}

// The control colour lies at what is seen as the top of a linear gradient, and at both edges of a
// bilinear one.
static void fillBody(const Ref<BezierPath>& path, const zq::RollOverLook& look,
                     std::uint64_t shadingMode, bool isFlipped) {
  if (look.shadingColor && shadingMode == ZQShadingModeBilinear)
    zq::bilinearGradientFillWithOuterColor(path, look.shadingColor, look.gradientColor);
  else if (look.shadingColor && shadingMode == ZQShadingModeLinear && isFlipped)
    zq::linearGradientFillWithStartColor(path, look.gradientColor, look.shadingColor);
  else if (look.shadingColor && shadingMode == ZQShadingModeLinear)
    zq::linearGradientFillWithStartColor(path, look.shadingColor, look.gradientColor);
  else
    path->fill();
}

static zq::PictureKey keyOfBody(const zq::RollOverLook& look, std::uint64_t shadingMode) {
  zq::PictureKey key(zq::PictureKey::Part::Body);
  key.add(look.controlColor);
  key.add(std::uint64_t(look.shadingColor != nullptr));
  if (look.shadingColor) {
    key.add(shadingMode);
    key.add(look.gradientColor);
    key.add(look.shadingColor);
  }
  key.add(look.bodyShadow);
  return key;
}

// What a body in `frame` may cover together with its shadow, which fades out within its blur radius
// and a half.
static QRectF reachOf(const Ref<Shadow>& shadow, const QRectF& frame) {
  if (!shadow)
    return frame;
  const double reach = std::abs(shadow->shadowOffset().width()) +
                       std::abs(shadow->shadowOffset().height()) +
                       1.5 * shadow->shadowBlurRadius() + 3;
  return frame.adjusted(-reach, -reach, reach, reach);
}

// Strokes what lies in `half`, with `shadow` under it.
static void strokeHalf(const Ref<BezierPath>& outline, const QRectF& half,
                       const Ref<Shadow>& shadow) {
  GraphicsContext* context = GraphicsContext::currentContext();
  const SavedGraphicsState saved(context);
  context->clipToRect(half);
  set(shadow);
  outline->stroke();
}

void ZQRollOverButtonCell::drawWithFrame(const QRectF& frame, ControlView* inView) {
  if (lastFrameSize_.width() != frame.width() || lastFrameSize_.height() != frame.height())
    calculateLayoutForFrame(frame, inView);
  drawInteriorWithFrame(frame, inView);
  if (!isBordered() || !GraphicsContext::currentContext())
    return;

  const Ref<Color> color = zq::frameColorOf(*this, *drawings_);
  set(color);
  const Ref<BezierPath> outline =
      drawings_->background.at(frame.topLeft() + OutlineOffset, backgroundPath_,
                               GraphicsContext::currentContext()->deviceTransform());
  if (!outline)
    return;
  // Only the half that is seen as the lower one casts the shadow.
  const bool isFlipped = inView && inView->isFlipped();
  const double half = double(std::floor(float(frame.height()) * 0.5F));
  const Ref<Shadow> shadow = controlShadow();
  const auto stroke = [&] {
    set(color);
    strokeHalf(outline, {frame.x(), frame.y(), frame.width(), half}, isFlipped ? nullptr : shadow);
    strokeHalf(outline, {frame.x(), frame.y() + half, frame.width(), half},
               isFlipped ? shadow : nullptr);
  };
  zq::PictureKey key(zq::PictureKey::Part::Frame);
  key.add(color);
  key.add(shadow);
  key.add(std::uint64_t(isFlipped));
  key.add(outline->painterPath());
  if (!zq::RollOverPictures::shared().draw(key, frame, stroke))
    stroke();
}

void ZQRollOverButtonCell::drawInteriorWithFrame(const QRectF& frame, ControlView* inView) {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!context)
    return;
  const bool isFlipped = inView && inView->isFlipped();
  const zq::RollOverLook look = zq::lookOf(*this, *drawings_);

  if (look.isPressed)
    context->saveGraphicsState();
  set(look.controlColor);
  const QPointF offset = frame.topLeft() + OutlineOffset;
  const QTransform toDevice = context->deviceTransform();
  const Ref<BezierPath> outline =
      look.isPressed
          ? drawings_->highlightedBackground.at(offset, highlightedBackgroundPath_, toDevice)
          : drawings_->background.at(offset, backgroundPath_, toDevice);
  if (outline) {
    outline->setLineWidth(0);
    outline->setFlatness(FillFlatness);
    const auto fill = [&] {
      set(look.controlColor);
      set(look.bodyShadow);
      fillBody(outline, look, shadingMode(), isFlipped);
    };
    zq::PictureKey key = keyOfBody(look, shadingMode());
    key.add(std::uint64_t(isFlipped));
    key.add(outline->painterPath());
    if (!zq::RollOverPictures::shared().draw(key, reachOf(look.bodyShadow, frame), fill))
      fill();
  }
  // By the highlight alone, which is deliberate: a cell that is highlighted by its contents only
  // has saved nothing, and takes back what its caller saved. Such cells draw their title unclipped
  // by that state.
  if (isHighlighted())
    context->restoreGraphicsState();

  const SavedGraphicsState saved(context);
  set(look.textShadow);
  if (menu() && arrowPath_ && (alwaysShowMenuIndicator() || mouseOver_)) {
    set(look.arrowColor);
    arrowPath_->fill();
  }
  const zq::TitleLook title{shownTitle(), font(), look.textColor, alignment(), textRect_.width()};
  zq::drawLineInRect(drawings_->title(title), textRect_, title.alignment, isFlipped);
}
