// Which system this is.
#pragma once

#include "zqticker/platform/system/Workspace.h"

#include <QtCore/QByteArray>

#include <optional>

namespace zq::platform {

// The up to three numbers, joined by points, that `release` begins with, as "6.1.0-18-amd64". Those
// that are missing are 0. Nothing where it begins with none.
std::optional<SystemVersion> versionInRelease(const QByteArray& release);

// The value of VERSION_ID in a file like /etc/os-release; empty where it has none.
QByteArray versionIdIn(const QByteArray& osRelease);

// The version of what uname tells, else of os-release.
SystemVersion systemVersion();

} // namespace zq::platform
