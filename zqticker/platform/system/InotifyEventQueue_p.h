// The event queue on inotify.
#pragma once

#include "zqticker/platform/system/InodeChanges_p.h"
#include "zqticker/platform/system/InotifyNotes_p.h"
#include "zqticker/platform/system/KernelEventQueue.h"

#include <atomic>
#include <deque>
#include <map>
#include <mutex>

namespace zq::platform {

// What was registered for one descriptor.
struct Registration {
  std::shared_ptr<Inode> inode{};
  Registration* next = nullptr; // of the same inode, in the order of opening
  Registration* previous = nullptr;
  QString userData{};
  int descriptor = -1;
  std::uint8_t mask = 0; // VnodeEvent values
  std::uint8_t pending = 0;
};

// One instance of inotify whatever is watched. Descriptors are numbers of its own: an open
// descriptor on a file, even one for its path only, would hold back its deletion and count towards
// the limit of open files.
class InotifyEventQueue final : public KernelEventQueue {
 public:
  static Ref<InotifyEventQueue> make(InotifyCalls calls);
  InotifyEventQueue(int instance, int wakeUp, InotifyCalls calls);
  ~InotifyEventQueue() override;

  int descriptor() const override;
  int openForEvents(const QByteArray& path) override;
  int add(int descriptor, std::uint32_t mask, const QString& userData) override;
  int closeDescriptor(int descriptor) override;
  std::variant<KernelEvent, TimedOut, Stopped> wait(std::chrono::nanoseconds timeout) override;
  void stop() override;
  int close() override;

 private:
  using Clock = std::chrono::steady_clock;

  // A look at files for what causes no event. Goes on where the last one has ended.
  struct Round {
    Clock::time_point begin;
    std::size_t left = 0;  // registrations not looked at
    std::size_t least = 0; // looked at whatever the time
    Clock::duration budget{};
    int lastLookedAt = 0;

    bool isOver() const { return left == 0 || (least == 0 && budget <= budget.zero()); }
  };

  int startRegistration(std::shared_ptr<Inode> inode);
  void endRegistration(std::map<int, Registration>::iterator found);
  void reportLimit(int error);
  std::variant<KernelEvent, TimedOut, Stopped> waitUntil(Clock::time_point begin,
                                                         std::chrono::nanoseconds timeout);
  bool sleep(Clock::time_point begin, std::chrono::nanoseconds timeout);
  void readEvents();
  void collect();
  void deliver(Inode& inode, std::uint32_t flags);
  bool takePending(KernelEvent& event);
  void beginRound();
  void lookAtSome();
  void closeEverything();

  const InotifyCalls calls_;
  mutable std::mutex mutex_;
  std::atomic<bool> stopped_ = false;
  // Constant while a wait runs.
  int instance_;
  int wakeUp_;
  // The rest is protected by the mutex.
  bool closed_ = false;
  int waiters_ = 0;
  bool limitReported_ = false;
  InodeTable inodes_;
  InotifyNotes notes_;
  InodeChanges changes_;
  std::map<int, Registration> registrations_;
  int nextDescriptor_;
  std::deque<int> pending_; // in the order in which they became so; ended ones among them
  Round round_;
};

} // namespace zq::platform
