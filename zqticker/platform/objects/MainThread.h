// Running a call on the main thread, and waiting for it.
#pragma once

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/zqticker_export.h"

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace zq::platform {

// The main thread takes no calls: its event loop has quit, its application has been destroyed, or
// there is none yet.
class ZQTICKER_EXPORT MainThreadEndedException : public Exception {
 public:
  using Exception::Exception;
  ~MainThreadEndedException() override;
};

// Whether this is the main thread, that of the QCoreApplication. Without an application no thread
// is.
ZQTICKER_EXPORT bool isMainThread();

// A call that waits for the main thread; lives on the stack of its caller.
class ZQTICKER_EXPORT MainThreadTask {
 public:
  MainThreadTask(const MainThreadTask&) = delete;
  MainThreadTask& operator=(const MainThreadTask&) = delete;

 protected:
  MainThreadTask();
  virtual ~MainThreadTask();

  // Hands the task to the main thread, another one, and returns or raises what `run` did there.
  // Raises MainThreadEndedException, and `run` is not called, as performOnMainThreadAndWait says.
  void performAndWait();

 private:
  friend class MainThreadInbox;
  enum class State { Waiting, Done, Refused };

  virtual void run() = 0;

  // Protected by the inbox's mutex.
  MainThreadTask* next_ = nullptr;
  // The caller waits for its change. Not a part of the task: the caller may see the change, and end
  // the task, before the main thread has left the call that wakes it.
  std::shared_ptr<std::atomic<State>> state_;
  // Written by the main thread before the state changes, read by the caller after.
  std::exception_ptr exception_;
};

// Calls `call` on the main thread, returns its result and passes on what it raises. On the main
// thread it is called at once, elsewhere by the event loop of the main thread, in the order in
// which the calls came; the caller waits until it has returned. Any event loop of the main thread
// serves, also one that runs inside another or inside such a call, except while it leaves socket
// notifiers out (QEventLoop::ExcludeSocketNotifiers).
//
// Before the application's loop has been started a call waits for it. Raises
// MainThreadEndedException without calling when there is no application; from the moment when its
// loop quits (QCoreApplication::aboutToQuit), also for calls that have been waiting; and when it is
// destroyed. Once the main thread runs an event loop again, after such an end, calls are taken and
// wait as before.
//
// A caller for which the main thread itself waits would wait for ever.
//
// Thread: any.
template <class F>
std::invoke_result_t<F> performOnMainThreadAndWait(F&& call) {
  using Result = std::invoke_result_t<F>;
  if (isMainThread())
    return std::invoke(std::forward<F>(call));

  if constexpr (std::is_void_v<Result>) {
    struct Task final : MainThreadTask {
      explicit Task(F& function) : function_(function) {}
      void perform() { performAndWait(); }
      void run() override { std::invoke(std::forward<F>(function_)); }
      F& function_;
    } task(call);
    task.perform();
  } else if constexpr (std::is_reference_v<Result>) {
    std::remove_reference_t<Result>* result = nullptr;
    performOnMainThreadAndWait([&] {
      Result&& given = std::invoke(std::forward<F>(call));
      result = std::addressof(given);
    });
    return static_cast<Result>(*result);
  } else {
    std::optional<std::remove_cv_t<Result>> result;
    performOnMainThreadAndWait([&] { result.emplace(std::invoke(std::forward<F>(call))); });
    return *std::move(result);
  }
}

} // namespace zq::platform
