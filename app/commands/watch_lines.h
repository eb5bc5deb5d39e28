// The lines that the command `watch` prints.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zq::app {

// "written<TAB>notes.txt": what `notification`, one of the names in file_watcher.h, means, and the
// path on one line: a backslash, control characters and line separators in it are written as in
// JSON (\\, \n, \t, \u001b). UTF-8, without a line feed.
QByteArray plainWatchLine(const QString& notification, const QString& path);

// The line that `--json` begins with.
QByteArray readyWatchLine();

// {"time": …, "notification": "…", "path": "…"}, `time` in nanoseconds.
QByteArray jsonWatchLine(qint64 time, const QString& notification, const QString& path);

} // namespace zq::app
