// Whether the ticker starts with the desktop session: the user's autostart entry.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zq::app {

// Whether `file`, a desktop entry in the user's autostart folder, is there and starts something: it
// is neither hidden nor switched off by the desktop's own settings.
bool startsWithSession(const QString& file);

// Switches it on or off. An entry that the user has edited keeps its other lines: it is hidden or
// no more; one that is as we write it is removed. RunTimeError where it cannot be written.
void setStartsWithSession(const QString& file, bool starts);

// The command line of this program as a desktop entry states it: the plain name where it is the one
// that a shell would find, else its path, quoted.
QByteArray programForDesktopEntry();

} // namespace zq::app
