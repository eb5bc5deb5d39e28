#include "zqticker/platform/text/line_ranges.h"

#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QString>

#include <cstdint>
#include <cstring>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

constexpr std::uint16_t LineFeed = 0x000a;
constexpr std::uint16_t CarriageReturn = 0x000d;
// Differs from the paragraph separator in the last bit alone.
constexpr std::uint16_t LineSeparator = 0x2028;
constexpr std::uint16_t AllButLastBit = 0xfffe;

bool isTerminator(char16_t c) {
  return c == LineFeed || c == CarriageReturn || (c & AllButLastBit) == LineSeparator;
}

// Code units that are compared all at once.
using Block [[gnu::vector_size(16)]] = std::uint16_t;
constexpr qsizetype BlockSize = sizeof(Block) / sizeof(char16_t);

bool hasTerminator(const char16_t* characters) {
  Block block;
  std::memcpy(&block, characters, sizeof block);
  const auto found =
      (block == LineFeed) | (block == CarriageReturn) | ((block & AllButLastBit) == LineSeparator);
  std::uint64_t halves[2];
  std::memcpy(halves, &found, sizeof halves);
  return halves[0] | halves[1];
}

bool isPairAt(QStringView text, qsizetype index) {
  return index >= 0 && index + 1 < text.size() && text[index] == u'\r' && text[index + 1] == u'\n';
}

qsizetype indexOfTerminator(QStringView text, qsizetype from) {
  const char16_t* const characters = text.utf16();
  const qsizetype length = text.size();
  qsizetype i = from;
  while (i + BlockSize <= length && !hasTerminator(characters + i))
    i += BlockSize;
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
