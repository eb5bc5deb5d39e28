// The command `fetch`: the contents of an address.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

// It writes the body, or what came of the load as JSON.
const std::vector<Command>& fetchCommands();

} // namespace zq::app
