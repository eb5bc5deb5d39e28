// Files, folders and applications: FileManager (ZQAdditions) and Workspace (ZQAdditions).
//
// Paths that name no file (see FileManager.h) lead to nothing.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace zq::platform {
class FileManager;
class Workspace;
} // namespace zq::platform

namespace zq {

// FileManager (ZQAdditions). Thread: any.

// The path of a folder of the system that exists, by the code of its type, four characters in a
// number, and the number of its domain; FileManager::findFolder tells which there are. Nothing for
// any other.
// Operation: findSystemFolderType:forDomain:
ZQTICKER_EXPORT std::optional<QString> findSystemFolderType(const platform::FileManager& manager,
                                                            quint32 folderType, qint16 forDomain);

// Reopens the process's standard error on the file at `path`, to be appended to, and returns
// whether that worked; else everything is as it was. On a full disk it works and the lines are
// lost. Not while another thread writes there.
// Operation: redirectStandardErrorToPath:
ZQTICKER_EXPORT bool redirectStandardErrorToPath(const platform::FileManager& manager,
                                                 const QString& path);

// `path` itself where there is nothing; else the first at which there is nothing of those with
// `delimiter` and 1, 2, 3, … before the extension: "/tmp/report-2.txt". A symbolic link counts as
// what it leads to. Nothing is created, so that two callers may receive the same.
// Operation: uniqueFileNameAtPath:delimiter:
ZQTICKER_EXPORT QString uniqueFileNameAtPath(const platform::FileManager& manager,
                                             const QString& path, const QString& delimiter);
// The same with "-".
// Operation: uniqueFileNameAtPath:
ZQTICKER_EXPORT QString uniqueFileNameAtPath(const platform::FileManager& manager,
                                             const QString& path);

// False for a hidden file or folder: its name begins with a point or stands in the list ".hidden"
// of its folder. True for all others, and where there is nothing.
// Operation: isVisibleFileAtPath:
ZQTICKER_EXPORT bool isVisibleFileAtPath(const platform::FileManager& manager, const QString& path);

// Workspace (ZQAdditions). Thread: any.

// Whether an application runs, by the name of its desktop file without ".desktop", case and all.
// Workspace::launchedApplications tells how it is known.
// Operation: appRunningWithBundleIdentifier:
ZQTICKER_EXPORT bool appRunningWithBundleIdentifier(const platform::Workspace& workspace,
                                                    const QString& bundleIdentifier);

// Moves the file or folder of that name in the folder `path` into the trash of its volume, and
// returns whether it went. The name holds no slash.
// Operation: trashFile:atPath:
ZQTICKER_EXPORT bool trashFile(platform::Workspace& workspace, const QString& file,
                               const QString& path);
// The same for several. False where one of them did not go; the others went all the same.
// Operation: trashFiles:atPath:
ZQTICKER_EXPORT bool trashFiles(platform::Workspace& workspace, const QStringList& files,
                                const QString& path);
// The same for a whole path.
// Operation: trashFileAtPath:
ZQTICKER_EXPORT bool trashFileAtPath(platform::Workspace& workspace, const QString& path);

// Stores the three numbers of the kernel's version, as 6, 1 and 0; those that it does not have are
// 0. Where the kernel tells none, that of the distribution (VERSION_ID of os-release).
// Operation: operatingSystemVersion:minor:bugFix:
ZQTICKER_EXPORT void operatingSystemVersion(const platform::Workspace& workspace, int& majorNumber,
                                            int& minorNumber, int& bugFixNumber);

} // namespace zq
