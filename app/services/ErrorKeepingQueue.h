// An event queue that tells why a path could not be opened.
#pragma once

#include "zqticker/platform/system/KernelEventQueue.h"

namespace zq::app {

// The system's queue, for watchers that say nothing about a path that they cannot watch.
//
// Thread: as every queue; but for `openError`, which is that of the thread that opens paths.
class ErrorKeepingQueue final : public platform::KernelEventQueue {
 public:
  // Null with errno where the kernel gives no queue.
  static platform::Ref<ErrorKeepingQueue> make();
  explicit ErrorKeepingQueue(platform::Ref<platform::KernelEventQueue> queue);

  // Forgets what was opened before.
  void clearOpenError();
  // Why the path that was opened last cannot be watched, as an errno value; 0 where it is. ENOENT
  // where none was opened: a watcher does not even try one that no file can have.
  int openError() const { return openError_; }

  int descriptor() const override;
  int openForEvents(const QByteArray& path) override;
  int add(int descriptor, std::uint32_t mask, const QString& userData) override;
  int closeDescriptor(int descriptor) override;
  std::variant<platform::KernelEvent, TimedOut, Stopped>
  wait(std::chrono::nanoseconds timeout) override;
  void stop() override;
  int close() override;

 private:
  platform::Ref<platform::KernelEventQueue> queue_; // constant after construction
  int openError_ = 0;
};

} // namespace zq::app
