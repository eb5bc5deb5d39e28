// What other programs drop on the queue window, as signs.
#pragma once

#include "app/queue/QueueSource.h"

#include <QtCore/QStringList>

class QMimeData;

namespace zq::app {

// What a drop may bring.
inline constexpr qsizetype MostDroppedAddresses = 100;
inline constexpr qint64 MostDroppedFileBytes = qint64(32) << 20;
inline constexpr qint64 MostDroppedTextBytes = qint64(1) << 20;
inline constexpr qsizetype MostDroppedSigns = 1000;

// Why a drop of `contents` is not possible, as far as can be told before it comes; a sentence for
// people without its full stop, empty where they bring nothing that a sign could show. Nothing
// where the drop is possible.
std::optional<QString> dropRefusal(const QMimeData& contents);

struct DroppedSigns {
  std::vector<platform::Ref<ZQTickerSign>> signs;
  // What could not be used, a line each.
  QStringList problems;
};

// The signs that `contents` make: of local files and addresses; else of a picture; else of text.
//
// A picture makes an image sign that fits the strip. A file of signs makes these, and a text file,
// as does text, a sign for each line that is not blank. An address of the web makes a text sign
// that shows its title, where the other program tells one, and opens it when it is clicked.
// Signs that are made here are shown `showings` times, negative for without end; those from files
// of signs as often as they say. What is broken or too large is a problem, and the rest comes.
DroppedSigns readDrop(const QMimeData& contents, QueueSource& queue, std::int64_t showings);

} // namespace zq::app
