#include "zqticker/platform/system/Workspace.h"

#include "zqticker/platform/system/FileManager.h"
#include "zqticker/platform/system/Trash_p.h"
#include "zqticker/platform/system/path_components.h"
#include "zqticker/platform/system/running_applications_p.h"
#include "zqticker/platform/system/system_version_p.h"

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::platform {

Workspace::Workspace() = default;
Workspace::~Workspace() = default;

Workspace& Workspace::sharedWorkspace() {
  // Watchers' threads may use it until the process ends.
  static Workspace* const shared = new Workspace;
  return *shared;
}

void Workspace::noteFileSystemChanged(const QString& path) {
  Q_EMIT fileSystemChanged(path);
}

std::vector<QVariantMap> Workspace::launchedApplications() const {
  std::vector<QVariantMap> applications;
  for (const RunningApplication& each :
       runningApplications(u"/proc"_s, desktopFileFolders(), ::geteuid()))
    applications.push_back(
        {{QLatin1StringView(NSApplicationBundleIdentifier), each.identifier},
         {QLatin1StringView(NSApplicationProcessIdentifier), each.processIdentifier}});
  return applications;
}

bool Workspace::recycleFiles(const QString& folder, const QStringList& names) {
  const FileManager& files = FileManager::defaultManager();
  bool haveAllGone = true;
  for (const QString& name : names) {
    const bool isName =
        !name.isEmpty() && !name.contains(u'/') && name != "."_L1 && name != ".."_L1;
    const QByteArray path =
        isName ? files.fileSystemRepresentation(appendingPathComponent(folder, name))
               : QByteArray();
    haveAllGone = !path.isEmpty() && moveToTrash(path) == 0 && haveAllGone;
  }
  return haveAllGone;
}

SystemVersion Workspace::systemVersion() const {
  return platform::systemVersion();
}

} // namespace zq::platform
