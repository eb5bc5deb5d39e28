// The command `watch`: what happens to files, as lines.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

// Watches the paths named in `arguments` and prints a line for each report, until it is interrupted
// or nobody reads any more; returns the exit status. UsageError and RunTimeError as every command.
// Needs a QCoreApplication and an open standard output.
int watchCommand(const QStringList& arguments);

} // namespace zq::app
