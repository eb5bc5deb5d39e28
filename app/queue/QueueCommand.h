// The command that opens the queue window of the running ticker.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

const std::vector<Command>& queueCommands();

} // namespace zq::app
