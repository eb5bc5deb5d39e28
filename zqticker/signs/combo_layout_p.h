// The layout of a combo sign, apart from any display or drawing: pure geometry, and the scale that
// fits a text to a height.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>

#include <optional>

namespace zq::platform {
class AttributedString;
} // namespace zq::platform

// What the layout asks of the display and the sign. Lengths are points.
struct ComboLayoutInput {
  QSizeF displaySize;
  bool horizontal = false;
  qreal displayTextOffset = 0;
  // Nothing without a picture.
  std::optional<QSizeF> imageSize;
  // Of the sign's font; 0 without one.
  double fontPointSize = 0;
  QSizeF textSize;
};

// Where things stand relative to the sign's lower-left corner.
struct ComboLayout {
  QRectF imageTargetRect;
  QPointF textOffset;
  QSizeF size;
};

ComboLayout layoutCombo(const ComboLayoutInput& input);

// The smallest ratio of fitted to present point size over the runs of `text` that have a font,
// where fitted means the largest size whose line fits `height`; the largest finite double when no
// run has a font.
double scaleFactorToFitHeight(const zq::platform::AttributedString& text, qreal height);

// `text` with the point size of every run's font multiplied by `factor`, all else kept.
zq::platform::Ref<zq::platform::AttributedString>
textWithScaledFonts(const zq::platform::AttributedString& text, double factor);
