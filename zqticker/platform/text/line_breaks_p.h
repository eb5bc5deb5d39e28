// Shaping of stretches of text, and the places between them.
#pragma once

#include <QtCore/QString>
#include <QtGui/QFont>
#include <QtGui/QTextLayout>

#include <memory>

namespace zq::platform {

// What all of a stretch has in common.
struct ShapingOptions {
  QFont font;
  bool rightToLeft = false;
  // Whether characters may stand against their own direction, as an override makes them.
  bool forcesDirection = false;
};

// `text` shaped in one line, its left edge at 0.
std::unique_ptr<QTextLayout> layOut(const QString& text, const ShapingOptions& options,
                                    QList<QTextLayout::FormatRange> formats = {});

// Where a segment of `text` that starts at `start` ends, `end` at the latest. Both sides of the
// place, shaped apart, give the same glyphs at the same positions as shaped together. Where no
// such place is near, as in a word of thousands of letters whose forms depend on each other, it
// lies between two characters all the same, so that segments stay short.
qsizetype nextBreak(const QString& text, qsizetype start, qsizetype end,
                    const ShapingOptions& options);

} // namespace zq::platform
