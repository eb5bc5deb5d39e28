// An event queue under the control of a test: nothing happens in it but what the test says.
#pragma once

#include "zqticker/platform/system/KernelEventQueue.h"

#include <QtCore/QSet>

#include <cerrno>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <vector>

namespace zq::testing {

// Thread: any.
class FakeEventQueue final : public platform::KernelEventQueue {
 public:
  enum Step : unsigned { Open = 1, Add = 2, CloseDescriptor = 4, Close = 8 };
  static constexpr int QueueDescriptor = 7000;
  // What errno says of refused steps.
  static constexpr int Refusal = EIO;

  // Lets a path be opened.
  void makeFile(const QByteArray& path) {
    const std::lock_guard lock(mutex_);
    files_.insert(path);
  }

  // From now on `steps` fail, and the others do not.
  void refuse(unsigned steps) {
    const std::lock_guard lock(mutex_);
    refused_ = steps;
  }

  // Makes the registrations with this user data pending, as far as they ask for one of `flags`.
  void deliver(const QString& userData, std::uint32_t flags) {
    const std::lock_guard lock(mutex_);
    for (const auto& [descriptor, registration] : registrations_)
      if (registration.userData == userData && (registration.flags & flags))
        enqueue({descriptor, registration.flags & flags, userData});
  }
  // Lets the wait answer this very event.
  void deliver(const platform::KernelEvent& event) {
    const std::lock_guard lock(mutex_);
    enqueue(event);
  }

  // Lets one wait answer that its time is over.
  void timeOut() {
    const std::lock_guard lock(mutex_);
    ++timeOuts_;
    changed_.notify_all();
  }

  // Waits, without an event loop, until a thread has taken everything and waits for more: what it
  // took has been reported. False when that does not happen.
  bool waitUntilTaken() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(30),
                             [&] { return isWaiting_ && pending_.empty() && timeOuts_ == 0; });
  }

  // Waits, without an event loop, until it has been closed. False when that does not happen.
  bool waitUntilClosed() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(30), [&] { return closed_; });
  }

  // The time-outs that were asked for.
  std::vector<std::chrono::nanoseconds> waits() const {
    const std::lock_guard lock(mutex_);
    return waits_;
  }
  // The registrations that have not been closed.
  std::size_t count() const {
    const std::lock_guard lock(mutex_);
    return registrations_.size();
  }
  // How many times something was opened or tried to be.
  int openings() const {
    const std::lock_guard lock(mutex_);
    return openings_;
  }

  int descriptor() const override {
    const std::lock_guard lock(mutex_);
    return closed_ ? -1 : QueueDescriptor;
  }

  int openForEvents(const QByteArray& path) override {
    const std::lock_guard lock(mutex_);
    ++openings_;
    if (refuses(Open))
      return -1;
    if (closed_ || !files_.contains(path)) {
      errno = closed_ ? EBADF : ENOENT;
      return -1;
    }
    registrations_[nextDescriptor_] = {};
    return nextDescriptor_++;
  }

  int add(int descriptor, std::uint32_t mask, const QString& userData) override {
    const std::lock_guard lock(mutex_);
    if (refuses(Add) || !isOpen(descriptor))
      return -1;
    registrations_[descriptor] = {descriptor, mask, userData};
    return 0;
  }

  int closeDescriptor(int descriptor) override {
    const std::lock_guard lock(mutex_);
    if (refuses(CloseDescriptor) || !isOpen(descriptor))
      return -1;
    registrations_.erase(descriptor);
    for (auto event = pending_.begin(); event != pending_.end();)
      event = event->descriptor == descriptor ? pending_.erase(event) : event + 1;
    return 0;
  }

  std::variant<platform::KernelEvent, TimedOut, Stopped>
  wait(std::chrono::nanoseconds timeout) override {
    std::unique_lock lock(mutex_);
    waits_.push_back(timeout);
    isWaiting_ = true;
    changed_.notify_all();
    changed_.wait(lock, [&] { return stopped_ || timeOuts_ > 0 || !pending_.empty(); });
    isWaiting_ = false;
    if (stopped_)
      return Stopped();
    if (timeOuts_ > 0) {
      --timeOuts_;
      return TimedOut();
    }
    platform::KernelEvent event = pending_.front();
    pending_.pop_front();
    return event;
  }

  void stop() override {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    changed_.notify_all();
  }

  int close() override {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    closed_ = !refuses(Close);
    changed_.notify_all();
    if (!closed_)
      return -1;
    registrations_.clear();
    pending_.clear();
    return 0;
  }

 private:
  // The rest with the mutex held.

  bool refuses(Step step) const {
    errno = Refusal;
    return refused_ & step;
  }

  bool isOpen(int descriptor) const {
    errno = EBADF;
    return registrations_.count(descriptor) != 0;
  }

  void enqueue(const platform::KernelEvent& event) {
    for (platform::KernelEvent& each : pending_)
      if (each.descriptor == event.descriptor) {
        each.flags |= event.flags;
        return;
      }
    pending_.push_back(event);
    changed_.notify_all();
  }

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  QSet<QByteArray> files_;
  unsigned refused_ = 0;
  std::map<int, platform::KernelEvent> registrations_; // the mask as flags
  int nextDescriptor_ = QueueDescriptor + 1;
  std::deque<platform::KernelEvent> pending_;
  int timeOuts_ = 0;
  int openings_ = 0;
  std::vector<std::chrono::nanoseconds> waits_;
  bool isWaiting_ = false;
  bool stopped_ = false;
  bool closed_ = false;
};

} // namespace zq::testing
