// Files that a strip tells of.
#pragma once

#include "app/commands/StripOptions.h"
#include "app/services/FileService.h"

#include <memory>

namespace zq::app {

class TickerDisplay;

// Watches and follows the files of `options` from the event loop; what they bring goes to
// `receivers`, their last lines at once. Null where there are none. RunTimeError for what cannot be
// watched or followed.
std::unique_ptr<FileService> followFiles(const StripOptions& options,
                                         const FileReceivers& receivers);

// Adds the last line of each text file to `display` at time 0. RunTimeError for what cannot be
// watched or followed.
void takeLastLines(TickerDisplay& display, const StripOptions& options, MissingFiles missing);

} // namespace zq::app
