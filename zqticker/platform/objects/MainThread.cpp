#include "zqticker/platform/objects/MainThread.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QSocketNotifier>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <system_error>
#include <utility>

#include <cerrno>
#include <sys/eventfd.h>
#include <unistd.h>

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
} // namespace

// What waits for the main thread, and a counter of the kernel's that wakes its loop: one for each
// task, so that event loops which a task runs find the rest.
//
// The counter rather than an event of Qt's, which would be allocated and locked for each call; it
// is never closed, so that it is counted up without the mutex. With it the main thread, which the
// kernel may run at that instant in the caller's place, would be stopped by the mutex.
class MainThreadInbox {
 public:
  static MainThreadInbox& shared() {
    // Never destroyed: threads may outlive the program's main function.
    static MainThreadInbox* const inbox = new MainThreadInbox;
    return *inbox;
  }

  MainThreadTask::State performAndWait(MainThreadTask& task) {
    using State = MainThreadTask::State;
    task.state_ = std::make_shared<std::atomic<State>>(State::Waiting);
    {
      const std::lock_guard lock(mutex_);
      if (!takesTasks_)
        return State::Refused;
      (last_ ? last_->next_ : first_) = &task;
      last_ = &task;
    }
    wake();
    // Without spinning first: threads that wake each other are run on one processor, where the
    // caller's spinning keeps the main thread from its work.
    task.state_->wait(State::Waiting);
    return task.state_->load();
  }

  void beginApplication() {
    QCoreApplication* const application = QCoreApplication::instance();
    QObject::connect(
        application, &QCoreApplication::aboutToQuit, application, [this] { endLoop(); },
        Qt::DirectConnection);
    {
      const std::lock_guard lock(mutex_);
      takesTasks_ = true;
    }
    // At once, except where the library was loaded on another thread.
    QMetaObject::invokeMethod(application, [this] {
      mainThread.store(thisThread(), std::memory_order_relaxed);
      waker_ = std::make_unique<Waker>(counter_);
    });
  }

  // The rest on the main thread.

  void endLoop() {
    refuseAll();
    // Comes with the next loop, if there is one, and opens the inbox again.
    wake();
  }

  void endApplication() {
    refuseAll();
    waker_.reset();
    mainThread.store(nullptr, std::memory_order_relaxed);
  }

 private:
  class Waker : public QSocketNotifier {
   public:
    explicit Waker(int counter) : QSocketNotifier(counter, Read) {}

   protected:
    bool event(QEvent* event) override {
      if (event->type() != QEvent::SockAct)
        return QSocketNotifier::event(event);
      shared().serve();
      return true;
    }
  };

  MainThreadInbox() : counter_(::eventfd(0, EFD_SEMAPHORE | EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (counter_ < 0)
      throw std::system_error(errno, std::generic_category(), "eventfd");
  }

  // Thread: any.
  void wake() {
    // Only a counter that is full, 2^64 - 2, takes no more; it wakes all the same.
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(counter_, &one, sizeof one);
  }

  // The caller may leave, and its task with it, from the change of its state on.
  static void finish(MainThreadTask& task, MainThreadTask::State state) {
    const std::shared_ptr<std::atomic<MainThreadTask::State>> changing = task.state_;
    // Sequentially consistent: whether somebody waits must not be looked at before.
    changing->store(state, std::memory_order_seq_cst);
    changing->notify_one();
  }

  void refuseAll() {
    const std::lock_guard lock(mutex_);
    takesTasks_ = false;
    last_ = nullptr;
    while (first_)
      finish(*std::exchange(first_, first_->next_), MainThreadTask::State::Refused);
  }

  // Opens the inbox, for an event loop runs, and runs the first task. There may be none: refused
  // ones have been counted too.
  void serve() {
    std::uint64_t one;
    if (::read(counter_, &one, sizeof one) != sizeof one)
      return;
    MainThreadTask* task;
    {
      const std::lock_guard lock(mutex_);
      takesTasks_ = true;
      task = first_;
      if (!task)
        return;
      first_ = task->next_;
      if (!first_)
        last_ = nullptr;
    }
    try {
      task->run();
    } catch (...) {
      task->exception_ = std::current_exception();
    }
    finish(*task, MainThreadTask::State::Done);
  }

  // Constant after construction.
  const int counter_;
  // Protected by the mutex.
  std::mutex mutex_;
  MainThreadTask* first_ = nullptr;
  MainThreadTask* last_ = nullptr;
  bool takesTasks_ = false;
  // Of the main thread.
  std::unique_ptr<Waker> waker_;
};

namespace {
void endApplication() {
  MainThreadInbox::shared().endApplication();
}

// Called by the constructor of each application, or at once where the library is loaded later.
void beginApplication() {
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
  if (MainThreadInbox::shared().performAndWait(*this) == State::Refused)
    throw MainThreadEndedException(u"the main thread runs no event loop any more"_s);
  if (exception_)
    std::rethrow_exception(std::exchange(exception_, nullptr));
}

} // namespace zq::platform
