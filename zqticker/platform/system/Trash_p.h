// The trash, by the rules of freedesktop.org.
#pragma once

#include <QtCore/QByteArray>

#include <cerrno>

namespace zq::platform {

// Moves a file, a folder with all its contents, or a link itself into the trash of its volume, and
// returns 0, or the errno of what went wrong; everything is as it was then.
//
// On the volume of the home folder that is $XDG_DATA_HOME/Trash (~/.local/share/Trash). On another
// it is .Trash/<user number> in the volume's top folder where an administrator has made .Trash,
// with the sticky bit and no link, else .Trash-<user number>. Folders are made where they are
// missing, for the user alone. Nothing is ever copied from one volume to another: where a volume
// can have no trash (EROFS, EACCES), its files cannot be put there.
//
// Each gets a free name in "files", and in "info" a file that says where it was and when it went;
// where the name is taken, a number follows it, as "report.2.txt".
int moveToTrash(const QByteArray& path);

// The path as a file in "info" states it: all bytes but those of letters, digits, slashes and
// -_.!~*'() in hexadecimal after a %.
QByteArray trashInfoPath(const QByteArray& path);

} // namespace zq::platform
