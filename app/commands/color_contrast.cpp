#include "app/commands/color_contrast.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

namespace {
// Light that the eye's surroundings add to any colour.
constexpr double Flare = 0.05;

double linear(float component) {
  const double c = double(component);
  return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}
} // namespace

double relativeLuminance(const QColor& color) {
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

double contrastRatio(const QColor& one, const QColor& other) {
  const auto [darker, lighter] = std::minmax({relativeLuminance(one), relativeLuminance(other)});
  return (lighter + Flare) / (darker + Flare);
}

QColor blended(const QColor& color, const QColor& ground) {
  const float alpha = color.alphaF();
  const auto mixed = [alpha](float over, float under) {
    return over * alpha + under * (1 - alpha);
  };
  return QColor::fromRgbF(mixed(color.redF(), ground.redF()),
                          mixed(color.greenF(), ground.greenF()),
                          mixed(color.blueF(), ground.blueF()));
}

bool isDark(const QColor& ground) {
  return contrastRatio(ground, Qt::white) > contrastRatio(ground, Qt::black);
}

} // namespace zq::app
