// What other programs drop on the queue window, as signs.
#pragma once

#include "app/queue/QueueSource.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QSize>
#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtGui/QImage>

#include <atomic>

class QMimeData;

namespace zq::app {

// What a drop may bring.
inline constexpr qsizetype MostDroppedAddresses = 100;
inline constexpr qint64 MostDroppedFileBytes = qint64(32) << 20;
inline constexpr qint64 MostDroppedBytes = qint64(256) << 20; // of all files together
inline constexpr qint64 MostDroppedTextBytes = qint64(1) << 20;
inline constexpr qsizetype MostDroppedSigns = 1000;

// Why a drop of `contents` is not possible, as far as can be told before it comes; a sentence for
// people without its full stop, empty where they bring nothing that a sign could show. Nothing
// where the drop is possible.
std::optional<QString> dropRefusal(const QMimeData& contents);

// Whether a drop brings files, which take time to read.
bool bringsFiles(const QMimeData& contents);

// One of the addresses that a drop with files brings, with what is in the file.
struct LoadedFile {
  QUrl url;
  QByteArray bytes; // empty for an address of the web
  QImage picture;   // of the bytes, where they are one of the common formats
  QString problem;  // why there are no bytes; empty where there are
};

// Reads the files one after the other, until `isStopped`. Pictures are scaled down to `room` in
// pixels. Thread: any.
std::vector<LoadedFile> loadFiles(const QList<QUrl>& urls, QSize room,
                                  const std::atomic<bool>& isStopped);
// The pixels that are enough for a picture on a strip where it takes `pictureRoom` in points, a
// side of 0 being free: more than the sharpest screen shows of a strip several times as large.
QSize pixelRoomFor(QSizeF pictureRoom);

struct DroppedSigns {
  std::vector<platform::Ref<ZQTickerSign>> signs;
  // What could not be used, a line each.
  QStringList problems;
};

// The signs that `contents` without files make: of a picture; else of addresses; else of text.
// `signsOfFiles` gives those of a drop with files.
//
// A picture makes an image sign that fits the strip. A file of signs makes these, and a text file,
// as does text, a sign for each line that is not blank. An address of the web makes a text sign
// that shows its title, where the other program tells one, and opens it when it is clicked.
// Signs that are made here are shown `showings` times, negative for without end; those from files
// of signs as often as they say. What is broken or too large is a problem, and the rest comes.
DroppedSigns readDrop(const QMimeData& contents, QueueSource& queue, std::int64_t showings);
DroppedSigns signsOfFiles(const std::vector<LoadedFile>& files, QueueSource& queue,
                          std::int64_t showings);

} // namespace zq::app
