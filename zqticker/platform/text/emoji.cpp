#include "zqticker/platform/text/emoji_p.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace zq::platform {

namespace {

constexpr char32_t joiner = 0x200d;
constexpr char32_t keycap = 0x20e3;
constexpr char32_t plainForm = 0xfe0e;
constexpr char32_t pictureForm = 0xfe0f;

// The character at `position`, which moves past it; 0 at the end.
char32_t next(const QString& text, qsizetype& position) {
  if (position >= text.size())
    return 0;
  const QChar c = text[position++];
  if (c.isHighSurrogate() && position < text.size() && text[position].isLowSurrogate())
    return QChar::surrogateToUcs4(c, text[position++]);
  return c.unicode();
}

bool has(char32_t c, UProperty property) {
  return u_hasBinaryProperty(UChar32(c), property);
}

// Moves past `wanted` where it stands at `position`.
bool take(const QString& text, qsizetype& position, char32_t wanted) {
  qsizetype after = position;
  if (next(text, after) != wanted)
    return false;
  position = after;
  return true;
}

// Moves past one picture with its selector, skin tone and tags; false where there is none.
bool takePicture(const QString& text, qsizetype& position) {
  qsizetype at = position;
  const char32_t base = next(text, at);
  if (base == 0 || !has(base, UCHAR_EMOJI))
    return false;
  if (has(base, UCHAR_REGIONAL_INDICATOR)) {
    // Two letters make a flag.
    if (!has(next(text, at), UCHAR_REGIONAL_INDICATOR))
      return false;
    position = at;
    return true;
  }
  const bool selected = take(text, at, pictureForm);
  const bool isKey = selected && take(text, at, keycap);
  if (!isKey && has(base, UCHAR_EMOJI_COMPONENT))
    return false;
  if (!selected && (!has(base, UCHAR_EMOJI_PRESENTATION) || take(text, at, plainForm)))
    return false;
  const auto skip = [&](auto belongs) {
    for (qsizetype after = at; belongs(next(text, after));)
      at = after;
  };
  skip([](char32_t c) { return c != 0 && has(c, UCHAR_EMOJI_MODIFIER); });
  skip([](char32_t c) { return c >= 0xe0020 && c <= 0xe007f; });
  position = at;
  return true;
}

// The first character that may begin a picture without a selector (a double exclamation mark).
bool mayMatter(QChar c) {
  return c.unicode() >= 0x203c;
}

} // namespace

qsizetype endOfEmoji(const QString& text, qsizetype position) {
  if (!takePicture(text, position))
    return position;
  for (qsizetype after = position; take(text, after, joiner);) {
    // What is joined need not be a picture by itself.
    const char32_t joined = next(text, after);
    if (joined == 0 || !has(joined, UCHAR_EXTENDED_PICTOGRAPHIC))
      break;
    take(text, after, pictureForm);
    qsizetype tone = after;
    if (const char32_t c = next(text, tone); c != 0 && has(c, UCHAR_EMOJI_MODIFIER))
      after = tone;
    position = after;
  }
  return position;
}

std::vector<Range> emojiRanges(const QString& text) {
  std::vector<Range> ranges;
  // Most of a text is not looked at closely.
  const auto first = std::find_if(text.begin(), text.end(), mayMatter);
  if (first == text.end())
    return ranges;
  // What a selector turns into a picture stands before it: the digit of a keycap.
  qsizetype start = std::max<qsizetype>(0, first - text.begin() - 1);
  while (start < text.size()) {
    const qsizetype end = endOfEmoji(text, start);
    if (end == start) {
      next(text, start);
      continue;
    }
    if (!ranges.empty() && ranges.back().end() == start)
      ranges.back().length += end - start;
    else
      ranges.push_back({start, end - start});
    start = end;
  }
  return ranges;
}

} // namespace zq::platform
