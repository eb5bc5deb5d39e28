#include "app/access/high_contrast.h"

#include "app/commands/color_contrast.h"

#include <QtGui/QPalette>

namespace zq::app {

namespace {
QColor farthestFrom(const QColor& color) {
  return isDark(color) ? Qt::white : Qt::black;
}

QColor opaque(QColor color) {
  color.setAlpha(255);
  return color;
}
} // namespace

StripColors contrastingColors(const QPalette& palette, const QColor& chosenBackground,
                              const QColor& chosenText) {
  StripColors colors{chosenBackground, chosenText};
  const auto isEnough = [&] {
    return contrastRatio(colors.background, colors.text) >= HighContrastRatio;
  };
  if (!chosenBackground.isValid())
    colors.background = opaque(palette.color(QPalette::Base));
  if (!chosenText.isValid())
    colors.text = opaque(palette.color(QPalette::Text));
  if (isEnough())
    return colors;
  if (!chosenText.isValid())
    colors.text = farthestFrom(colors.background);
  if (!isEnough() && !chosenBackground.isValid())
    colors.background = farthestFrom(colors.text);
  return colors;
}

} // namespace zq::app
