// Records how a strip moves.
#pragma once

#include "app/display/Motion.h"
#include "app/display/StripPlayer.h"
#include "app/trace/TraceRow.h"

#include <QtCore/QFileDevice>
#include <QtCore/QString>

#include <memory>
#include <vector>

namespace zq::app {

// Writes a line for each frame of a strip to a file, see TraceRow. A frame costs the digits of its
// numbers; the file is written in blocks. It is complete or not there: it stands under another
// name until finish.
//
// Thread: main.
class StripTrace : public FrameObserver {
 public:
  // RunTimeError naming option and file where it cannot be written.
  StripTrace(const QString& option, const QString& path);
  // Leaves no file where finish was not called.
  ~StripTrace() override;

  // Records this strip from now on; `player` and `display` must outlive the trace or its end.
  void follow(StripPlayer& player, const TickerDisplay& display);

  void framePlayed(const PlayedFrame& frame) override;

  // Ends the file. False where it could not be written, now or before; one line on standard error
  // has said so.
  bool finish();

 private:
  TraceKind kindOf(const PlayedFrame& frame) const;
  bool write();
  void fail();
  double idealTravel() const;

  QString name_; // option and file, for messages
  std::unique_ptr<QFileDevice> file_;
  std::vector<char> block_;
  std::size_t filled_ = 0;
  bool hasFailed_ = false;
  StripPlayer* player_ = nullptr;
  const TickerDisplay* display_ = nullptr;
  // Of the frame before.
  Motion motion_;
  double scale_ = 0;
  double time_ = 0;
};

} // namespace zq::app
