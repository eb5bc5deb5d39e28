// Feeds of a strip that is rendered: read once, before the first frame.
#pragma once

#include "app/commands/strip_setup.h"

namespace zq::app {

class Interrupts;

// What becomes of a feed that cannot be read.
enum class FeedFailure {
  Ends,   // RunTimeError
  IsTold, // a line on standard error
};

// Reads the feeds of `options`, with their pictures at `scale` device pixels a point, and adds
// their signs to `display` at time 0. Waits `patienceSeconds` at most, for what has not answered by
// then as for what has failed. RunTimeError when interrupted.
void loadFeeds(TickerDisplay& display, const StripOptions& options, const StripLook& look,
               double scale, double patienceSeconds, FeedFailure failure, Interrupts& interrupts);

} // namespace zq::app
