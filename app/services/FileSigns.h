// Reports about files as signs on a display.
#pragma once

#include "app/display/StripItem.h"
#include "app/services/FileReport.h"

namespace zq::app {

class TickerDisplay;

// Shows a text sign for each report. A report that waits to be shown stands for those of the same
// kind about the same path that come meanwhile: a file that is written to a hundred times a second
// is told once for each time that its sign has run over the strip.
//
// Thread: main.
class FileSigns {
 public:
  // `display` must outlive the object.
  FileSigns(TickerDisplay& display, LoopRule rule) : display_(display), rule_(rule) {}

  // Shows `report` behind what waits, from `time` of the display on.
  void show(const FileReport& report, double time);

 private:
  TickerDisplay& display_;
  LoopRule rule_;
};

} // namespace zq::app
