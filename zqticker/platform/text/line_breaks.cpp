#include "zqticker/platform/text/line_breaks_p.h"

#include "zqticker/platform/text/emoji_p.h"

#include <QtCore/QHash>
#include <QtCore/QTextBoundaryFinder>
#include <QtGui/QGlyphRun>
#include <QtGui/QRawFont>
#include <QtGui/QTextOption>

#include <algorithm>
#include <cmath>

namespace zq::platform {

namespace {

// Segments are about so long: short enough that drawing one costs little more than drawing the
// part that shows, long enough that finding the breaks costs little.
constexpr qsizetype targetLength = 512;
// Of colour pictures, which cost more to lay out.
constexpr qsizetype emojiTargetLength = 64;
// Measured pictures that are remembered; more than most texts know.
constexpr qsizetype maximumRemembered = 4096;
// How far behind the target a break is looked for.
constexpr qsizetype searchLength = 256;
// How many places are tried at most, and with how much text on each side.
constexpr int maximumTrials = 16;
constexpr qsizetype context = 24;

// Wider than any segment, within the layout's number range.
constexpr double unlimitedWidth = 1 << 23;

constexpr char16_t leftToRightOverride = 0x202d;
constexpr char16_t rightToLeftOverride = 0x202e;
constexpr char16_t popDirection = 0x202c;

struct Glyph {
  double x;
  quint32 index;
  QRawFont font;
};

// The glyphs of a layout from left to right, and its width.
struct Shape {
  std::vector<Glyph> glyphs;
  double width = 0;
};

Shape shapeOf(const QString& text, const ShapingOptions& options) {
  const auto layout = layOut(text, options);
  Shape shape;
  shape.width = layout->lineAt(0).horizontalAdvance();
  const QList<QGlyphRun> runs = layout->glyphRuns();
  for (const QGlyphRun& run : runs) {
    const QList<quint32> indexes = run.glyphIndexes();
    const QList<QPointF> positions = run.positions();
    for (qsizetype i = 0; i < indexes.size(); ++i)
      shape.glyphs.push_back({positions[i].x(), indexes[i], run.rawFont()});
  }
  std::stable_sort(shape.glyphs.begin(), shape.glyphs.end(), [](const Glyph& a, const Glyph& b) {
    return a.x != b.x ? a.x < b.x : a.index < b.index;
  });
  return shape;
}

bool splitsSurrogates(const QString& text, qsizetype position) {
  return position > 0 && position < text.size() && text[position].isLowSurrogate() &&
         text[position - 1].isHighSurrogate();
}

// Whether shaping both sides of `position` apart changes nothing.
bool isSafeBreak(const QString& text, qsizetype position, qsizetype start, qsizetype end,
                 const ShapingOptions& options) {
  qsizetype from = std::max(start, position - context);
  qsizetype to = std::min(end, position + context);
  from += splitsSurrogates(text, from);
  to -= splitsSurrogates(text, to);
  const Shape together = shapeOf(text.mid(from, to - from), options);
  Shape left = shapeOf(text.mid(from, position - from), options);
  Shape right = shapeOf(text.mid(position, to - position), options);
  if (options.rightToLeft)
    std::swap(left, right);
  for (Glyph& glyph : right.glyphs)
    glyph.x += left.width;
  left.glyphs.insert(left.glyphs.end(), right.glyphs.begin(), right.glyphs.end());
  // Positions are in 64ths of a pixel of the layout.
  const auto near = [](double a, double b) { return std::abs(a - b) < 1.0 / 128; };
  return near(together.width, left.width + right.width) &&
         std::equal(left.glyphs.begin(), left.glyphs.end(), together.glyphs.begin(),
                    together.glyphs.end(), [&](const Glyph& a, const Glyph& b) {
                      return a.index == b.index && near(a.x, b.x) && a.font == b.font;
                    });
}

} // namespace

std::unique_ptr<QTextLayout> layOut(const QString& text, const ShapingOptions& options,
                                    QList<QTextLayout::FormatRange> formats) {
  QString shaped = text;
  if (options.forcesDirection) {
    shaped = QChar(options.rightToLeft ? rightToLeftOverride : leftToRightOverride) + text +
             QChar(popDirection);
    for (QTextLayout::FormatRange& range : formats)
      ++range.start;
  }
  auto layout = std::make_unique<QTextLayout>(shaped, options.font);
  QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
  option.setWrapMode(QTextOption::NoWrap);
  option.setTextDirection(options.rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
  option.setUseDesignMetrics(true);
  option.setFlags(QTextOption::IncludeTrailingSpaces);
  layout->setTextOption(option);
  layout->setCacheEnabled(true);
  layout->setFormats(formats);
  layout->beginLayout();
  QTextLine line = layout->createLine();
  line.setLineWidth(unlimitedWidth);
  layout->endLayout();
  return layout;
}

TextExtent extentOf(const QTextLayout& layout) {
  const QTextLine line = layout.lineAt(0);
  return {line.horizontalAdvance(), line.ascent(), line.descent()};
}

TextExtent emojiExtent(const QString& emoji, const QFont& font) {
  // There is one font of colour pictures, so that the characters are the key.
  static auto& extents = *new QHash<QString, TextExtent>;
  if (extents.size() > maximumRemembered)
    extents.clear();
  const auto found = extents.constFind(emoji);
  if (found != extents.constEnd())
    return *found;
  return *extents.insert(emoji, extentOf(*layOut(emoji, {font})));
}

qsizetype nextEmojiBreak(const QString& text, qsizetype start, qsizetype end) {
  qsizetype at = start;
  while (at < end && at - start < emojiTargetLength)
    at = std::max(at + 1, endOfEmoji(text, at));
  return std::min(at, end);
}

qsizetype nextBreak(const QString& text, qsizetype start, qsizetype end,
                    const ShapingOptions& options) {
  const qsizetype target = start + targetLength;
  const qsizetype limit = target + searchLength;
  if (end <= limit)
    return end;

  // Between words first: most fonts let a space stand for itself.
  int trials = 0;
  for (qsizetype i = target; i < limit && trials < maximumTrials; ++i)
    if (text[i - 1] == u' ' && text[i] != u' ' && !text[i].isMark()) {
      if (isSafeBreak(text, i, start, end, options))
        return i;
      ++trials;
    }

  // Then between any two characters, combined ones taken as one.
  const qsizetype from = target + splitsSurrogates(text, target);
  QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text.constData() + from,
                                 limit - from);
  qsizetype fallback = limit - splitsSurrogates(text, limit);
  trials = 0;
  // The first boundary may stand inside of a character that began before the window.
  for (qsizetype i = characters.toNextBoundary(); i > 0 && from + i < limit;
       i = characters.toNextBoundary()) {
    if (trials == maximumTrials)
      break;
    fallback = from + i;
    if (isSafeBreak(text, fallback, start, end, options))
      return fallback;
    ++trials;
  }
  return fallback;
}

} // namespace zq::platform
