// Paths taken apart and put together, as text: nothing looks at the file system.
//
// Slashes at the end of a path do not count, nor do repeated ones.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

namespace zq::platform {

// What stands behind the last slash; "/" for the root, empty for the empty path.
ZQTICKER_EXPORT QString lastPathComponent(const QString& path);

// The path without its last component: "/" for one right below the root and for the root itself,
// empty for a single component.
// Operation: stringByDeletingLastPathComponent
ZQTICKER_EXPORT QString deletingLastPathComponent(const QString& path);

// `directory` and `component` with one slash between them; the one alone where the other is empty.
// Operation: stringByAppendingPathComponent:
ZQTICKER_EXPORT QString appendingPathComponent(const QString& directory, const QString& component);

// What follows the last point of the name `component`; empty where there is none, or only points
// before it: ".profile" has no extension, ".a.txt" has "txt", "photos." the empty one.
ZQTICKER_EXPORT QString pathExtension(const QString& component);

// The name without that extension and its point.
// Operation: stringByDeletingPathExtension
ZQTICKER_EXPORT QString deletingPathExtension(const QString& component);

// The name with a point and `extension`, or the name alone for the empty extension.
// Operation: stringByAppendingPathExtension:
ZQTICKER_EXPORT QString appendingPathExtension(const QString& component, const QString& extension);

} // namespace zq::platform
