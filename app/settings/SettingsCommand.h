// "zqticker settings": the settings from the command line.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

// `settings` itself, which opens the window, and `settings list`, `get`, `set` and `reset`.
const std::vector<Command>& settingsCommands();

} // namespace zq::app
