#include "app/commands/watch_lines.h"

#include "app/commands/OutputValue.h"
#include "zqticker/watching/file_watcher.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
QString wordOf(const QString& notification) {
  if (notification == VXFileWatcherRenameNotification)
    return u"renamed"_s;
  if (notification == VXFileWatcherWriteNotification)
    return u"written"_s;
  if (notification == VXFileWatcherDeleteNotification)
    return u"deleted"_s;
  if (notification == VXFileWatcherAttributeChangeNotification)
    return u"attributes"_s;
  if (notification == VXFileWatcherSizeIncreaseNotification)
    return u"grown"_s;
  if (notification == VXFileWatcherLinkCountChangeNotification)
    return u"links"_s;
  if (notification == VXFileWatcherAccessRevocationNotification)
    return u"revoked"_s;
  return notification;
}

// As in JSON, but that quotation marks stand for themselves.
QString onOneLine(const QString& path) {
  const QString quoted = OutputValue::quoted(path);
  return quoted.sliced(1, quoted.size() - 2).replace("\\\""_L1, "\""_L1);
}
} // namespace

QByteArray plainWatchLine(const QString& notification, const QString& path) {
  return QString(wordOf(notification) + u'\t' + onOneLine(path)).toUtf8();
}

QByteArray readyWatchLine() {
  return "{\"ready\": true}"_ba;
}

QByteArray jsonWatchLine(qint64 time, const QString& notification, const QString& path) {
  return "{\"time\": " + QByteArray::number(time) +
         ", \"notification\": " + OutputValue::quoted(notification).toUtf8() +
         ", \"path\": " + OutputValue::quoted(path).toUtf8() + '}';
}

} // namespace zq::app
