// Reads traces.
#pragma once

#include "app/trace/TraceReport.h"

#include <QtCore/QIODevice>

namespace zq::app {

// Reads a trace to its end into a report, in constant memory, and finishes it. RunTimeError whose
// text begins with `name` at the first thing that is wrong with the file itself: it cannot be read,
// its first line is not that of a trace, a line cannot be read or is cut off, there is no frame.
void readTrace(QIODevice& device, const QString& name, TraceReport& report);

} // namespace zq::app
