// How a sign stands in a strip.
#pragma once

#include <QtCore/QSizeF>

class ZQTickerSign;

namespace zq::app {

// A strip, as far as it decides how a sign stands in it. Lengths are points.
struct StripShape {
  QSizeF size;
  bool isHorizontal = true;
  bool scalesText = false;
  double fontSize = 0; // of the default font
};

// A sign's place across the strip, and what it takes along it.
struct SignPlacement {
  double fit = 1;    // by which the sign is scaled
  double length = 0; // along the strip, scaled
  double gap = 0;    // behind it
  double across = 0; // its lower (or left) edge above the strip's
  double breadth = 0;

  double lengthWithGap() const { return length + gap; }
};

// Lays `sign` out and places it. A sign that is narrower than the strip stands in its middle, a
// text in a vertical strip at its left. A picture that is larger than the strip is scaled down to
// it, so is a text to the height of a horizontal strip that scales texts; other signs are cut off
// by the strip. Texts and combo signs bring their own gap, pictures get one of the same kind: half
// the height of a horizontal strip, a quarter of the font size in a vertical one.
SignPlacement placeSign(const ZQTickerSign& sign, const StripShape& strip);

} // namespace zq::app
