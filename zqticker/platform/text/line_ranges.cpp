#include "zqticker/platform/text/line_ranges.h"

#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QString>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

bool isTerminator(char16_t c) {
  return c == u'\n' || c == u'\r' || c == u'\u2028' || c == u'\u2029';
}

bool isPairAt(QStringView text, qsizetype index) {
  return index >= 0 && index + 1 < text.size() && text[index] == u'\r' && text[index + 1] == u'\n';
}

qsizetype indexOfTerminator(QStringView text, qsizetype from) {
  const char16_t* const characters = text.utf16();
  const qsizetype length = text.size();
  qsizetype i = from;
  while (i < length && !isTerminator(characters[i]))
    ++i;
  return i;
}

} // namespace

LineRange lineRangeAt(QStringView text, qsizetype position) {
  if (position < 0 || position > text.size())
    throw RangeException(
        u"Position %1 is outside a text of %2 characters"_s.arg(position).arg(text.size()));
  LineRange line;
  line.start = isPairAt(text, position - 1) ? position - 1 : position;
  while (line.start > 0 && !isTerminator(text[line.start - 1].unicode()))
    --line.start;
  line.contentsEnd =
      indexOfTerminator(text, isPairAt(text, position - 1) ? position - 1 : position);
  line.end = line.contentsEnd == text.size()    ? text.size()
             : isPairAt(text, line.contentsEnd) ? line.contentsEnd + 2
                                                : line.contentsEnd + 1;
  return line;
}

} // namespace zq::platform
