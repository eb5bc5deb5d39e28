#include "zqticker/platform/controls/LaterCalls_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

#include <utility>

namespace zq::platform {

LaterCalls& LaterCalls::shared() {
  // Never freed: views may go after the application object.
  static auto* const shared = new LaterCalls;
  return *shared;
}

void LaterCalls::add(QObject* receiver, std::function<void()> call) {
  calls_.push_back({receiver, std::move(call)});
  wake();
}

void LaterCalls::wake() {
  if (!std::exchange(isAwake_, true))
    QCoreApplication::postEvent(this, new QEvent(QEvent::User), Qt::HighEventPriority);
}

void LaterCalls::perform() {
  while (!calls_.empty()) {
    const Call next = std::move(calls_.front());
    calls_.pop_front();
    // A call may run an event loop, which serves the rest.
    if (!calls_.empty())
      wake();
    if (next.receiver)
      next.call();
  }
}

bool LaterCalls::event(QEvent* event) {
  if (event->type() != QEvent::User)
    return QObject::event(event);
  isAwake_ = false;
  perform();
  return true;
}

} // namespace zq::platform
