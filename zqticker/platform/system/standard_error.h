// Where the process's errors and log lines go.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QByteArray>

namespace zq::platform {

// Reopens the standard error stream, descriptor and all, on the file at `path`, to be read and
// appended to; it is made where it is missing. Nothing is held back in the process. Returns whether
// that worked: where the file cannot be opened, as in a folder that is missing or read-only, the
// stream stays as it was. On a full disk an existing file can be opened, and what is written is
// lost without a word.
//
// Thread: any, while no other writes to the stream.
ZQTICKER_EXPORT bool reopenStandardError(const QByteArray& path);

} // namespace zq::platform
