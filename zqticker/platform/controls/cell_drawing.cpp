#include "zqticker/platform/controls/cell_drawing_p.h"

#include "zqticker/platform/controls/Cell.h"
#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/text/string_drawing.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPainterPath>
#include <QtGui/QPalette>
#include <QtWidgets/QWidget>

namespace zq::platform {

// Corner radius of a button's body in points.
static constexpr double CornerRadius = 4;

static Ref<Color> colorOf(QPalette::ColorRole role, const Cell& cell, ControlView* view) {
  const QWidget* widget = view ? view->widget() : nullptr;
  const QPalette palette = widget ? widget->palette() : QGuiApplication::palette();
  return Color::fromQColor(
      palette.color(cell.isEnabled() ? QPalette::Active : QPalette::Disabled, role));
}

// In the middle of the pixels at the edge, so that a line of one point is sharp.
static QPainterPath outlineOf(const QRectF& frame, double radius) {
  QPainterPath path;
  path.addRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
  return path;
}

Attributes attributesOfTitle(const Cell& cell) {
  Attributes attributes;
  if (const Ref<Font> font = cell.font())
    attributes.insert(FontAttributeName, any(font));
  return attributes;
}

void drawPlainBorder(const QRectF& frame, const Cell& cell, ControlView* view) {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!context)
    return;
  const SavedGraphicsState saved(context);
  context->setStrokeColor(colorOf(QPalette::Mid, cell, view));
  context->strokePath(outlineOf(frame, 0));
}

void drawButtonBody(const QRectF& frame, bool isPressedIn, const Cell& cell, ControlView* view) {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!context)
    return;
  const SavedGraphicsState saved(context);
  const QPainterPath outline = outlineOf(frame, CornerRadius);
  context->setFillColor(colorOf(isPressedIn ? QPalette::Mid : QPalette::Button, cell, view));
  context->fillPath(outline);
  context->setStrokeColor(colorOf(QPalette::Dark, cell, view));
  context->strokePath(outline);
}

void drawTitle(const QString& title, const QRectF& rect, const Cell& cell, ControlView* view) {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!context || title.isEmpty())
    return;
  Attributes attributes = attributesOfTitle(cell);
  const QSizeF size = sizeWithAttributes(title, attributes);
  const double free = rect.width() - size.width();
  double x = rect.x();
  if (cell.alignment() == TextAlignment::Center)
    x += free / 2;
  else if (cell.alignment() == TextAlignment::Right)
    x += free;

  attributes.insert(ForegroundColorAttributeName, any(colorOf(QPalette::ButtonText, cell, view)));
  const SavedGraphicsState saved(context);
  context->clipToRect(rect);
  drawAtPoint(title, {x, rect.y() + (rect.height() - size.height()) / 2}, attributes);
}

} // namespace zq::platform
