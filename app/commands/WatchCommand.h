// The command `watch`: what happens to files, as lines.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

// It prints a line for each report, until it is interrupted or nobody reads any more.
const std::vector<Command>& watchCommands();

} // namespace zq::app
