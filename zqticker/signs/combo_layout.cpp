#include "zqticker/signs/combo_layout_p.h"

#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/FontManager.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/text_attributes.h"

#include <algorithm>
#include <limits>

using namespace zq::platform;

namespace {
// Gap between picture and text: a quarter of the display's height, or of the font's size.
constexpr double GapFraction = 0.25;
// Gap after a horizontal sign, as a part of the display's height.
constexpr double TrailingGapFraction = 0.5;
constexpr double Half = 0.5;

// The picture scaled down to the display's height, or centred in it; never scaled up.
QRectF fitToHeight(QSizeF image, qreal height) {
  if (image.height() > height)
    return QRectF(0, 0, image.width() / image.height() * height, height);
  return QRectF(0, (height - image.height()) * Half, image.width(), image.height());
}

QRectF fitToWidth(QSizeF image, qreal width) {
  if (image.width() > width)
    return QRectF(0, 0, width, image.height() / image.width() * width);
  return QRectF((width - image.width()) * Half, 0, image.width(), image.height());
}

Ref<Font> fontOf(const AttributedString::Run& run) {
  return objectOf<Font>(run.attributes.value(FontAttributeName));
}
} // namespace

ComboLayout layoutCombo(const ComboLayoutInput& input) {
  const qreal displayHeight = input.displaySize.height();
  ComboLayout layout{QRectF(), QPointF(0, input.displayTextOffset), QSizeF(0, 0)};
  if (input.imageSize && input.horizontal) {
    layout.imageTargetRect = fitToHeight(*input.imageSize, displayHeight);
    const qreal taken = layout.imageTargetRect.width() + displayHeight * GapFraction;
    layout.size.setWidth(taken);
    layout.textOffset.setX(taken);
  } else if (input.imageSize) {
    layout.imageTargetRect = fitToWidth(*input.imageSize, input.displaySize.width());
    const qreal taken = layout.imageTargetRect.height() + input.fontPointSize * GapFraction;
    layout.size.setHeight(taken);
    layout.textOffset.setY(input.displayTextOffset + taken);
  }
  if (input.horizontal) {
    layout.size.rwidth() += input.textSize.width() + displayHeight * TrailingGapFraction;
    layout.size.setHeight(displayHeight);
  } else {
    layout.size.rheight() += input.textSize.height() + input.fontPointSize * GapFraction;
    layout.size.setWidth(input.displaySize.width());
  }
  return layout;
}

double scaleFactorToFitHeight(const AttributedString& text, qreal height) {
  FontManager& fonts = FontManager::sharedFontManager();
  double factor = std::numeric_limits<double>::max();
  for (const AttributedString::Run& run : text.runs())
    if (const Ref<Font> font = fontOf(run); font && font->pointSize() > 0)
      factor = std::min(factor, fonts.convertFontToFitHeight(font, height)->pointSize() /
                                    font->pointSize());
  return factor;
}

Ref<AttributedString> textWithScaledFonts(const AttributedString& text, double factor) {
  FontManager& fonts = FontManager::sharedFontManager();
  const Ref<MutableAttributedString> scaled = text.mutableCopy();
  for (const AttributedString::Run& run : text.runs())
    if (const Ref<Font> font = fontOf(run))
      scaled->addAttribute(FontAttributeName,
                           any(fonts.convertFontToSize(font, font->pointSize() * factor)),
                           run.range);
  return scaled;
}
