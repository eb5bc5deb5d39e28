#include "zqticker/platform/controls/text_wrapping_p.h"

#include <QtCore/QTextBoundaryFinder>

#include <algorithm>
#include <cmath>

namespace zq::platform {

namespace {

// Words longer than this are measured character by character, since they fit on no line.
constexpr qsizetype longestWord = 4096;

bool isTerminator(QChar c) {
  return c == u'\n' || c == u'\r' || c == QChar(QChar::LineSeparator) ||
         c == QChar(QChar::ParagraphSeparator);
}

class Wrapper {
 public:
  Wrapper(const AttributedString& text, QSizeF area) : text_(text), area_(area) {}

  std::vector<WrappedLine> lines() {
    const QString& characters = text_.string();
    for (qsizetype start = 0; start < characters.size() && hasRoom();) {
      qsizetype end = start;
      while (end < characters.size() && !isTerminator(characters[end]))
        ++end;
      wrapParagraph(start, end);
      const bool isPair =
          end + 1 < characters.size() && characters[end] == u'\r' && characters[end + 1] == u'\n';
      start = end + (isPair ? 2 : 1);
    }
    return std::move(lines_);
  }

 private:
  // False for what is no number, too.
  bool hasRoom() const { return height_ < area_.height(); }

  double widthOf(qsizetype start, qsizetype end) const {
    return text_.attributedSubstringFromRange({start, end - start})->size().width();
  }

  // The end of the text between both without the spaces at its end.
  qsizetype endOfInk(qsizetype start, qsizetype end) const {
    while (end > start && text_.string()[end - 1].isSpace())
      --end;
    return end;
  }

  void finishLine(qsizetype end) {
    WrappedLine line;
    if (end > lineStart_) {
      line.text = text_.attributedSubstringFromRange({lineStart_, end - lineStart_});
      line.size = line.text->size();
    } else {
      // As high as its terminator would be.
      line.text = std::make_shared<AttributedString>();
      const qsizetype mark = std::min(lineStart_, text_.length() - 1);
      line.size = QSizeF(0, text_.attributedSubstringFromRange({mark, 1})->size().height());
    }
    height_ += line.size.height();
    lines_.push_back(std::move(line));
    width_ = 0;
  }

  // Puts what lies between both on the present line or, where it does not fit, on the next.
  void place(qsizetype start, qsizetype end) {
    const qsizetype ink = endOfInk(start, end);
    const double width = widthOf(start, ink);
    // Spaces alone never begin a line.
    if (ink > start && start > lineStart_ && !(width_ + width <= area_.width())) {
      finishLine(endOfInk(lineStart_, start));
      lineStart_ = start;
    }
    width_ += ink == end ? width : widthOf(start, end);
  }

  void wrapParagraph(qsizetype start, qsizetype end) {
    lineStart_ = start;
    width_ = 0;
    if (std::isinf(area_.width()))
      return finishLine(end);
    const QStringView paragraph = QStringView(text_.string()).mid(start, end - start);
    QTextBoundaryFinder words(QTextBoundaryFinder::Line, paragraph.data(), paragraph.size());
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, paragraph.data(),
                                   paragraph.size());
    for (qsizetype from = 0; from < paragraph.size() && hasRoom();) {
      qsizetype to = words.toNextBoundary();
      if (to <= from)
        to = paragraph.size();
      const qsizetype ink = endOfInk(start + from, start + to) - start;
      if (ink - from <= longestWord && widthOf(start + from, start + ink) <= area_.width()) {
        place(start + from, start + to);
        from = to;
        continue;
      }
      // Too long for any line: it begins one of its own and goes on from character to character.
      if (start + from > lineStart_) {
        finishLine(endOfInk(lineStart_, start + from));
        lineStart_ = start + from;
      }
      characters.setPosition(from);
      while (from < to && hasRoom()) {
        qsizetype next = characters.toNextBoundary();
        if (next <= from || next > to)
          next = to;
        place(start + from, start + next);
        from = next;
      }
    }
    if (hasRoom())
      finishLine(endOfInk(lineStart_, end));
  }

  const AttributedString& text_;
  const QSizeF area_;
  std::vector<WrappedLine> lines_;
  double height_ = 0;
  // The line being filled.
  qsizetype lineStart_ = 0;
  double width_ = 0;
};

} // namespace

std::vector<WrappedLine> wrappedLines(const AttributedString& text, QSizeF area) {
  return Wrapper(text, area).lines();
}

} // namespace zq::platform
