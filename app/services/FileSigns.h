// Reports about files as signs.
#pragma once

#include "app/display/StripItem.h"
#include "app/services/FileReport.h"
#include "app/services/SignReceiver.h"

namespace zq::app {

// Shows a text sign for each report. A report that waits to be shown stands for those of the same
// kind about the same path that come meanwhile: a file that is written to a hundred times a second
// is told once for each time that its sign has run over the strip.
//
// Thread: main.
class FileSigns {
 public:
  // `receiver` must outlive the object.
  FileSigns(SignReceiver& receiver, LoopRule rule) : receiver_(receiver), rule_(rule) {}

  // Shows `report` behind what waits.
  void show(const FileReport& report);

 private:
  SignReceiver& receiver_;
  LoopRule rule_;
};

} // namespace zq::app
