#include "zqticker/platform/objects/Exception.h"

namespace zq::platform {

Exception::Exception(const QString& reason)
    : std::runtime_error(reason.toStdString()), reason_(reason) {}
Exception::~Exception() = default;

InternalInconsistencyException::InternalInconsistencyException(const QString& message,
                                                               const QString& file, int line)
    : Exception(message), file_(file), line_(line) {}
InternalInconsistencyException::~InternalInconsistencyException() = default;

RangeException::~RangeException() = default;
InvalidArgumentException::~InvalidArgumentException() = default;
UnrecognizedSelectorException::~UnrecognizedSelectorException() = default;

static QString withKeyPath(const QString& reason, const QString& keyPath) {
  return keyPath.isEmpty() ? reason : keyPath + QLatin1String(": ") + reason;
}

ArchiveException::ArchiveException(const QString& reason, const QString& keyPath)
    : Exception(withKeyPath(reason, keyPath)), keyPath_(keyPath) {}
ArchiveException::~ArchiveException() = default;

} // namespace zq::platform
