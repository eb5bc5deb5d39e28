#include "app/controls/ControlBarButton.h"

#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"
#include "zqticker/rollover/color_utils.h"

namespace zq::app {

using namespace platform;

namespace {
// The part of the button's height that a glyph takes.
constexpr double GlyphFraction = 0.4;

struct GlyphLook {
  Ref<Color> color;
  Ref<Shadow> shadow;
};

// That of the title.
GlyphLook lookOf(const ZQRollOverButtonCell& cell) {
  const GlyphLook highlighted{cell.highlightedTextColor(), cell.highlightedTextShadow()};
  if (cell.isHighlighted())
    return highlighted;
  if (cell.mouseOver())
    return {cell.mouseoverTextColor(), cell.mouseoverTextShadow()};
  if (cell.state() == CellState::On)
    return highlighted;
  return {cell.isEnabled() ? cell.textColor() : disabledColor(cell.textColor()), cell.textShadow()};
}
} // namespace

ControlBarButton::ControlBarButton(ControlGlyph glyph, QWidget* parent)
    : RollOverButtonClass(this), ZQRollOverButton(QRectF(), QString(), parent), glyph_(glyph) {}

ControlBarButton::~ControlBarButton() = default;

void ControlBarButton::setGlyph(ControlGlyph glyph) {
  glyph_ = glyph;
  setNeedsDisplay();
}

void ControlBarButton::setPurpose(const QString& purpose) {
  setToolTip(purpose);
  setAccessibleName(purpose);
}

void ControlBarButton::menuDidOpen(Menu& menu) {
  ZQRollOverButton::menuDidOpen(menu);
  Q_EMIT menuOpening();
}

bool ControlBarButton::hasLook() {
  return appearance<ControlBarButton>() != nullptr;
}

void ControlBarButton::drawRect(const QRectF& dirtyRect) {
  ZQRollOverButton::drawRect(dirtyRect);
  const auto own = std::dynamic_pointer_cast<ZQRollOverButtonCell>(cell());
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!own || !context)
    return;
  const GlyphLook look = lookOf(*own);
  // In the middle of the body; the arrow of a menu takes its room from the title's.
  const QPointF middle(own->textRect().center().x(), (bounds().height() - 1) / 2);
  const QTransform toDevice = context->deviceTransform();
  const QPainterPath glyph = controlGlyph(glyph_, toDevice.map(middle),
                                          bounds().height() * GlyphFraction * context->scale());
  const SavedGraphicsState saved(context);
  context->setFillColor(look.color);
  context->setShadow(look.shadow.get());
  context->fillPath(toDevice.inverted().map(glyph));
}

} // namespace zq::app
