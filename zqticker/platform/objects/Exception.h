// The exceptions that this library raises. All derive from Exception, itself a std::runtime_error
// whose what() is the reason in UTF-8.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <stdexcept>

namespace zq::platform {

// Base of every exception raised here.
class ZQTICKER_EXPORT Exception : public std::runtime_error {
 public:
  explicit Exception(const QString& reason);
  ~Exception() override;

  // What went wrong, without class name, file or line.
  const QString& reason() const { return reason_; }

 private:
  QString reason_;
};

// A programming error: a failed assertion. Names the source file (base name) and the line.
class ZQTICKER_EXPORT InternalInconsistencyException : public Exception {
 public:
  InternalInconsistencyException(const QString& message, const QString& file, int line);
  ~InternalInconsistencyException() override;

  const QString& message() const { return reason(); }
  const QString& file() const { return file_; }
  int line() const { return line_; }

 private:
  QString file_;
  int line_;
};

// An index or a number outside its range.
class ZQTICKER_EXPORT RangeException : public Exception {
 public:
  using Exception::Exception;
  ~RangeException() override;
};

// An argument that the operation cannot take.
class ZQTICKER_EXPORT InvalidArgumentException : public Exception {
 public:
  using Exception::Exception;
  ~InvalidArgumentException() override;
};

// A message that its receiver does not know.
class ZQTICKER_EXPORT UnrecognizedSelectorException : public Exception {
 public:
  using Exception::Exception;
  ~UnrecognizedSelectorException() override;
};

// An archive that is malformed, too large, of the wrong class, or used against its rules.
class ZQTICKER_EXPORT ArchiveException : public Exception {
 public:
  // `keyPath` leads from the top of the archive to the value at fault ("root.ZQText.NSFont");
  // empty where the file as a whole is at fault.
  explicit ArchiveException(const QString& reason, const QString& keyPath = QString());
  ~ArchiveException() override;

  const QString& keyPath() const { return keyPath_; }

 private:
  QString keyPath_;
};

} // namespace zq::platform
