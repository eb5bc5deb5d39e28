#include "tests/support/waiting.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace zq::testing {

bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds bound) {
  const QDeadlineTimer deadline(bound);
  QEventLoop loop;
  // What other threads change wakes no loop: the timer looks for it.
  QTimer look;
  look.start(2);
  while (!condition()) {
    if (deadline.hasExpired())
      return false;
    loop.processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  return true;
}

void runPostedEvents() {
  while (QEventLoop().processEvents()) {
  }
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace zq::testing
