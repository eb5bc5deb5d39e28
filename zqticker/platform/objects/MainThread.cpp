#include "zqticker/platform/objects/MainThread.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtCore/QThread>

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// An address that no other thread has.
const void* thisThread() {
  thread_local const char mark = 0;
  return &mark;
}

// Null without an application.
std::atomic<const void*> mainThread = nullptr;

QEvent::Type wakeUpType() {
  static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
  return type;
}
} // namespace

// What waits for the main thread. Qt's events only wake its loop: they carry nothing, and there is
// never more than one on its way.
class MainThreadInbox {
 public:
  static MainThreadInbox& shared() {
    // Never destroyed: threads may outlive the program's main function.
    static MainThreadInbox* const inbox = new MainThreadInbox;
    return *inbox;
  }

  void performAndWait(MainThreadTask& task) {
    std::unique_lock lock(mutex_);
    if (!takesTasks_)
      raiseEnded();
    (last_ ? last_->next_ : first_) = &task;
    last_ = &task;
    wake();
    task.changed_.wait(lock, [&] { return task.state_ != MainThreadTask::State::Waiting; });
    if (task.state_ == MainThreadTask::State::Refused)
      raiseEnded();
  }

  // The rest on the main thread.

  void beginApplication() {
    auto waker = std::make_unique<Waker>();
    waker->moveToThread(QCoreApplication::instance()->thread());
    QObject::connect(
        QCoreApplication::instance(), &QCoreApplication::aboutToQuit, waker.get(),
        [this] { endLoop(); }, Qt::DirectConnection);
    const std::lock_guard lock(mutex_);
    waker_ = std::move(waker);
    takesTasks_ = true;
    // Where the library was loaded on another thread, the first event tells which is the main one.
    wake();
  }

  void endLoop() {
    const std::lock_guard lock(mutex_);
    refuseAll();
    // Comes with the next loop, if there is one, and opens the inbox again.
    wake();
  }

  void endApplication() {
    std::unique_ptr<Waker> waker;
    const std::lock_guard lock(mutex_);
    refuseAll();
    isWakeUpPosted_ = false;
    waker = std::move(waker_);
    mainThread.store(nullptr, std::memory_order_relaxed);
  }

 private:
  class Waker : public QObject {
   protected:
    bool event(QEvent* event) override {
      // The inbox's mutex comes first: whoever made the event held it.
      MainThreadInbox& inbox = shared();
      std::unique_lock lock(inbox.mutex_);
      if (event->type() != wakeUpType()) {
        lock.unlock();
        return QObject::event(event);
      }
      inbox.serve(lock);
      return true;
    }
  };

  [[noreturn]] static void raiseEnded() {
    throw MainThreadEndedException(u"the main thread runs no event loop any more"_s);
  }

  // With the mutex held.
  void wake() {
    if (!std::exchange(isWakeUpPosted_, true))
      QCoreApplication::postEvent(waker_.get(), new QEvent(wakeUpType()));
  }

  // With the mutex held. A caller may leave, and its task with it, as soon as the mutex is free.
  void finish(MainThreadTask& task, MainThreadTask::State state) {
    task.state_ = state;
    task.changed_.notify_one();
  }

  // With the mutex held.
  void refuseAll() {
    takesTasks_ = false;
    last_ = nullptr;
    while (first_)
      finish(*std::exchange(first_, first_->next_), MainThreadTask::State::Refused);
  }

  // One task for each event, so that event loops which a task runs find the rest.
  void serve(std::unique_lock<std::mutex>& lock) {
    mainThread.store(thisThread(), std::memory_order_relaxed);
    isWakeUpPosted_ = false;
    takesTasks_ = true;
    if (!first_)
      return;
    MainThreadTask& task = *first_;
    first_ = task.next_;
    if (first_)
      wake();
    else
      last_ = nullptr;
    lock.unlock();
    try {
      task.run();
    } catch (...) {
      task.exception_ = std::current_exception();
    }
    lock.lock();
    finish(task, MainThreadTask::State::Done);
  }

  std::mutex mutex_;
  // Protected by the mutex, all of them.
  MainThreadTask* first_ = nullptr;
  MainThreadTask* last_ = nullptr;
  bool takesTasks_ = false;
  bool isWakeUpPosted_ = false;
  std::unique_ptr<Waker> waker_;
};

namespace {
void endApplication() {
  MainThreadInbox::shared().endApplication();
}

// Called by the constructor of each application, or at once where the library is loaded later.
void beginApplication() {
  if (QThread::currentThread() == QCoreApplication::instance()->thread())
    mainThread.store(thisThread(), std::memory_order_relaxed);
  MainThreadInbox::shared().beginApplication();
  qAddPostRoutine(endApplication);
}
Q_COREAPP_STARTUP_FUNCTION(beginApplication)
} // namespace

MainThreadEndedException::~MainThreadEndedException() = default;

bool isMainThread() {
  return mainThread.load(std::memory_order_relaxed) == thisThread();
}

MainThreadTask::MainThreadTask() = default;
MainThreadTask::~MainThreadTask() = default;

void MainThreadTask::performAndWait() {
  MainThreadInbox::shared().performAndWait(*this);
  if (exception_)
    std::rethrow_exception(std::exchange(exception_, nullptr));
}

} // namespace zq::platform
