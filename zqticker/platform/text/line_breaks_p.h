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

// What a layout measures, in its own pixels.
struct TextExtent {
  double width = 0;
  double ascent = 0;
  double descent = 0;
};
TextExtent extentOf(const QTextLayout& layout);

// The extent of one colour picture. Remembered, since a font of pictures decodes each of them to
// measure it.
TextExtent emojiExtent(const QString& emoji, const QFont& font);

// Where a segment of `text` that starts at `start` ends, `end` at the latest. Both sides of the
// place, shaped apart, give the same glyphs at the same positions as shaped together. Where no
// such place is near, as in a word of thousands of letters whose forms depend on each other, it
// lies between two characters all the same, so that segments stay short.
qsizetype nextBreak(const QString& text, qsizetype start, qsizetype end,
                    const ShapingOptions& options);

// The same for text of colour pictures only, which stand for themselves.
qsizetype nextEmojiBreak(const QString& text, qsizetype start, qsizetype end);

} // namespace zq::platform
