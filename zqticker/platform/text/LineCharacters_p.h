// The characters of a text as one line shows them.
#pragma once

#include "zqticker/platform/objects/Range.h"
#include "zqticker/platform/text/bidi_p.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QString>

#include <future>
#include <optional>
#include <vector>

namespace zq::platform {

// What is known of a line before anything is shaped.
struct LineCharacters {
  // Reads `text`, whose direction is `rightToLeft` where given. Takes time that grows with the
  // text, some 50 ms for a million characters.
  //
  // Thread: any.
  static LineCharacters of(const QString& text, std::optional<bool> rightToLeft);

  // The text, unit for unit, without the characters that a line has no place for; shared where
  // there are none.
  QString text;
  // As emojiRanges and directionRuns give them.
  std::vector<Range> emoji;
  std::vector<DirectionRun> directions;
  // Whether the text overrides directions.
  bool forcesDirection = false;
};

// Reads a text while somebody waits for it for a while at a time. A long one is read on a thread
// of its own, which goes on for itself where nobody waits any more.
//
// Thread: one.
class LineReading {
 public:
  LineReading(const QString& text, std::optional<bool> rightToLeft)
      : text_(text), rightToLeft_(rightToLeft) {}

  // The characters, once; nothing where they are not known by `deadline`. What is short, or waited
  // for without an end, is read at once. Raises std::bad_alloc.
  std::optional<LineCharacters> takeUntil(const QDeadlineTimer& deadline);

  // Read within a small part of a frame.
  static constexpr qsizetype LongestReadAtOnce = 4096;

 private:
  bool start();

  QString text_;
  std::optional<bool> rightToLeft_;
  std::future<LineCharacters> characters_; // invalid before the thread is started
};

} // namespace zq::platform
