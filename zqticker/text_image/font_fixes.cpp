#include "zqticker/text_image/font_fixes.h"

#include "zqticker/platform/graphics/Font.h"
#include "zqticker/text_image/font_figures_p.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace zq {

using platform::Font;
using platform::Ref;

namespace {

// Figures of the system font at the sizes of regular, small and mini controls.
struct FixedFigures {
  float pointSize;
  float xHeight;
  float capHeight;
};
constexpr FixedFigures fixedFigures[] = {
    {13, 8.16943359375F, 9.5F},
    {11, 6.912598133087158F, 8.0F},
    {9, 5.655762195587158F, 7.0F},
};

// The row for a font, or null where its own figures hold.
const FixedFigures* fixedFiguresOf(const FontFigures& figures) {
  if (!figures.isSystemFont)
    return nullptr;
  // Halves go to the even number, as the default rounding mode has it.
  const float points = std::nearbyint(float(figures.pointSize));
  const auto* const row =
      std::find_if(std::begin(fixedFigures), std::end(fixedFigures),
                   [&](const FixedFigures& candidate) { return candidate.pointSize == points; });
  return row == std::end(fixedFigures) ? nullptr : row;
}

bool isOfSystemFamily(const Font& font) {
  const Ref<Font> system = Font::systemFontOfSize(0);
  if (font.drawnFamily() != system->drawnFamily())
    return false;
  return font.fontName() == system->fontName() || Font::isNameKnown(font.fontName());
}

FontFigures figuresOf(const Font& font) {
  return {isOfSystemFamily(font), font.pointSize(), font.xHeight(), font.capHeight(),
          font.ascender()};
}

} // namespace

float correctedXHeight(const FontFigures& figures) {
  // The fixed figure holds whatever the font says; the cap height asks first, which is deliberate.
  const FixedFigures* const fixed = fixedFiguresOf(figures);
  return fixed ? fixed->xHeight : float(figures.xHeight);
}

float correctedCapHeight(const FontFigures& figures) {
  const auto own = float(figures.capHeight);
  if (own != float(figures.ascender))
    return own;
  const FixedFigures* const fixed = fixedFiguresOf(figures);
  return fixed ? fixed->capHeight : own;
}

float fixed_xHeight(const Ref<Font>& font) {
  return font ? correctedXHeight(figuresOf(*font)) : 0;
}

float fixed_capHeight(const Ref<Font>& font) {
  return font ? correctedCapHeight(figuresOf(*font)) : 0;
}

} // namespace zq
