#include "app/commands/ButtonSample.h"

#include "app/commands/color_contrast.h"
#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"
#include "zqticker/rollover/color_utils.h"

#include <QtGui/QPainter>

#include <algorithm>
#include <vector>

namespace zq::app {

using namespace platform;

namespace {

// A view that is its own window.
class SampleView : public ControlView {
 public:
  SampleView(QSizeF size, bool isFlipped) : size_(size), isFlipped_(isFlipped) {}

  bool isFlipped() const override { return isFlipped_; }
  QRectF bounds() const override { return {QPointF(), size_}; }
  QPointF convertPointToWindow(QPointF point) const override {
    return isFlipped_ ? QPointF(point.x(), size_.height() - point.y()) : point;
  }
  QPointF convertPointFromWindow(QPointF point) const override {
    return convertPointToWindow(point);
  }
  void setNeedsDisplay() override {}
  QWidget* widget() override { return nullptr; }

 private:
  QSizeF size_;
  bool isFlipped_;
};

// The colours between which a title's contrast lies.
struct TitleColors {
  ZQColorAttribute text;
  ZQColorAttribute control;
  ZQColorAttribute shading;
};

TitleColors titleColors(const ZQRollOverButtonAppearance& appearance, SampleState state) {
  switch (state) {
  case SampleState::MouseOver:
    return {appearance.mouseoverTextColor(), appearance.mouseoverControlColor(),
            appearance.mouseoverShadingColor()};
  case SampleState::Pressed:
  case SampleState::On:
    return {appearance.highlightedTextColor(), appearance.highlightedControlColor(),
            appearance.highlightedShadingColor()};
  default:
    return {appearance.textColor(), appearance.controlColor(), appearance.shadingColor()};
  }
}

} // namespace

void ButtonSample::draw(QPainter& painter, QSizeF size) const {
  SampleView view(size, isFlipped);
  const auto cell = std::make_shared<ZQRollOverButtonCell>(title);
  cell->setAppearance(appearance);
  cell->setControlView(&view);
  // A type that shows that it is on.
  cell->setButtonType(ButtonType::PushOnPushOff);
  cell->setControlSize(controlSize);
  // What buttons have that are given none.
  cell->setFont(Font::boldSystemFontOfSize(Font::systemFontSizeForControlSize(controlSize)));
  cell->setMenu(menu);
  cell->setState(state == SampleState::On ? CellState::On : CellState::Off);
  cell->setEnabled(state != SampleState::Disabled);
  cell->setHighlighted(state == SampleState::Pressed);
  cell->setMouseOver(state == SampleState::MouseOver || state == SampleState::Pressed);

  painter.save();
  painter.setClipRect(view.bounds(), Qt::IntersectClip);
  {
    const GraphicsContext context(&painter, size, isFlipped);
    cell->drawWithFrame(view.bounds(), &view);
  }
  painter.restore();
}

double heightOfButton(ControlSize size) {
  ZQRollOverButtonCell cell;
  cell.setControlSize(size);
  return cell.intrinsicContentSize().height();
}

std::optional<double> titleContrast(const ZQRollOverButtonAppearance& appearance, SampleState state,
                                    const QColor& ground) {
  TitleColors colors = titleColors(appearance, state);
  const std::uint64_t mode = appearance.shadingMode();
  if (mode != ZQShadingModeLinear && mode != ZQShadingModeBilinear)
    colors.shading = nullptr;
  if (!colors.text || !colors.control)
    return std::nullopt;
  if (state == SampleState::Disabled) {
    colors.text = disabledColor(colors.text);
    // A flat body does not fade.
    if (colors.shading) {
      colors.control = disabledColor(colors.control);
      colors.shading = disabledColor(colors.shading);
    }
  }
  const auto contrastTo = [&](const ZQColorAttribute& color) {
    const QColor body = blended(color->qColor(), ground);
    return contrastRatio(blended(colors.text->qColor(), body), body);
  };
  const double contrast = contrastTo(colors.control);
  return colors.shading ? std::min(contrast, contrastTo(colors.shading)) : contrast;
}

} // namespace zq::app
