// "zqticker render": the strip as pictures, without a display.
#pragma once

#include "app/commands/StripOptions.h"

namespace zq::app {

// Renders what `arguments`, those after the command's name, ask for. CommandFailure otherwise.
int renderCommand(const QStringList& arguments);

// The same for options that are read already. `patienceSeconds` limits the wait for lines of
// standard input; negative for none.
void render(const RenderOptions& options, double patienceSeconds);

} // namespace zq::app
