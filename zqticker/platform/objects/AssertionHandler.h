// Checks for programming errors, with a handler that a host may replace.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

namespace zq::platform {

// Receives every failed ZQ_ASSERT of the process. The default raises
// InternalInconsistencyException. A replacement may return; the code after the check then goes on.
//
// Thread: any; a replacement is called on the thread of the failed check.
class ZQTICKER_EXPORT AssertionHandler {
 public:
  virtual ~AssertionHandler();

  // `file` is the base name of the source file, `line` counts from 1.
  virtual void handleFailure(const QString& message, const QString& file, int line);

  // The handler in force; never null.
  static AssertionHandler* currentHandler();
  // Puts `handler` (not owned; null for the default) in force and returns the one before.
  static AssertionHandler* setCurrentHandler(AssertionHandler* handler);
};

// Hands a failure to the current handler; `path` is cut to its base name.
ZQTICKER_EXPORT void failAssertion(const QString& message, const char* path, int line);

} // namespace zq::platform

#define ZQ_ASSERT(condition, message)                                                              \
  do {                                                                                             \
    if (!(condition))                                                                              \
      ::zq::platform::failAssertion((message), __FILE__, __LINE__);                                \
  } while (false)
