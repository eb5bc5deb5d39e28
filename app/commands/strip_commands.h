// The commands that show strips: their options and texts.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

const OptionTable& runTable();
const OptionTable& renderTable();
const OptionTable& signTable();

// `run`, `render` and `sign`.
const std::vector<Command>& stripCommands();

} // namespace zq::app
