// A sign between its arrival and the strip.
#pragma once

#include <QtCore/QString>

#include <functional>

namespace zq::app {

// What is left to do for a sign of another program that is let in: first decode, then show.
struct ArrivingSign {
  // Decodes its pictures; none where that takes no part of a frame worth speaking of. Where it
  // raises, or is not called, that comes when the sign is shown.
  //
  // Thread: any, and nothing else is done with the sign meanwhile.
  std::function<void()> decode;
  // Shows it; its identifier. Called once at most; none where there is nothing to show. Raises
  // what stands at the function that gave the sign.
  //
  // Thread: main.
  std::function<QString()> show;
};

} // namespace zq::app
