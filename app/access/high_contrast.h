// Colours for those who need more contrast.
#pragma once

#include <QtGui/QColor>

class QPalette;

namespace zq::app {

// WCAG 1.4.6, which asks more than for ordinary text.
inline constexpr double HighContrastRatio = 7;

struct StripColors {
  QColor background;
  QColor text;
};

// The colours of `palette` for text in front of its ground where they differ by at least
// HighContrastRatio, with the colour that the user has chosen, if any, in place of the palette's.
// Where they do not, what was not chosen becomes black or white, the text last: a chosen colour is
// left alone, also where the other can then not stand out enough. Invalid is for none chosen.
StripColors contrastingColors(const QPalette& palette, const QColor& chosenBackground,
                              const QColor& chosenText);

} // namespace zq::app
