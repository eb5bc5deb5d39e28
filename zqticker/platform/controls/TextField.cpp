#include "zqticker/platform/controls/TextField.h"

#include "zqticker/platform/controls/TextFieldCell.h"
#include "zqticker/platform/controls/callback_border_p.h"
#include "zqticker/platform/controls/mouse_events_p.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"

#include <QtCore/QEvent>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::platform {

// `length` rounded up within what a widget bears.
static int wholePoints(double length) {
  return length > 0 ? int(std::ceil(std::min(length, double(QWIDGETSIZE_MAX)))) : 0;
}

// A coordinate to the nearest whole point.
static int nearestPoint(double coordinate) {
  constexpr double farthest = 1 << 30;
  return std::isnan(coordinate) ? 0 : int(std::lround(std::clamp(coordinate, -farthest, farthest)));
}

TextField::TextField(QWidget* parent) : QWidget(parent), cell_(std::make_shared<TextFieldCell>()) {
  cell_->setControlView(this);
}

TextField::~TextField() = default;

void TextField::setCell(const Ref<TextFieldCell>& cell) {
  if (!cell)
    throw InvalidArgumentException(u"a text field needs a cell"_s);
  if (cell_ != cell)
    cell_->setControlView(nullptr);
  cell_ = cell;
  cell_->setControlView(this);
  cell_->setEnabled(isEnabled());
  setNeedsDisplay();
}

QString TextField::stringValue() const {
  return cell_->title();
}

void TextField::setStringValue(const QString& stringValue) {
  setValue(Any(stringValue));
}

void TextField::setAttributedStringValue(const Ref<AttributedString>& attributedStringValue) {
  setValue(attributedStringValue ? any(attributedStringValue) : Any(QString()));
}

void TextField::setValue(const Any& value) {
  cell_->setObjectValue(value);
  setAccessibleName(cell_->title());
  setNeedsDisplay();
}

QRectF TextField::frame() const {
  const QWidget* parent = superview();
  if (!parent)
    return {0, 0, double(width()), double(height())};
  return {double(x()), double(parent->height() - y() - height()), double(width()),
          double(height())};
}

void TextField::setFrame(const QRectF& frame) {
  const QSize size(wholePoints(frame.width()), wholePoints(frame.height()));
  const QWidget* parent = superview();
  if (!parent)
    return resize(size);
  const int bottom = parent->height() - nearestPoint(frame.y());
  setGeometry(QRect(QPoint(nearestPoint(frame.x()), bottom - size.height()), size));
}

QSize TextField::sizeHint() const {
  const QSizeF size = cell_->cellSize();
  return {wholePoints(size.width()), wholePoints(size.height())};
}

int TextField::heightForWidth(int width) const {
  return wholePoints(
      cell_->cellSizeForBounds(QRectF(0, 0, width, double(QWIDGETSIZE_MAX))).height());
}

QRectF TextField::bounds() const {
  return {0, 0, double(width()), double(height())};
}

QPointF TextField::convertPointToWindow(QPointF point) const {
  return windowPointFromGlobal(mapToGlobal(point), *this);
}

QPointF TextField::convertPointFromWindow(QPointF point) const {
  return mapFromGlobal(globalPointFromWindow(point, *this));
}

void TextField::setNeedsDisplay() {
  updateGeometry();
  update();
}

void TextField::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const GraphicsContext context(&painter, size(), isFlipped());
  logRaised([&] { cell_->drawWithFrame(bounds(), this); });
}

void TextField::changeEvent(QEvent* event) {
  if (event->type() == QEvent::EnabledChange)
    cell_->setEnabled(isEnabled());
  QWidget::changeEvent(event);
}

} // namespace zq::platform
