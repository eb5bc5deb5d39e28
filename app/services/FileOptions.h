// Which files to tell of, and which to read on and on.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

struct FileOptions {
  QStringList watched; // each once; files or folders
  QStringList tailed;  // each once; text files

  bool isEmpty() const { return watched.isEmpty() && tailed.isEmpty(); }
};

} // namespace zq::app
