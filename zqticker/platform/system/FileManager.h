// What is where in the file system.
//
// Paths are texts. One that holds U+0000 or half of a surrogate pair names no file, and neither
// does the empty one. A name that is no valid UTF-8 has no path here: the text that QFile makes of
// it names another file, or none.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

namespace zq::platform {

// Where a folder is looked for, by the platform's numbers.
enum class FolderDomain : qint16 {
  OnSystemDisk = -32768,
  OnAppropriateDisk = -32767,
  System = -32766,
  Local = -32765,
  Network = -32764,
  User = -32763,
};

// Thread: any.
class ZQTICKER_EXPORT FileManager {
 public:
  // The one that there is.
  static FileManager& defaultManager();

  // The path as the file system takes it; empty for one that names no file.
  QByteArray fileSystemRepresentation(const QString& path) const;

  // Whether there is a file or a folder, through symbolic links: one that leads nowhere does not
  // count.
  bool fileExistsAtPath(const QString& path) const;

  // Whether the file, the folder or the link itself is hidden: by a point at the beginning of its
  // name, or by a line with its name in the file ".hidden" of its folder. Nothing where there is
  // none.
  std::optional<bool> isInvisibleAtPath(const QString& path) const;

  // The path of the folder of that type, if it exists; nothing else. Types are the platform's codes
  // of four characters:
  //
  //   type                      user, and either disk            local           system
  //   desk docs down pdoc pubb  the user's Desktop, Documents,   -               -
  //     µdoc mdoc                 Downloads, Pictures, Public,
  //                               Music and Videos (user-dirs)
  //   cusr                      the home folder                  -               -
  //   usrs                      the folder of the home folder    -               -
  //   asup                      $XDG_DATA_HOME                   $XDG_DATA_DIRS, first and last
  //   apps, font                their subfolders "applications" and "fonts"
  //   pref                      $XDG_CONFIG_HOME                 $XDG_CONFIG_DIRS, first and last
  //   cach                      $XDG_CACHE_HOME                  /var/cache      /var/cache
  //   logs                      $XDG_STATE_HOME                  /var/log        /var/log
  //   temp                      $TMPDIR or /tmp, in each of these domains
  //   trsh                      $XDG_DATA_HOME/Trash             -               -
  //
  // µ is the byte 0xB5. Variables that are empty, or no absolute paths, count as their defaults.
  std::optional<QString> findFolder(FolderDomain domain, quint32 type) const;

 private:
  FileManager() = default;
};

} // namespace zq::platform
