// How requests name this program.
#pragma once

#include <QtCore/QByteArray>

namespace zq::platform {

// "name/version" of the application where it states a version, its name where that is not only the
// name of its file, else those of this library. Printable ASCII.
QByteArray userAgent();

} // namespace zq::platform
