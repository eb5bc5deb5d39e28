#include "zqticker/platform/controls/TextFieldCell.h"

#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/cell_drawing_p.h"
#include "zqticker/platform/controls/text_wrapping_p.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/text/AttributedString.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <QtWidgets/QWidget>

#include <algorithm>
#include <limits>

namespace zq::platform {

TextFieldCell::TextFieldCell() = default;
TextFieldCell::~TextFieldCell() = default;

Ref<Object> TextFieldCell::copy() {
  return Ref<Object>(new TextFieldCell(*this));
}

void TextFieldCell::encodeWithCoder(Coder& coder) {
  Object::encodeWithCoder(coder);
}
Ref<Object> TextFieldCell::initWithCoder(Coder& coder) {
  return Object::initWithCoder(coder);
}

Ref<AttributedString> TextFieldCell::attributedStringValue() const {
  if (const auto text = objectOf<AttributedString>(objectValue()))
    return text;
  return AttributedString::make(title(), attributesOfTitle(*this));
}

QSizeF TextFieldCell::margins() const {
  const double border = isBordered() ? BorderWidth : 0;
  return {2 * (border + Padding), 2 * border};
}

static QSizeF sizeOf(const std::vector<WrappedLine>& lines) {
  QSizeF size(0, 0);
  for (const WrappedLine& line : lines)
    size = QSizeF(std::max(size.width(), line.size.width()), size.height() + line.size.height());
  return size;
}

QSizeF TextFieldCell::cellSize() const {
  constexpr double unlimited = std::numeric_limits<double>::infinity();
  const Ref<AttributedString> text = attributedStringValue();
  // Empty text has the height of its line.
  if (text->length() == 0)
    return ActionCell::cellSize() + margins();
  return sizeOf(wrappedLines(*text, {unlimited, unlimited})) + margins();
}

QSizeF TextFieldCell::cellSizeForBounds(const QRectF& bounds) const {
  const Ref<AttributedString> text = attributedStringValue();
  const QSizeF needed =
      text->length() == 0
          ? ActionCell::cellSize() + margins()
          : sizeOf(wrappedLines(*text, drawingRectForBounds(bounds).size())) + margins();
  const auto limited = [](double length, double limit) {
    return limit > 0 ? std::min(length, limit) : 0.0;
  };
  return {limited(needed.width(), bounds.width()), limited(needed.height(), bounds.height())};
}

QRectF TextFieldCell::drawingRectForBounds(const QRectF& bounds) const {
  const QSizeF half = margins() / 2;
  return bounds.adjusted(half.width(), half.height(), -half.width(), -half.height());
}

// `text` in the desktop's colour where it has none.
static Ref<AttributedString> coloured(const Ref<AttributedString>& text, const Cell& cell,
                                      ControlView* view) {
  const QWidget* widget = view ? view->widget() : nullptr;
  const QPalette palette = widget ? widget->palette() : QGuiApplication::palette();
  const Ref<Color> color = Color::fromQColor(palette.color(
      cell.isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
  const Ref<MutableAttributedString> result = text->mutableCopy();
  for (const AttributedString::Run& run : text->runs())
    if (!run.attributes.contains(ForegroundColorAttributeName))
      result->addAttribute(ForegroundColorAttributeName, any(color), run.range);
  return result;
}

void TextFieldCell::drawInteriorWithFrame(const QRectF& frame, ControlView* inView) {
  GraphicsContext* context = GraphicsContext::currentContext();
  const QRectF rect = drawingRectForBounds(frame);
  if (!context || rect.isEmpty())
    return;
  const SavedGraphicsState saved(context);
  context->clipToRect(rect);
  double down = 0;
  for (const WrappedLine& line :
       wrappedLines(*coloured(attributedStringValue(), *this, inView), rect.size())) {
    double x = rect.x();
    if (alignment() == TextAlignment::Center)
      x += (rect.width() - line.size.width()) / 2;
    else if (alignment() == TextAlignment::Right)
      x += rect.width() - line.size.width();
    const double y =
        context->isFlipped() ? rect.top() + down : rect.bottom() - down - line.size.height();
    line.text->drawAtPoint({x, y});
    down += line.size.height();
  }
}

} // namespace zq::platform
