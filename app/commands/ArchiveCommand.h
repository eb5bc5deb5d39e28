// zqticker archive: prints keyed archives.
#pragma once

#include <QtCore/QStringList>

class QIODevice;

namespace zq::app {

// Runs the command with its arguments, the command's own name left out. Returns the exit status: 0,
// 1 where a file could not be printed, 2 where the command line is wrong.
int archiveCommand(const QStringList& arguments);

// The same with other files than standard input, output and error.
int archiveCommand(const QStringList& arguments, QIODevice& input, QIODevice& output,
                   QIODevice& errors);

} // namespace zq::app
