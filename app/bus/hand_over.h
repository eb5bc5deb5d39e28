// One ticker for a session: whoever comes later hands over what it was asked for.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

class TickerService;

// What becomes of a `run`.
enum class RunClaim {
  IsTicker,     // this program is the session's ticker from now on
  IsHandedOver, // another one does what was asked for
  IsAlone,      // there is no bus
};

// Claims the name, or hands the arguments, those after `run`, to the ticker that owns it, with the
// working folder and a duplicate of `standardInput`, if that is open. Raises RunTimeError with what
// that ticker says against it. Of several programs that start at once, one is the ticker.
RunClaim claimTicker(TickerService& service, const QStringList& arguments, int standardInput = -1);

} // namespace zq::app
