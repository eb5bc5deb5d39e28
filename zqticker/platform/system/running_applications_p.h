// Which applications run, from what the kernel tells of processes.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <vector>

#include <sys/types.h>

namespace zq::platform {

struct RunningApplication {
  // The name of its desktop file without ".desktop"; one in a subfolder has that before it, with a
  // hyphen.
  QString identifier;
  qlonglong processIdentifier = 0;
};

// The application that a unit of the session is named after: a scope
// "app[-<launcher>]-<identifier>-<random>.scope", a service
// "app[-<launcher>]-<identifier>[@<random>].service" or a slice
// "app[-<launcher>]-<identifier>[-<random>].slice"; "\x2d" in it stands for the byte of that
// number.
std::optional<QString> applicationOfUnit(const QString& unit);

// The identifier of a desktop file by its path; nothing where it is none.
std::optional<QString> identifierOfDesktopFile(const QString& path);

// Where desktop files are, the one that counts first.
QStringList desktopFileFolders();

// The applications of `user`, each once, with its lowest process number, in the order of these.
// `processFolder` is /proc, or one like it.
std::vector<RunningApplication> runningApplications(const QString& processFolder,
                                                    const QStringList& desktopFileFolders,
                                                    uid_t user);

} // namespace zq::platform
