// The command `feed check`: what the program makes of a feed.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

// It loads and reads a feed, from an address or a file, and prints what it says and what is odd
// about it.
const std::vector<Command>& feedCommands();

} // namespace zq::app
