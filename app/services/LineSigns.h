// Lines of text files as signs.
#pragma once

#include "app/display/StripItem.h"
#include "app/services/SignReceiver.h"

namespace zq::app {

// Shows a text sign for each line. Each has an identifier of its own, which no other program and no
// other run of this one uses.
//
// Thread: main.
class LineSigns {
 public:
  // `receiver` must outlive the object.
  LineSigns(SignReceiver& receiver, LoopRule rule);

  // Shows `line`, from the file at `path`, behind what waits.
  void show(const QString& line, const QString& path);

 private:
  SignReceiver& receiver_;
  LoopRule rule_;
  QString run_;
  std::uint64_t lineCount_ = 0;
};

} // namespace zq::app
