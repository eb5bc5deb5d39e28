#include "app/settings/autostart.h"

#include "app/commands/failures.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QStandardPaths>

#include <optional>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qint64 LargestFile = 1 << 20;

const QByteArray Group = "[Desktop Entry]";
const QByteArray HiddenKey = "Hidden";
// Written by desktops whose own settings list the programs of a session.
const QByteArray EnabledKey = "X-GNOME-Autostart-enabled";

// Nothing where there is no such file.
std::optional<QByteArray> contentsOf(const QString& path) {
  QFile file(path);
  if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
    return std::nullopt;
  return file.read(LargestFile);
}

bool isKey(const QByteArray& line, const QByteArray& key) {
  const qsizetype equals = line.indexOf('=');
  return equals >= 0 && line.first(equals).trimmed() == key;
}

// The value of `key` in the entry's own group; empty where it is not there.
QByteArray valueOf(const QByteArray& entry, const QByteArray& key) {
  QByteArray group;
  for (const QByteArray& line : entry.split('\n')) {
    if (line.startsWith('['))
      group = line.trimmed();
    else if (group == Group && isKey(line, key))
      return line.sliced(line.indexOf('=') + 1).trimmed();
  }
  return QByteArray();
}

// The entry without the keys that switch it off, and hidden where asked for.
QByteArray switched(const QByteArray& entry, bool starts) {
  QByteArray group;
  QList<QByteArray> lines;
  for (const QByteArray& line : entry.split('\n')) {
    if (line.startsWith('['))
      group = line.trimmed();
    if (group == Group && (isKey(line, HiddenKey) || isKey(line, EnabledKey)))
      continue;
    lines.append(line);
    if (line.startsWith('[') && group == Group && !starts)
      lines.append(HiddenKey + "=true");
  }
  return lines.join('\n');
}

QByteArray newEntry() {
  return Group + "\nType=Application\nName=Ticker\nComment=Signs that scroll over the screen\n" +
         "Exec=" + programForDesktopEntry() + " run --no-window\nIcon=org.zqticker.Ticker\n" +
         "Terminal=false\n";
}

void write(const QString& path, const QByteArray& bytes) {
  QSaveFile file(path);
  const bool hasFolder = QDir().mkpath(QFileInfo(path).absolutePath());
  if (!hasFolder || !file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() ||
      !file.commit())
    throw RunTimeError(quotedForMessage(path) + u": cannot write: "_s +
                       (hasFolder ? file.errorString() : u"the folder cannot be made"_s));
}
} // namespace

QByteArray programForDesktopEntry() {
  const QString path = QCoreApplication::applicationFilePath();
  const QString name = QFileInfo(path).fileName();
  const QString found = QStandardPaths::findExecutable(name);
  if (!found.isEmpty() &&
      QFileInfo(found).canonicalFilePath() == QFileInfo(path).canonicalFilePath())
    return QFile::encodeName(name);
  // Two ways of writing lie over each other: that of a quoted argument, in which a backslash stands
  // before `"$\, and that of a value, in which each backslash is doubled; a percent sign is doubled
  // as well.
  QByteArray quoted;
  for (const char c : QFile::encodeName(path)) {
    if (c == '\\')
      quoted += "\\\\\\\\";
    else if (c == '"' || c == '`' || c == '$')
      quoted += QByteArray("\\\\") + c;
    else if (c == '%')
      quoted += "%%";
    else
      quoted += c;
  }
  return '"' + quoted + '"';
}

bool startsWithSession(const QString& file) {
  const std::optional<QByteArray> entry = contentsOf(file);
  return entry && !valueOf(*entry, "Exec").isEmpty() && valueOf(*entry, HiddenKey) != "true" &&
         valueOf(*entry, EnabledKey) != "false";
}

void setStartsWithSession(const QString& file, bool starts) {
  if (startsWithSession(file) == starts)
    return;
  const std::optional<QByteArray> entry = contentsOf(file);
  if (starts)
    write(file, entry && !valueOf(*entry, "Exec").isEmpty() ? switched(*entry, true) : newEntry());
  else if (entry && *entry != newEntry())
    write(file, switched(*entry, false));
  else if (!QFile::remove(file))
    throw RunTimeError(quotedForMessage(file) + u": cannot be removed"_s);
}

} // namespace zq::app
