// Messages that are not shown, in the log.
#pragma once

#include "app/intake/FloodLog.h"

#include <QtCore/QString>

namespace zq::app {

// Logs refusals ("zqticker.bus"), those of a flood in a few lines: further ones of a sender are
// counted, and the count is told with a later refusal. Thread: one.
class RefusalLog {
 public:
  // `sender` is a unique name on the bus.
  void note(const QString& sender, const QString& reason);

 private:
  FloodLog floods_;
};

} // namespace zq::app
