#include "zqticker/platform/system/Workspace.h"

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

} // namespace zq::platform
