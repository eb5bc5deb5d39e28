// "zqticker sign": writes the archive of a sign.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

// Writes what `arguments`, those after the command's name, ask for. CommandFailure otherwise.
int signCommand(const QStringList& arguments);

} // namespace zq::app
