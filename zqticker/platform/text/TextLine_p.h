// One line of styled text, laid out.
#pragma once

#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/LineCache_p.h"
#include "zqticker/platform/text/TextStyle_p.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QSizeF>
#include <QtCore/QString>
#include <QtGui/QTextLayout>

#include <deque>
#include <memory>
#include <vector>

namespace zq::platform {

class GraphicsContext;
struct TextExtent;

// The layout of one line, of any length. The text is cut into segments at places where shaping
// both sides apart gives the same glyphs at the same positions as shaping them together, so that
// the width is that of the whole; only segments that are drawn keep their glyphs.
//
// Immutable to the outside once it is measured. Thread: main.
class TextLine {
 public:
  // When a line is measured: at once, or in steps by measureUntil.
  enum class Measuring { AtOnce, InSteps };

  // `ifEmpty` gives the font whose height empty text has. Raises InternalInconsistencyException
  // without a GUI application.
  TextLine(const QString& text, const std::vector<AttributedString::Run>& runs,
           const Attributes& ifEmpty = {}, Measuring measuring = Measuring::AtOnce);
  ~TextLine();
  TextLine(const TextLine&) = delete;
  TextLine& operator=(const TextLine&) = delete;

  // Takes at least one step, and more until `deadline`; no step takes long, whatever the text.
  // Whether the line is measured; nothing else may be asked of it before. What it comes to is the
  // same however it is cut into steps. Raises InternalInconsistencyException without a GUI
  // application.
  bool measureUntil(const QDeadlineTimer& deadline);
  bool isMeasuring() const { return measurement_ != nullptr; }

  // Whether making the line again would take long, or could give another: it is long, or shows
  // pictures, which may change.
  bool isToBeKept() const { return showsPictures_ || text_.size() > LongestRemade; }
  static constexpr qsizetype LongestRemade = 4096;

  // See AttributedString::size.
  QSizeF size() const { return {width_, ascent_ + descent_ + leading_}; }
  double ascent() const { return ascent_; }
  double descent() const { return descent_; }
  std::size_t segmentCount() const { return segments_.size(); }
  // Characters whose glyphs are at hand.
  qsizetype laidOutLength() const { return keptLength_; }

  // Lets the glyphs go; they are made again when the line is drawn.
  void forgetGlyphs() const;

  // Draws `line`, or records that; see AttributedString::drawAtPoint.
  static void draw(const std::shared_ptr<const TextLine>& line, GraphicsContext& context,
                   QPointF point);
  // The same into a context that does not record, with the shadow that it has.
  void paint(GraphicsContext& context, QPointF point) const;

 private:
  friend class LineCache;
  class Measurement;

  // A stretch of text in one direction and in styles that can be laid out together, or a picture.
  struct Segment {
    qsizetype start;
    qsizetype length;
    std::size_t style;
    bool rightToLeft;
    // Left edge in points from the line's.
    double x;
    std::unique_ptr<QTextLayout> layout;
  };
  class Caster;
  struct StyledRange {
    qsizetype start;
    qsizetype end;
    TextStyle style;
  };

  // Puts a segment behind the others.
  void place(const Segment& at);
  void add(const TextExtent& extent, const TextStyle& style);
  // The same for characters that are pictures.
  void placePictures(qsizetype start, qsizetype end, std::size_t style, bool rightToLeft);
  const QTextLayout& layoutOf(std::size_t segment) const;
  QList<QTextLayout::FormatRange> formatsOf(const Segment& segment) const;
  void paintGlyphs(GraphicsContext& context, QPointF point) const;
  // The picture of `style`, its lower left corner at `corner`.
  void paintPicture(GraphicsContext& context, const TextStyle& style, QPointF corner) const;

  // A number that no other line of the process has.
  quint64 identifier_;
  // As LineCharacters gives it, once it is read.
  QString text_;
  // One for each run; neighbours that measure alike share segments. These and the segments grow
  // without a step that moves all of them.
  std::deque<StyledRange> styles_;
  // See LineCharacters.
  bool forcesDirection_ = false;
  // From left to right.
  mutable std::deque<Segment> segments_;
  // Segments with a layout, oldest first.
  mutable std::vector<std::size_t> kept_;
  mutable qsizetype keptLength_ = 0;
  bool showsPictures_ = false;
  std::unique_ptr<Measurement> measurement_; // null once it is done
  mutable LineCachePlace cachePlace_;
  double width_ = 0;
  double ascent_ = 0;
  double descent_ = 0;
  double leading_ = 0;
  // How far glyphs may leave their boxes.
  double overhang_ = 0;
};

} // namespace zq::platform
