#include "zqticker/platform/text/LineCharacters_p.h"

#include "zqticker/platform/text/emoji_p.h"

#include <algorithm>
#include <chrono>
#include <pthread.h>
#include <system_error>
#include <thread>
#include <utility>

namespace zq::platform {

namespace {

constexpr char16_t zeroWidthSpace = 0x200b;

// What stands for `text[i]` on one line.
char16_t onOneLine(const QString& text, qsizetype i) {
  const QChar c = text[i];
  switch (c.unicode()) {
  case u'\n':
    return i > 0 && text[i - 1] == u'\r' ? zeroWidthSpace : u' ';
  case u'\r':
  case u'\t':
  case u'\v':
  case u'\f':
  case 0x85:
  case QChar::LineSeparator:
  case QChar::ParagraphSeparator:
    return u' ';
  default:
    break;
  }
  if (c.unicode() < 0x20 || (c.unicode() >= 0x7f && c.unicode() < 0xa0))
    return zeroWidthSpace;
  const bool isLone =
      (c.isHighSurrogate() && (i + 1 == text.size() || !text[i + 1].isLowSurrogate())) ||
      (c.isLowSurrogate() && (i == 0 || !text[i - 1].isHighSurrogate()));
  return isLone ? char16_t(QChar::ReplacementCharacter) : c.unicode();
}

// Shares the characters of a text that stands on one line already.
QString onOneLine(const QString& text) {
  const auto isPlain = [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x7f; };
  QString line = text;
  QChar* changed = nullptr;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (isPlain(text[i]))
      continue;
    const QChar shown(onOneLine(text, i));
    if (shown == text[i])
      continue;
    if (!changed)
      changed = line.data();
    changed[i] = shown;
  }
  return line;
}

// Takes what directs out of a line; whether it overrides directions.
bool takeControls(QString& line) {
  bool overrides = false;
  const auto isControl = [](QChar c) { return isDirectionControl(c.unicode()); };
  const auto first = std::find_if(line.cbegin(), line.cend(), isControl);
  if (first == line.cend())
    return overrides;
  const qsizetype start = first - line.cbegin();
  for (auto c = line.begin() + start; c != line.end(); ++c)
    if (isControl(*c)) {
      overrides |= isDirectionOverride(c->unicode());
      *c = QChar(zeroWidthSpace);
    }
  return overrides;
}

} // namespace

LineCharacters LineCharacters::of(const QString& text, std::optional<bool> rightToLeft) {
  LineCharacters characters;
  characters.text = onOneLine(text);
  characters.emoji = emojiRanges(characters.text);
  characters.directions = directionRuns(characters.text, rightToLeft);
  // The order is known now; what directed it must not do so again within a segment.
  characters.forcesDirection = takeControls(characters.text);
  return characters;
}

std::optional<LineCharacters> LineReading::takeUntil(const QDeadlineTimer& deadline) {
  const bool isAtOnce = text_.size() <= LongestReadAtOnce || deadline.isForever();
  if (!characters_.valid() && (isAtOnce || !start()))
    return LineCharacters::of(text_, rightToLeft_);
  if (deadline.isForever())
    return characters_.get();
  const auto left = std::chrono::nanoseconds(std::max<qint64>(deadline.remainingTimeNSecs(), 0));
  if (characters_.wait_for(left) != std::future_status::ready)
    return std::nullopt;
  return characters_.get();
}

// Whether there is a thread for it.
bool LineReading::start() {
  std::packaged_task<LineCharacters()> read([text = text_, rightToLeft = rightToLeft_] {
    pthread_setname_np(pthread_self(), "zqticker-line");
    return LineCharacters::of(text, rightToLeft);
  });
  std::future<LineCharacters> characters = read.get_future();
  try {
    std::thread(std::move(read)).detach();
  } catch (const std::system_error&) {
    return false;
  }
  characters_ = std::move(characters);
  return true;
}

} // namespace zq::platform
