#include "zqticker/platform/system/system_folders_p.h"

#include "zqticker/platform/system/FourCharacterCode.h"
#include "zqticker/platform/system/path_components.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>

#include <optional>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
enum class Scope { User, Local, System };

std::optional<Scope> scopeOf(FolderDomain domain) {
  switch (domain) {
  case FolderDomain::OnSystemDisk:
  case FolderDomain::OnAppropriateDisk:
  case FolderDomain::User:
    return Scope::User;
  case FolderDomain::Local:
    return Scope::Local;
  case FolderDomain::System:
    return Scope::System;
  case FolderDomain::Network:
    break;
  }
  return std::nullopt;
}

// One of those that only users have, or empty.
QString usersOwnFolder(quint32 type) {
  const auto location = [](QStandardPaths::StandardLocation which) {
    return QStandardPaths::writableLocation(which);
  };
  switch (type) {
  case fourCharacterCode("desk"):
    return location(QStandardPaths::DesktopLocation);
  case fourCharacterCode("docs"):
    return location(QStandardPaths::DocumentsLocation);
  case fourCharacterCode("down"):
    return location(QStandardPaths::DownloadLocation);
  case fourCharacterCode("pdoc"):
    return location(QStandardPaths::PicturesLocation);
  case fourCharacterCode("pubb"):
    return location(QStandardPaths::PublicShareLocation);
  case fourCharacterCode("\xB5"
                         "doc"):
    return location(QStandardPaths::MusicLocation);
  case fourCharacterCode("mdoc"):
    return location(QStandardPaths::MoviesLocation);
  case fourCharacterCode("cusr"):
    return QDir::homePath();
  case fourCharacterCode("usrs"):
    return deletingLastPathComponent(QDir::homePath());
  case fourCharacterCode("trsh"):
    return userDataFolder() + "/Trash"_L1;
  default:
    return {};
  }
}

// The user's folder, or the first or the last of the shared ones.
QString folderIn(Scope scope, const QString& users, const QStringList& shared) {
  switch (scope) {
  case Scope::User:
    return users;
  case Scope::Local:
    return shared.first();
  default:
    return shared.last();
  }
}

QString dataFolder(Scope scope) {
  return folderIn(scope, userDataFolder(), sharedDataFolders());
}
} // namespace

QString userBaseFolder(const char* variable, const QString& standard) {
  const QString path = QFile::decodeName(qgetenv(variable));
  return path.startsWith(u'/') ? path : appendingPathComponent(QDir::homePath(), standard);
}

QString userDataFolder() {
  return userBaseFolder("XDG_DATA_HOME", u".local/share"_s);
}

QStringList sharedFolders(const char* variable, const QStringList& standard) {
  QStringList folders;
  for (const QString& path : QFile::decodeName(qgetenv(variable)).split(u':'))
    if (path.startsWith(u'/'))
      folders.append(path);
  return folders.isEmpty() ? standard : folders;
}

QStringList sharedDataFolders() {
  return sharedFolders("XDG_DATA_DIRS", {u"/usr/local/share"_s, u"/usr/share"_s});
}

QString systemFolder(FolderDomain domain, quint32 type) {
  const std::optional<Scope> scope = scopeOf(domain);
  if (!scope)
    return {};
  switch (type) {
  case fourCharacterCode("asup"):
    return dataFolder(*scope);
  case fourCharacterCode("apps"):
    return appendingPathComponent(dataFolder(*scope), u"applications"_s);
  case fourCharacterCode("font"):
    return appendingPathComponent(dataFolder(*scope), u"fonts"_s);
  case fourCharacterCode("pref"):
    return folderIn(*scope, userBaseFolder("XDG_CONFIG_HOME", u".config"_s),
                    sharedFolders("XDG_CONFIG_DIRS", {u"/etc/xdg"_s}));
  case fourCharacterCode("cach"):
    return folderIn(*scope, userBaseFolder("XDG_CACHE_HOME", u".cache"_s), {u"/var/cache"_s});
  case fourCharacterCode("logs"):
    return folderIn(*scope, userBaseFolder("XDG_STATE_HOME", u".local/state"_s), {u"/var/log"_s});
  case fourCharacterCode("temp"):
    return QDir::tempPath();
  default:
    return *scope == Scope::User ? usersOwnFolder(type) : QString();
  }
}

} // namespace zq::platform
