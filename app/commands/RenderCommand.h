// "zqticker render": the strip as pictures, without a display.
#pragma once

#include "app/commands/StripOptions.h"
#include "app/commands/feed_loading.h"

namespace zq::app {

// Renders what `arguments`, those after the command's name, ask for. CommandFailure otherwise.
int renderCommand(const QStringList& arguments);

// How much time what comes from elsewhere gets, in seconds.
struct RenderPatience {
  double forLines = -1; // between lines of standard input; negative for any time
  double forFeeds = 60; // until all have answered, pictures included
  FeedFailure feedFailure = FeedFailure::Ends;
};

// The same for options that are read already.
void render(const RenderOptions& options, const RenderPatience& patience, Interrupts& interrupts);

} // namespace zq::app
