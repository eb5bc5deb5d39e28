// What happened to a watched file or folder, in words.
#pragma once

#include <QtCore/QString>

#include <functional>

namespace zq::app {

struct FileReport {
  QString path; // as given
  QString what; // such as "deleted"
};

using ReportReceiver = std::function<void(const FileReport& report)>;

// What a report of a watcher means for a file, or for a folder; `notification` is one of the names
// in file_watcher.h.
enum class WatchedKind { File, Folder };
QString wordsFor(const QString& notification, WatchedKind kind);

// A file's name for people, on one line: the last part of the path, that of the current folder for
// ".".
QString nameOfFile(const QString& path);

// "name: what happened", on one line.
QString reportText(const FileReport& report);

} // namespace zq::app
