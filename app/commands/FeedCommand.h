// The command `feed check`: what the program makes of a feed.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

// Loads and reads the feed at the address, or in the file, named in `arguments`, which follow
// "check"; prints what it says and what is odd about it, and returns the exit status. UsageError
// and RunTimeError as every command. Needs a QCoreApplication.
int feedCheckCommand(const QStringList& arguments);

} // namespace zq::app
