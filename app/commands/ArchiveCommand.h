// zqticker archive: prints keyed archives.
#pragma once

#include "app/commands/Command.h"

class QIODevice;

namespace zq::app {

const OptionTable& archiveTable();

const std::vector<Command>& archiveCommands();

// Runs the command with other files than standard input, output and error. Returns the exit status:
// 0, or 1 where a file could not be printed. UsageError for a wrong command line.
int archiveCommand(const QStringList& arguments, QIODevice& input, QIODevice& output,
                   QIODevice& errors);

} // namespace zq::app
