// One row of what a display has queued.
#pragma once

#include "app/display/SignOrigin.h"
#include "app/display/Strip.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QString>

class ZQTickerSign;

namespace zq::app {

struct QueuedSign {
  Strip::Entry entry;               // its identity while it is queued
  platform::Ref<ZQTickerSign> sign; // null for a line of text that is not on the strip
  QString text;                     // the line, or what the sign says; empty for a bare picture
  SignOrigin origin;
  std::int64_t loopsLeft = 0; // showings after those begun; -1 without end
  bool isOnStrip = false;
  bool isWaiting = false; // for its first showing or another one; else it goes once it has left
};

} // namespace zq::app
