// "zqticker pause", "resume", "hide", "show" and "focus": the running strip from a key of the
// desktop.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

const std::vector<Command>& stripControlCommands();

} // namespace zq::app
