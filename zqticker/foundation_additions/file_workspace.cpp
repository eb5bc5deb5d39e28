#include "zqticker/foundation_additions/file_workspace.h"

#include "zqticker/platform/system/FileManager.h"
#include "zqticker/platform/system/Workspace.h"
#include "zqticker/platform/system/path_components.h"
#include "zqticker/platform/system/standard_error.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq {

using namespace platform;

std::optional<QString> findSystemFolderType(const FileManager& manager, quint32 folderType,
                                            qint16 forDomain) {
  return manager.findFolder(static_cast<FolderDomain>(forDomain), folderType);
}

bool redirectStandardErrorToPath(const FileManager& manager, const QString& path) {
  return reopenStandardError(manager.fileSystemRepresentation(path));
}

QString uniqueFileNameAtPath(const FileManager& manager, const QString& path,
                             const QString& delimiter) {
  if (!manager.fileExistsAtPath(path))
    return path;
  const QString directory = deletingLastPathComponent(path);
  const QString name = lastPathComponent(path);
  // The root has no name in itself.
  const QString base = name == "/"_L1 ? QString() : deletingPathExtension(name);
  const QString extension = pathExtension(name);
  for (qint64 n = 1;; ++n) {
    const QString candidate = appendingPathComponent(
        directory,
        appendingPathExtension(QString(base + delimiter + QString::number(n)), extension));
    if (!manager.fileExistsAtPath(candidate))
      return candidate;
  }
}

QString uniqueFileNameAtPath(const FileManager& manager, const QString& path) {
  return uniqueFileNameAtPath(manager, path, u"-"_s);
}

bool isVisibleFileAtPath(const FileManager& manager, const QString& path) {
  return !manager.isInvisibleAtPath(path).value_or(false);
}

bool appRunningWithBundleIdentifier(const Workspace& workspace, const QString& bundleIdentifier) {
  const auto applications = workspace.launchedApplications();
  return std::any_of(applications.begin(), applications.end(), [&](const QVariantMap& each) {
    return each.value(QLatin1StringView(NSApplicationBundleIdentifier)) == bundleIdentifier;
  });
}

bool trashFile(Workspace& workspace, const QString& file, const QString& path) {
  return trashFiles(workspace, {file}, path);
}

bool trashFiles(Workspace& workspace, const QStringList& files, const QString& path) {
  return workspace.recycleFiles(path, files);
}

bool trashFileAtPath(Workspace& workspace, const QString& path) {
  return trashFile(workspace, lastPathComponent(path), deletingLastPathComponent(path));
}

void operatingSystemVersion(const Workspace& workspace, int& majorNumber, int& minorNumber,
                            int& bugFixNumber) {
  const SystemVersion version = workspace.systemVersion();
  majorNumber = version.majorNumber;
  minorNumber = version.minorNumber;
  bugFixNumber = version.bugFixNumber;
}

} // namespace zq
