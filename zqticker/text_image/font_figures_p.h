// The rules by which a font's figures are corrected, apart from the fonts.
#pragma once

namespace zq {

// What the rules ask of a font; lengths are in points.
struct FontFigures {
  bool isSystemFont = false;
  double pointSize = 0;
  double xHeight = 0;
  double capHeight = 0;
  double ascender = 0;
};

// See fixed_xHeight and fixed_capHeight.
float correctedXHeight(const FontFigures& figures);
float correctedCapHeight(const FontFigures& figures);

} // namespace zq
