#include "zqticker/platform/graphics/FontManager.h"

#include <cmath>

namespace zq::platform {

// Fitted sizes are multiples of this; a power of two, so that each is exact.
static constexpr double SizeStep = 1.0 / 64;
// Far above any display, far below where multiples of the step stop being exact.
static constexpr double MaximumFittedSize = 1 << 24;

static FontManager* replacement = nullptr;

FontManager::~FontManager() = default;

Ref<Font> FontManager::convertFontToSize(const Ref<Font>& font, double size) {
  return font ? Font::fontWithName(font->fontName(), size) : nullptr;
}

Ref<Font> FontManager::convertFontToFitHeight(const Ref<Font>& font, double height,
                                              double* offsetFromBottom) {
  if (offsetFromBottom)
    *offsetFromBottom = 0;
  if (!font)
    return nullptr;
  const auto ofSteps = [&](double steps) {
    return Font::fontWithName(font->fontName(), steps * SizeStep);
  };
  // The division gives the step or a neighbour of it; the comparison with the line height that a
  // caller will see decides.
  const double maximum = MaximumFittedSize / SizeStep;
  const double quotient = height / ofSteps(1)->lineHeight();
  double steps = quotient >= 1 ? std::floor(std::min(quotient, maximum)) : 1;
  while (steps > 1 && ofSteps(steps)->lineHeight() > height)
    --steps;
  while (steps < maximum && ofSteps(steps + 1)->lineHeight() <= height)
    ++steps;
  const Ref<Font> fitted = ofSteps(steps);
  if (offsetFromBottom)
    *offsetFromBottom = fitted->leading() - fitted->descender();
  return fitted;
}

FontManager& FontManager::sharedFontManager() {
  static FontManager standard;
  return replacement ? *replacement : standard;
}

FontManager* FontManager::setSharedFontManager(FontManager* manager) {
  return std::exchange(replacement, manager);
}

} // namespace zq::platform
