// Where the desktop's folders are.
#pragma once

#include "zqticker/platform/system/FileManager.h"

#include <QtCore/QStringList>

namespace zq::platform {

// The path that FileManager::findFolder states, whether it exists or not; empty where there is
// none.
QString systemFolder(FolderDomain domain, quint32 type);

// The user's folder of a basic kind: `variable` where it is set, else `standard` in the home
// folder.
QString userBaseFolder(const char* variable, const QString& standard);

// $XDG_DATA_HOME, or ~/.local/share.
QString userDataFolder();

// The folders of a variable such as XDG_DATA_DIRS, or `standard`, absolute ones only.
QStringList sharedFolders(const char* variable, const QStringList& standard);

// $XDG_DATA_DIRS, or /usr/local/share and /usr/share.
QStringList sharedDataFolders();

} // namespace zq::platform
