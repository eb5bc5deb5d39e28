// Waiting for what an event loop brings, with an upper bound that only a failure reaches.
#pragma once

#include <chrono>
#include <functional>

namespace zq::testing {

// Runs the event loop of the calling thread until `condition` holds, and returns whether it does.
bool waitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds bound = std::chrono::seconds(30));

// Runs the event loop until everything that is posted by now has been delivered, what that posts
// included, and nothing more comes by itself.
void runPostedEvents();

} // namespace zq::testing
