#include "zqticker/platform/controls/callback_border_p.h"

#include <QtCore/QLoggingCategory>

#include <exception>

namespace zq::platform {

namespace {
Q_LOGGING_CATEGORY(log, "zqticker.controls")
}

void logRaised(const std::function<void()>& callback) {
  try {
    callback();
  } catch (const std::exception& exception) {
    qCWarning(log, "Error in the callback of a view: %s", exception.what());
  } catch (...) {
    qCWarning(log, "Error in the callback of a view");
  }
}

} // namespace zq::platform
