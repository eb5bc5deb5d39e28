// Paths as text for people and for the file system.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

// The paths in parentheses, one a line, as the system describes an array: words of ASCII letters
// and digits as they are, others in quotes, with escapes for what is not plain ASCII.
QString describePaths(const QStringList& paths);

// The path as the file system takes it; empty for one that no file can have.
QByteArray fileSystemRepresentation(const QString& path);
