// The command `help`, and the texts that --help prints.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

const std::vector<Command>& helpCommands();

// What "zqticker --help" prints: the commands by their groups, and the options of `run`, which is
// meant where no command is named.
QString programHelp();

// What is told of the command named, and of those whose names begin with it. UsageError where there
// is none.
QString helpOf(const QString& name);

// The heading of a group, without a colon: "On the screen".
QString titleOf(CommandGroup group);

} // namespace zq::app
