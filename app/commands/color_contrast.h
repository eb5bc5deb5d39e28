// How well colours can be told apart, by the formulas of the Web Content Accessibility Guidelines.
#pragma once

#include <QtGui/QColor>

namespace zq::app {

// 0 for black to 1 for white; alpha does not count.
double relativeLuminance(const QColor& color);

// 1 for equal luminances to 21 for black and white. Text is readable from 4.5 on, a sign or an
// outline from 3 on.
double contrastRatio(const QColor& one, const QColor& other);

// What is seen of `color` in front of an opaque `ground`; opaque.
QColor blended(const QColor& color, const QColor& ground);

// Whether light text stands out from `ground` more than dark text does.
bool isDark(const QColor& ground);

} // namespace zq::app
