#include "app/intake/LineSplitter.h"

#include <QtCore/QStringDecoder>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// A character takes at most four bytes of UTF-8 for two UTF-16 units, three for one.
constexpr qsizetype BytesPerUnit = 3;
constexpr char16_t Escape = 0x1b;
constexpr char16_t Bell = 0x07;
constexpr char16_t ByteOrderMark = 0xfeff;

bool isBetween(QChar c, char16_t first, char16_t last) {
  return c.unicode() >= first && c.unicode() <= last;
}

// The index after the escape sequence that begins at `i`: a control sequence (ESC [ … final), a
// string up to BEL or ESC \ (ESC ], P, X, ^, _), or ESC and one character.
qsizetype afterEscape(QStringView text, qsizetype i) {
  if (++i >= text.size())
    return i;
  const QChar kind = text[i++];
  if (kind == u'[') {
    while (i < text.size() && isBetween(text[i], 0x20, 0x3f))
      ++i;
    return i < text.size() && isBetween(text[i], 0x40, 0x7e) ? i + 1 : i;
  }
  if (u"]PX^_"_s.contains(kind)) {
    while (i < text.size() && text[i] != Bell && text[i] != Escape)
      ++i;
    if (i < text.size() && text[i] == Escape && i + 1 < text.size() && text[i + 1] == u'\\')
      return i + 2;
    return i < text.size() && text[i] == Bell ? i + 1 : i;
  }
  // ESC ( B and its like carry one more character.
  if (isBetween(kind, 0x20, 0x2f))
    return std::min(i + 1, text.size());
  return i;
}

bool breaksLine(QChar c) {
  return isBetween(c, u'\n', u'\r') || c == QChar::LineSeparator ||
         c == QChar::ParagraphSeparator || c.unicode() == 0x85;
}

// The first `units` of `text`, less if that would part a surrogate pair, and an ellipsis.
QString cut(const QString& text, qsizetype units) {
  qsizetype kept = units - 1;
  if (kept > 0 && text[kept - 1].isHighSurrogate())
    --kept;
  return text.left(kept) + u'…';
}
} // namespace

QString showableLine(const QString& text) {
  const QStringView view(text);
  QString line;
  line.reserve(text.size());
  for (qsizetype i = 0; i < view.size();) {
    const QChar c = view[i];
    if (c == Escape) {
      i = afterEscape(view, i);
      continue;
    }
    ++i;
    if (c == u'\t' || breaksLine(c))
      line += u' ';
    else if (c.category() != QChar::Other_Control && !(c == ByteOrderMark && i == 1))
      line += c;
  }
  qsizetype end = line.size();
  while (end > 0 && line[end - 1].isSpace())
    --end;
  line.truncate(end);
  return line;
}

LineSplitter::LineSplitter(Receiver receiver, qsizetype longestLine)
    : receiver_(std::move(receiver)), longestLine_(longestLine) {}

void LineSplitter::append(QByteArrayView bytes) {
  const qsizetype limit = (longestLine_ + 1) * BytesPerUnit;
  while (!bytes.isEmpty()) {
    const qsizetype newline = bytes.indexOf('\n');
    QByteArrayView part = newline < 0 ? bytes : bytes.first(newline);
    if (!skipping_) {
      pending_.append(part.first(std::min(part.size(), limit - pending_.size())));
      if (pending_.size() >= limit) {
        giveOut(Ending::Lost);
        skipping_ = true;
      }
    }
    if (newline < 0)
      return;
    if (!skipping_)
      giveOut(Ending::Complete);
    skipping_ = false;
    bytes = bytes.sliced(newline + 1);
  }
}

void LineSplitter::finish() {
  if (!skipping_)
    giveOut(Ending::Complete);
  skipping_ = false;
}

void LineSplitter::giveOut(Ending ending) {
  QStringDecoder decoder(QStringDecoder::Utf8,
                         QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
  const QString line = showableLine(decoder.decode(pending_));
  // A long line leaves no large buffer behind.
  pending_ = QByteArray();
  if (line.trimmed().isEmpty())
    return;
  const bool isCut = ending == Ending::Lost || line.size() > longestLine_;
  receiver_(isCut ? cut(line, std::min(line.size() + 1, longestLine_)) : line);
}

} // namespace zq::app
