// The commands with their options: what the parser takes and --help prints.
#pragma once

#include "app/commands/OptionTable.h"

namespace zq::app {

const OptionTable& runTable();
const OptionTable& renderTable();
const OptionTable& signTable();
const OptionTable& fetchTable();
const OptionTable& feedCheckTable();
const OptionTable& watchTable();

// What "zqticker --help" prints: the commands, and the options of `run`, which is meant where no
// command is named.
QString programHelp();

} // namespace zq::app
