#include "app/controls/control_glyphs.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

namespace {
constexpr int LeastHeight = 4;

// Whole pixels: sizes of the parts, from the height of all.
struct Parts {
  int height;   // even, so that a triangle's tip lies between two rows
  int bar;      // breadth of an upright bar, or of a line of the menu
  int gap;      // between the bars of a pause
  int triangle; // from the base to the tip
};

int whole(double pixels, int least) {
  return std::max(static_cast<int>(std::lround(pixels)), least);
}

Parts partsOf(double height) {
  Parts parts;
  parts.height = 2 * whole(height / 2, LeastHeight / 2);
  parts.bar = whole(parts.height * 0.26, 1);
  parts.gap = whole(parts.height * 0.24, 1);
  parts.triangle = whole(parts.height * 0.8, 3);
  return parts;
}

void addTriangle(QPainterPath& path, double base, double tip, double top, double height) {
  path.moveTo(base, top);
  path.lineTo(tip, top + height / 2);
  path.lineTo(base, top + height);
  path.closeSubpath();
}
} // namespace

QPainterPath controlGlyph(ControlGlyph glyph, QPointF middle, double height) {
  const Parts parts = partsOf(height);
  QPainterPath path;
  path.setFillRule(Qt::WindingFill);
  const double top = std::round(middle.y() - parts.height / 2.0);
  const auto leftOf = [&](int width) { return std::round(middle.x() - width / 2.0); };
  switch (glyph) {
  case ControlGlyph::Back: {
    const int stop = std::max(parts.bar - 1, 1);
    const double left = leftOf(stop + parts.triangle);
    path.addRect(left, top, stop, parts.height);
    addTriangle(path, left + stop + parts.triangle, left + stop, top, parts.height);
    break;
  }
  case ControlGlyph::Forward: {
    const int stop = std::max(parts.bar - 1, 1);
    const double left = leftOf(stop + parts.triangle);
    addTriangle(path, left, left + parts.triangle, top, parts.height);
    path.addRect(left + parts.triangle, top, stop, parts.height);
    break;
  }
  case ControlGlyph::Pause: {
    const double left = leftOf(2 * parts.bar + parts.gap);
    path.addRect(left, top, parts.bar, parts.height);
    path.addRect(left + parts.bar + parts.gap, top, parts.bar, parts.height);
    break;
  }
  case ControlGlyph::Play: {
    // Its weight lies at the base: a third of it is left of the middle.
    const double left = std::round(middle.x() - parts.triangle * 0.42);
    addTriangle(path, left, left + parts.triangle, top, parts.height);
    break;
  }
  case ControlGlyph::Menu: {
    const int line = whole(parts.height * 0.2, 1);
    const int gap = whole((parts.height - 3 * line) / 2.0, 1);
    const int width = whole(parts.height * 1.2, 3);
    const double first = std::round(middle.y() - (3 * line + 2 * gap) / 2.0);
    for (int i = 0; i < 3; ++i)
      path.addRect(leftOf(width), first + i * (line + gap), width, line);
    break;
  }
  }
  return path;
}

} // namespace zq::app
