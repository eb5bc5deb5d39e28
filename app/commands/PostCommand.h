// The command `post`: a message to the running ticker.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

// It sends what its options describe over the session bus, to the ticker that runs or that the bus
// starts for it.
const std::vector<Command>& postCommands();

} // namespace zq::app
