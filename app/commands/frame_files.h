// Frames of a strip on a virtual clock, as picture files.
#pragma once

#include "app/commands/StripOptions.h"
#include "app/display/TickerDisplay.h"

#include <QtGui/QImage>

namespace zq::app {

struct FrameSeries {
  int frames = 1;
  double framesPerSecond = 30;
  double start = 0; // seconds
  QColor background = Qt::white;
};

// Frame `index` of the series, counting from 0; its pixels are the display's device pixels. Frames
// are asked for in order.
QImage renderFrame(TickerDisplay& display, const FrameSeries& series, int index);

// Writes the series into `folder`, which is made where missing, as frame-000001.png and so on, or
// as one picture `file`, the frames one below the other. Each file is written under a temporary
// name first. A progress bar runs on standard error where that is a terminal.
//
// RunTimeError naming `argument` for what cannot be written and for an interruption.
void writeFrameFolder(TickerDisplay& display, const FrameSeries& series, const QString& argument,
                      const QString& folder);
void writeFrameSheet(TickerDisplay& display, const FrameSeries& series, const QString& argument,
                     const QString& file);

} // namespace zq::app
