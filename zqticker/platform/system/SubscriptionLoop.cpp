#include "zqticker/platform/system/SubscriptionLoop_p.h"

#include "zqticker/platform/system/inotify_limits_p.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QEventLoop>
#include <QtCore/QLoggingCategory>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <chrono>
#include <exception>
#include <utility>

namespace zq::platform {
namespace {

Q_LOGGING_CATEGORY(log, "zqticker.watching")

// Between two looks while changes wait to be told. The kernel keeps 16,384 events meanwhile, more
// than one processor causes in this time.
constexpr std::chrono::milliseconds LookInterval{10};

QEvent::Type callType() {
  static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
  return type;
}

void perform(const SubscribedFolders::Call& due) {
  try {
    due.callback(DirectoryModifiedMessage, 0, due.reference, due.handle);
  } catch (const std::exception& exception) {
    qCWarning(log, "Error in the callback of a folder's subscription: %s", exception.what());
  } catch (...) {
    qCWarning(log, "Error in the callback of a folder's subscription");
  }
}

} // namespace

SubscriptionLoop& SubscriptionLoop::ofThisThread() {
  thread_local SubscriptionLoop loop;
  return loop;
}

SubscriptionLoop::SubscriptionLoop(const InotifyCalls& calls)
    : folders_(std::make_shared<SubscribedFolders>(calls)) {}

SubscriptionLoop::~SubscriptionLoop() = default;

std::int32_t SubscriptionLoop::subscribe(const QByteArray& path,
                                         DirectorySubscriptionCallback callback, void* reference,
                                         DirectorySubscription*& handle) {
  SubscribedFolders::Call call{callback, reference, nullptr};
  const std::int32_t status = folders_->subscribe(path, call, SubscribedFolders::Clock::now());
  if (status != 0) {
    if (!isLimitLogged_)
      isLimitLogged_ = logInotifyLimit(status);
    return status;
  }
  handle = call.handle;
  attach();
  look();
  return 0;
}

// A thread has another dispatcher when its application has been made anew.
void SubscriptionLoop::attach() {
  // A thread that Qt did not start gets its dispatcher with its first event loop.
  if (!QAbstractEventDispatcher::instance())
    const QEventLoop first;
  if (dispatcher_ && dispatcher_ == QAbstractEventDispatcher::instance())
    return;
  dispatcher_ = QAbstractEventDispatcher::instance();
  notifier_ = std::make_unique<QSocketNotifier>(folders_->descriptor(), QSocketNotifier::Read);
  connect(notifier_.get(), &QSocketNotifier::activated, this, &SubscriptionLoop::look);
  timer_ = std::make_unique<QTimer>();
  timer_->setTimerType(Qt::PreciseTimer);
  timer_->setInterval(LookInterval);
  connect(timer_.get(), &QTimer::timeout, this, &SubscriptionLoop::look);
}

void SubscriptionLoop::look() {
  const auto now = SubscribedFolders::Clock::now();
  folders_->readChanges(now);
  if (folders_->takeDue(now))
    postCall();
  const bool areSomeWaiting = folders_->hasChanges();
  notifier_->setEnabled(!areSomeWaiting);
  if (!areSomeWaiting)
    timer_->stop();
  else if (!timer_->isActive())
    timer_->start();
}

void SubscriptionLoop::postCall() {
  if (!std::exchange(isCallPosted_, true))
    QCoreApplication::postEvent(this, new QEvent(callType()));
}

bool SubscriptionLoop::event(QEvent* event) {
  if (event->type() != callType())
    return QObject::event(event);
  isCallPosted_ = false;
  callNext();
  return true;
}

// One call for each event, so that event loops which a callback runs find the rest.
void SubscriptionLoop::callNext() {
  SubscribedFolders::Call due;
  if (!folders_->takeCall(due))
    return;
  postCall();
  perform(due);
}

} // namespace zq::platform
