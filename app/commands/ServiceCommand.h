// The commands `service feed`, `service watch` and `service tail`: services in programs of their
// own, which send what they bring to the running ticker.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

// They run until they are interrupted.
const std::vector<Command>& serviceCommands();

} // namespace zq::app
