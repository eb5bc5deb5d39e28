// The command `trace check`: what a trace says of a motion.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

const std::vector<Command>& traceCommands();

} // namespace zq::app
