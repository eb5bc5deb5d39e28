#include "app/services/FileReport.h"

#include "app/intake/LineSplitter.h"
#include "zqticker/watching/file_watcher.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace zq::app {

QString wordsFor(const QString& notification, WatchedKind kind) {
  if (notification == VXFileWatcherRenameNotification)
    return u"renamed"_s;
  if (notification == VXFileWatcherWriteNotification)
    return kind == WatchedKind::Folder ? u"contents changed"_s : u"written to"_s;
  if (notification == VXFileWatcherDeleteNotification)
    return u"deleted"_s;
  if (notification == VXFileWatcherAttributeChangeNotification)
    return u"attributes changed"_s;
  if (notification == VXFileWatcherSizeIncreaseNotification)
    return u"grew"_s;
  if (notification == VXFileWatcherLinkCountChangeNotification)
    return kind == WatchedKind::Folder ? u"subfolders changed"_s : u"links changed"_s;
  return notification == VXFileWatcherAccessRevocationNotification ? u"no longer accessible"_s
                                                                   : u"changed"_s;
}

QString nameOfFile(const QString& path) {
  const QString cleanPath = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
  const QString name = QFileInfo(cleanPath).fileName();
  return showableLine(name.isEmpty() ? cleanPath : name);
}

QString reportText(const FileReport& report) {
  return showableLine(nameOfFile(report.path) + u": "_s + report.what);
}

} // namespace zq::app
