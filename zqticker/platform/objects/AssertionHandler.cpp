#include "zqticker/platform/objects/AssertionHandler.h"

#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QFileInfo>

#include <atomic>

namespace zq::platform {

namespace {
AssertionHandler* defaultHandler() {
  static AssertionHandler handler;
  return &handler;
}
std::atomic<AssertionHandler*> replacement{nullptr};
} // namespace

AssertionHandler::~AssertionHandler() = default;

void AssertionHandler::handleFailure(const QString& message, const QString& file, int line) {
  throw InternalInconsistencyException(message, file, line);
}

AssertionHandler* AssertionHandler::currentHandler() {
  AssertionHandler* handler = replacement.load();
  return handler ? handler : defaultHandler();
}

AssertionHandler* AssertionHandler::setCurrentHandler(AssertionHandler* handler) {
  AssertionHandler* before = replacement.exchange(handler == defaultHandler() ? nullptr : handler);
  return before ? before : defaultHandler();
}

void failAssertion(const QString& message, const char* path, int line) {
  AssertionHandler::currentHandler()->handleFailure(
      message, QFileInfo(QString::fromUtf8(path)).fileName(), line);
}

} // namespace zq::platform
