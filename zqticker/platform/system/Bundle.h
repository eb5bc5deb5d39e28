// The files that come with the program.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QUrl>

namespace zq::platform {

// The resources of the program that runs. They are looked for in these folders, of which the first
// that has one gives it:
//
//  1. the folder of the program's file;
//  2. "../share/NAME" from there, where an installation puts what belongs to the program;
//  3. "NAME" in the user's own data folder ("~/.local/share", or what XDG_DATA_HOME says), below
//     the name of the organisation where the program states one.
//
// NAME is QCoreApplication::applicationName, by default the name of the program's file.
//
// Thread: any, once there is a QCoreApplication. Without one there are no folders.
class ZQTICKER_EXPORT Bundle {
 public:
  // The program's.
  static const Bundle& mainBundle();

  // The folders in the order above, whether they exist or not. The program's name is asked for each
  // time.
  QStringList resourceFolders() const;

  // Where the file "name.extension" is, as a file address; empty where no folder has a file of that
  // name, and for names that are empty or lead to other folders. Folders that may not be searched
  // have none; a file counts although it may not be read.
  QUrl URLForResource(const QString& name, const QString& withExtension) const;

 private:
  Bundle() = default;
};

} // namespace zq::platform
