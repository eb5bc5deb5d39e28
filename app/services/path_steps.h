// The way to a file: the folders and symbolic links that its path leads through.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zq::app {

struct PathSteps {
  // Folders with an entry on which the way depends: a symbolic link, or one that is not there.
  QStringList deciding;
  // The other folders that are passed; what matters is that they stay where they are.
  QStringList passed;
  // Where the file stands, without symbolic links; empty where the way breaks off.
  QString place;

  bool operator==(const PathSteps&) const = default;
};

// Follows `path` as the system does, up to the file or to what is missing. The folder in which a
// relative path begins is ".".
PathSteps stepsOf(const QString& path);

// The folder in which `place` stands.
QString folderOf(const QString& place);

} // namespace zq::app
