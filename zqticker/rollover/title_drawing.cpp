#include "zqticker/rollover/title_drawing_p.h"

#include "zqticker/platform/text/AttributedString.h"

#include <QtCore/QTextBoundaryFinder>

#include <algorithm>

using namespace zq::platform;

namespace zq {

namespace {

// Widths are sums; one that was made to fit may come out larger by the last bits.
constexpr double Tolerance = 1.0 / 256;
// Characters that a first try takes.
constexpr qsizetype FirstTry = 16;

bool fits(const AttributedString& line, double width) {
  return line.size().width() <= width + Tolerance;
}

} // namespace

Ref<AttributedString> truncatedAtTail(const QString& text, const Attributes& attributes,
                                      double width) {
  const Ref<AttributedString> whole = AttributedString::make(text, attributes);
  if (fits(*whole, width))
    return whole;
  const auto shortened = [&](qsizetype length) {
    QString start = text.left(length);
    start.append(QChar(0x2026));
    return AttributedString::make(start, attributes);
  };
  if (!fits(*shortened(0), width))
    return nullptr;

  qsizetype fitting = 0;
  qsizetype tooLong = text.size();
  for (qsizetype length = FirstTry; length < tooLong; length *= 2) {
    if (fits(*shortened(length), width))
      fitting = length;
    else
      tooLong = length;
  }
  while (tooLong - fitting > 1) {
    const qsizetype length = fitting + (tooLong - fitting) / 2;
    (fits(*shortened(length), width) ? fitting : tooLong) = length;
  }
  QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
  letters.setPosition(fitting);
  if (!letters.isAtBoundary())
    letters.toPreviousBoundary();
  return shortened(std::max<qsizetype>(0, letters.position()));
}

void drawLineInRect(const Ref<AttributedString>& line, const QRectF& rect, TextAlignment alignment,
                    bool isFlipped) {
  if (!line)
    return;
  const QSizeF size = line->size();
  const double free = rect.width() - size.width();
  double x = rect.x();
  if (alignment == TextAlignment::Center)
    x += free / 2;
  else if (alignment == TextAlignment::Right ||
           (alignment != TextAlignment::Left && line->string().isRightToLeft()))
    x += free;
  line->drawAtPoint({x, isFlipped ? rect.top() : rect.bottom() - size.height()});
}

} // namespace zq
