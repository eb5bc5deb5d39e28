#include "zqticker/platform/system/FileManager.h"

#include "zqticker/platform/system/path_components.h"
#include "zqticker/platform/system/system_folders_p.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// What is read of a list of hidden files.
constexpr qint64 MaximumListSize = 1 << 20;

bool isListedAsHidden(const QString& directory, const QByteArray& name) {
  QFile list(appendingPathComponent(directory, u".hidden"_s));
  // A pipe or a device would block.
  if (!QFileInfo(list).isFile() || !list.open(QIODevice::ReadOnly))
    return false;
  return list.read(MaximumListSize).split('\n').contains(name);
}
} // namespace

FileManager& FileManager::defaultManager() {
  static FileManager manager;
  return manager;
}

QByteArray FileManager::fileSystemRepresentation(const QString& path) const {
  return path.contains(QChar::Null) || !path.isValidUtf16() ? QByteArray()
                                                            : QFile::encodeName(path);
}

bool FileManager::fileExistsAtPath(const QString& path) const {
  struct stat status;
  return ::stat(fileSystemRepresentation(path).constData(), &status) == 0;
}

std::optional<bool> FileManager::isInvisibleAtPath(const QString& path) const {
  struct stat status;
  if (::lstat(fileSystemRepresentation(path).constData(), &status) != 0)
    return std::nullopt;
  const QString absolute = QDir::cleanPath(QDir::current().absoluteFilePath(path));
  const QString name = lastPathComponent(absolute);
  return name.startsWith(u'.') ||
         isListedAsHidden(deletingLastPathComponent(absolute), fileSystemRepresentation(name));
}

std::optional<QString> FileManager::findFolder(FolderDomain domain, quint32 type) const {
  const QString path = systemFolder(domain, type);
  return QFileInfo(path).isDir() ? std::optional(path) : std::nullopt;
}

} // namespace zq::platform
