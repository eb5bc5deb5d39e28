// "zqticker run": the strip on the screen.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

struct RunOptions;

// Whether the environment names a display that a window could be shown on.
bool hasDisplay();

// Shows what `arguments`, those after the command's name, ask for until all has been shown or the
// user ends it. CommandFailure otherwise. Needs a QApplication on a real display.
int runCommand(const QStringList& arguments);

// The same as pictures in a new temporary folder, for a session without a display; says where.
// `reason` stands in that message ("no display").
int runWithoutDisplay(const QStringList& arguments, const QString& reason);

} // namespace zq::app
