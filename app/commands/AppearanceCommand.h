// "zqticker appearance": files of the look of buttons, the JSON from which people make them, and
// the pictures in which they look at them.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

// `appearance show`, `make` and `preview`.
const std::vector<Command>& appearanceCommands();

} // namespace zq::app
