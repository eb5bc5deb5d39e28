// Everything that lets a user act on the strip itself.
#pragma once

#include "app/interaction/SignOpener.h"
#include "app/interaction/StripCommands.h"
#include "app/interaction/StripPointer.h"

namespace zq::app {

// The parts of a strip's handling, which know of each other here.
//
// Thread: main.
class StripInteraction {
 public:
  // Both must outlive it.
  StripInteraction(StripWidget& strip, TickerDisplay& display);
  ~StripInteraction();
  StripInteraction(const StripInteraction&) = delete;

  StripPointer& pointer() { return pointer_; }
  StripCommands& commands() { return commands_; }
  const SignOpener& opener() const { return opener_; }

 private:
  SignOpener opener_;
  StripPointer pointer_;
  StripCommands commands_;
};

} // namespace zq::app
