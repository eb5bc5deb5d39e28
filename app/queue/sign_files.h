// Files of signs: a keyed archive of a list of them, or of a single one, under "root".
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

class ZQTickerSign;

namespace zq::app {

// Every failure is a RunTimeError in one line that begins with the name of the file.

// The most bytes of a file of signs, and the most signs in it.
inline constexpr qint64 MostSignBytes = qint64(256) << 20;
inline constexpr qsizetype MostSignsInFile = 100'000;

// Whether `bytes` begin as a keyed archive does, binary or XML.
bool beginsAsArchive(const QByteArray& bytes);

// The signs in an archive, which is untrusted: all of them, or a failure. `name` stands in the
// message.
std::vector<platform::Ref<ZQTickerSign>> signsOfArchive(const QByteArray& bytes,
                                                        const QString& name);
std::vector<platform::Ref<ZQTickerSign>> readSigns(const QString& path);

// Writes the signs to a file, wholly or not at all: a file that was there is unchanged where this
// fails.
void writeSigns(const QString& path, const std::vector<platform::Ref<ZQTickerSign>>& signs);

// What is in a plain file of at most `mostBytes`.
QByteArray readPlainFile(const QString& path, qint64 mostBytes);
// The last part of a path, cut where it is long.
QString shownName(const QString& path);

} // namespace zq::app
