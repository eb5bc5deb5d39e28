// "zqticker quit": ends the running ticker.
#pragma once

#include "app/commands/Command.h"

namespace zq::app {

const std::vector<Command>& quitCommands();

} // namespace zq::app
