// Where the parts of a rollover button's cell lie.
#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/string_drawing.h"
#include "zqticker/rollover/RollOverDrawings_p.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"
#include "zqticker/rollover/path_shapes.h"
#include "zqticker/text_image/font_fixes.h"

#include <cmath>

using namespace zq::platform;

// The bezel style of rounded rectangles; all others are plates.
static constexpr std::uint64_t RoundedRectBezelStyle = 6;
static constexpr float ButtonCornerRadius = 4.3F;
// Points between the frame and the outline, so that a stroke of one point lies on whole pixels.
static constexpr double OutlineInset = 1.5;
// Arrow sides in parts of the control's font size, and how far the arrow hangs, in parts of the
// radius of a plate's end.
static constexpr double ArrowWidth = 0.6;
static constexpr double ArrowHeight = 0.5;
static constexpr double ArrowDrop = 0.05;

// Where the width or the ascender is asked of no font, it is that of the default one.
static Ref<Font> fontOf(const Cell& cell) {
  const Ref<Font> font = cell.font();
  return font ? font : std::make_shared<Font>();
}

static QSizeF sizeOfTitle(const Cell& cell) {
  Attributes attributes;
  if (const Ref<Font> font = cell.font())
    attributes.insert(FontAttributeName, any(font));
  return sizeWithAttributes(cell.title(), attributes);
}

// The radius of a plate's ends.
static float endRadiusOf(double frameHeight) {
  return float(frameHeight) * 0.5F - 1.5F;
}

void ZQRollOverButtonCell::calculateLayoutForFrame(const QRectF& frame, ControlView* inView) {
  const bool isFlipped = inView && inView->isFlipped();
  setLastFrameSize(frame.size());
  QRectF rect = frame.adjusted(OutlineInset, OutlineInset, -OutlineInset, -OutlineInset);
  rect.setHeight(rect.height() - 1);
  if (!isFlipped)
    rect.translate(0, -1);

  const QSizeF titleSize = sizeOfTitle(*this);
  const double textHeight = titleSize.height();
  const float inset = float(textInsetForHeight(lastFrameSize_.height())) + 1.5F;
  textRect_ = rect.adjusted(inset, 0, -inset, 0);
  textRect_.setHeight(textHeight);

  // The middle of the capitals comes to the middle of the outline, not that of the line's box.
  const Ref<Font> font = fontOf(*this);
  const float capHeight = zq::fixed_capHeight(font);
  const float base = (float(rect.height()) - float(textHeight)) * 0.5F;
  const double halfOverCaps = 0.5 * (textHeight - double(capHeight));
  // In a flipped view the whole sum is rounded up, otherwise its first term alone. Titles would
  // move by a fraction of a point if both went the same way.
  const double offset =
      isFlipped ? double(std::ceil(
                      float(double(base) + (font->ascender() - double(capHeight)) - halfOverCaps)))
                : double(std::ceil(base)) + font->descender() + halfOverCaps;
  textRect_.moveTop(rect.y() + offset);

  getBackgroundSelector_ = zqBezelStyle() == RoundedRectBezelStyle
                               ? zq::bezierPathForButtonWithRoundedRect
                               : zq::bezierPathWithPlateInRect;
  QRectF outline(QPointF(), rect.size());
  setBackgroundPath(getBackgroundSelector_(outline));
  outline = QRectF(0, isFlipped ? 1 : 0, outline.width(), outline.height() - 1);
  setHighlightedBackgroundPath(getBackgroundSelector_(outline));

  if (menu())
    layOutArrow(endRadiusOf(lastFrameSize_.height()), isFlipped);
}

// By the frame's size alone: the cell fills its view from the origin.
void ZQRollOverButtonCell::layOutArrow(float endRadius, bool isFlipped) {
  const double radius = double(endRadius);
  const double fontSize = Font::systemFontSizeForControlSize(controlSize());
  const double width = double(float(fontSize * ArrowWidth));
  const double height = double(float(fontSize * ArrowHeight));
  textRect_.setWidth(textRect_.width() - (radius * 0.5 + width * 0.5));

  const double x = lastFrameSize_.width() - OutlineInset - radius * 0.5 - width;
  const double drop = isFlipped ? radius * ArrowDrop : -radius * ArrowDrop;
  const double lowerY = (radius + OutlineInset) - height * 0.5 + drop;
  const double upperY = lowerY + height;
  // It points downwards as it is seen.
  const double baseY = isFlipped ? lowerY : upperY;
  const double apexY = isFlipped ? upperY : lowerY;
  const Ref<BezierPath> arrow = BezierPath::make();
  arrow->moveToPoint({x, baseY});
  arrow->lineToPoint({x + width / 2, apexY});
  arrow->lineToPoint({x + width, baseY});
  arrow->lineToPoint({x, baseY});
  arrow->closePath();
  setArrowPath(arrow);
}

double ZQRollOverButtonCell::textInsetForHeight(double height) const {
  if (zqBezelStyle() == RoundedRectBezelStyle)
    return double(std::ceil(ButtonCornerRadius));
  const float r = endRadiusOf(height);
  const float a = float(fontOf(*this)->ascender()) * 0.5F;
  // A whole number, as layouts have always had it.
  const float d = std::fabs(std::trunc(r * r - a * a));
  return double(std::ceil(r - std::sqrt(d)));
}

QSizeF ZQRollOverButtonCell::cellSize() const {
  return intrinsicContentSize();
}

QSizeF ZQRollOverButtonCell::intrinsicContentSize() const {
  const double height = controlSize() == ControlSize::Small  ? 19
                        : controlSize() == ControlSize::Mini ? 16
                                                             : 22;
  const double inset = std::ceil(textInsetForHeight(height));
  double width = sizeOfTitle(*this).width() + 2 * (inset + 1.5 + 1.5);
  if (menu())
    width +=
        Font::systemFontSizeForControlSize(controlSize()) * ArrowWidth + (height * 0.5 - 1.5) * 0.5;
  return {width, height};
}
