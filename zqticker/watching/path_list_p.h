// Lists of paths as text for people.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

// The paths in parentheses, one a line, as the system describes an array: words of ASCII letters
// and digits as they are, others in quotes, with escapes for what is not plain ASCII.
QString describePaths(const QStringList& paths);
