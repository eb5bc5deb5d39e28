// The command `fetch`: the contents of an address.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

// Loads the address named in `arguments` and writes its body, or what came of it as JSON, and
// returns the exit status. UsageError and RunTimeError as every command. Needs a QCoreApplication.
int fetchCommand(const QStringList& arguments);

} // namespace zq::app
