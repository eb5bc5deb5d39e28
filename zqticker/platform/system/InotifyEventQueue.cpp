#include "zqticker/platform/system/InotifyEventQueue_p.h"

#include "zqticker/platform/system/inotify_limits_p.h"

#include "zqticker/platform/system/inotify_limits_p.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <ctime>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace zq::platform {
namespace {

// Far from the numbers of open files, which other calls would take for theirs.
constexpr int FirstDescriptor = 0x0100'0000;
constexpr int LargestRead = 64 * 1024;
constexpr int LargestEvent = sizeof(inotify_event) + NAME_MAX + 1;
constexpr int MostReadsInARow = 16;
// Files looked at before the lock is given free and events are taken.
constexpr int FilesAtATime = 16;
constexpr std::size_t LeastFilesOfARound = 64;
constexpr std::chrono::seconds TimeBetweenRounds(5);
// The part of the time that may be spent on looking at files.
constexpr int LookingPart = 100;

int fail(int error) {
  errno = error;
  return -1;
}

} // namespace

Ref<InotifyEventQueue> InotifyEventQueue::make(InotifyCalls calls) {
  const int instance = calls.makeInstance(IN_NONBLOCK | IN_CLOEXEC);
  if (instance < 0)
    return nullptr;
  const int wakeUp = calls.makeWakeUp(0, EFD_NONBLOCK | EFD_CLOEXEC);
  if (wakeUp < 0) {
    const int error = errno;
    ::close(instance);
    errno = error;
    return nullptr;
  }
  return std::make_shared<InotifyEventQueue>(instance, wakeUp, calls);
}

InotifyEventQueue::InotifyEventQueue(int instance, int wakeUp, InotifyCalls calls)
    : calls_(calls), instance_(instance), wakeUp_(wakeUp), inodes_(instance, calls),
      notes_(inodes_), changes_(inodes_), nextDescriptor_(FirstDescriptor) {
  round_.begin = calls_.now();
}

InotifyEventQueue::~InotifyEventQueue() {
  if (!closed_)
    closeEverything();
}

int InotifyEventQueue::descriptor() const {
  const std::lock_guard lock(mutex_);
  return closed_ ? -1 : instance_;
}

int InotifyEventQueue::openForEvents(const QByteArray& path) {
  if (path.contains('\0'))
    return fail(ENOENT);
  {
    const std::lock_guard lock(mutex_);
    if (auto inode = closed_ ? nullptr : inodes_.watchInKnownFolder(path))
      return startRegistration(std::move(inode));
  }
  const int file = calls_.openPath(path.constData());
  int error = errno;
  const std::lock_guard lock(mutex_);
  if (file < 0) {
    reportLimit(error);
    return fail(error);
  }
  auto inode = closed_ ? nullptr : inodes_.watch(file);
  error = closed_ ? EBADF : errno;
  ::close(file);
  if (inode)
    return startRegistration(std::move(inode));
  reportLimit(error);
  return fail(error);
}

int InotifyEventQueue::startRegistration(std::shared_ptr<Inode> inode) {
  const int descriptor = nextDescriptor_++;
  Registration& registration =
      registrations_.emplace_hint(registrations_.end(), descriptor, Registration())->second;
  registration.descriptor = descriptor;
  registration.previous = inode->lastRegistration;
  (registration.previous ? registration.previous->next : inode->firstRegistration) = &registration;
  inode->lastRegistration = &registration;
  registration.inode = std::move(inode);
  return descriptor;
}

void InotifyEventQueue::endRegistration(std::map<int, Registration>::iterator found) {
  const Registration& ended = found->second;
  (ended.previous ? ended.previous->next : ended.inode->firstRegistration) = ended.next;
  (ended.next ? ended.next->previous : ended.inode->lastRegistration) = ended.previous;
  registrations_.erase(found);
}

void InotifyEventQueue::reportLimit(int error) {
  if (!limitReported_)
    limitReported_ = logInotifyLimit(error);
}

int InotifyEventQueue::add(int descriptor, std::uint32_t mask, const QString& userData) {
  const std::lock_guard lock(mutex_);
  const auto found = registrations_.find(descriptor);
  if (found == registrations_.end())
    return fail(EBADF);
  found->second.mask = std::uint8_t(mask);
  found->second.pending &= found->second.mask;
  found->second.userData = userData;
  return 0;
}

int InotifyEventQueue::closeDescriptor(int descriptor) {
  const std::lock_guard lock(mutex_);
  const auto found = registrations_.find(descriptor);
  if (found == registrations_.end())
    return fail(EBADF);
  endRegistration(found);
  return 0;
}

void InotifyEventQueue::stop() {
  const std::lock_guard lock(mutex_);
  stopped_ = true;
  const std::uint64_t one = 1;
  if (!closed_ && ::write(wakeUp_, &one, sizeof one) < 0) {
    // Full: it is readable already.
  }
}

int InotifyEventQueue::close() {
  stop();
  const std::lock_guard lock(mutex_);
  if (closed_)
    return fail(EBADF);
  closed_ = true;
  if (waiters_ == 0)
    closeEverything();
  return 0;
}

void InotifyEventQueue::closeEverything() {
  while (!registrations_.empty())
    endRegistration(registrations_.begin());
  pending_.clear();
  ::close(wakeUp_);
  ::close(instance_);
}

std::variant<KernelEvent, KernelEventQueue::TimedOut, KernelEventQueue::Stopped>
InotifyEventQueue::wait(std::chrono::nanoseconds timeout) {
  {
    const std::lock_guard lock(mutex_);
    if (closed_)
      return Stopped();
    ++waiters_;
  }
  auto answer = waitUntil(calls_.now(), timeout);
  const std::lock_guard lock(mutex_);
  if (--waiters_ == 0 && closed_)
    closeEverything();
  return answer;
}

std::variant<KernelEvent, KernelEventQueue::TimedOut, KernelEventQueue::Stopped>
InotifyEventQueue::waitUntil(Clock::time_point begin, std::chrono::nanoseconds timeout) {
  KernelEvent event;
  // A round is due by time as well: events may come so fast that no wait ever times out.
  bool timedOut = false;
  if (begin - round_.begin >= TimeBetweenRounds)
    beginRound();
  for (;;) {
    if (stopped_)
      return Stopped();
    const bool looking = !round_.isOver();
    if (looking)
      lookAtSome();
    {
      const std::lock_guard lock(mutex_);
      collect();
      if (takePending(event))
        return event;
    }
    if (looking)
      continue;
    if (timedOut)
      return TimedOut();
    if (!sleep(begin, timeout)) {
      timedOut = true;
      beginRound();
    }
  }
}

// Whether something came before the time was over.
bool InotifyEventQueue::sleep(Clock::time_point begin, std::chrono::nanoseconds timeout) {
  std::array<pollfd, 2> watched = {{{instance_, POLLIN, 0}, {wakeUp_, POLLIN, 0}}};
  timespec left{};
  if (timeout >= timeout.zero()) {
    const auto rest = std::max(timeout - (calls_.now() - begin), timeout.zero());
    left.tv_sec = time_t(rest.count() / 1'000'000'000);
    left.tv_nsec = long(rest.count() % 1'000'000'000);
  }
  const int count =
      ::ppoll(watched.data(), watched.size(), timeout < timeout.zero() ? nullptr : &left, nullptr);
  if (count > 0 && (watched[0].revents | watched[1].revents) & (POLLNVAL | POLLERR))
    stopped_ = true; // somebody has closed them
  return count != 0;
}

void InotifyEventQueue::readEvents() {
  alignas(inotify_event) std::array<char, LargestRead> buffer;
  for (int reads = 0; reads < MostReadsInARow; ++reads) {
    const ssize_t length = ::read(instance_, buffer.data(), buffer.size());
    if (length <= 0)
      break;
    for (const char* at = buffer.data(); at < buffer.data() + length;) {
      const auto& event = *reinterpret_cast<const inotify_event*>(at);
      notes_.note(event);
      at += sizeof(inotify_event) + event.len;
    }
    if (length + LargestEvent <= LargestRead)
      break; // there was room for one more
  }
  notes_.endBatch();
}

void InotifyEventQueue::collect() {
  readEvents();
  auto& noted = inodes_.noted();
  // Reading more while one is evaluated can lengthen the list.
  for (std::size_t i = 0; i < noted.size(); ++i) {
    Inode& inode = *noted[i];
    deliver(inode, changes_.evaluate(inode, [this] { readEvents(); }));
  }
  noted.clear();
}

void InotifyEventQueue::deliver(Inode& inode, std::uint32_t flags) {
  for (auto* each = inode.firstRegistration; each; each = each->next) {
    const std::uint32_t asked = flags & each->mask;
    if (asked == 0)
      continue;
    if (each->pending == 0)
      pending_.push_back(each->descriptor);
    each->pending |= std::uint8_t(asked);
  }
}

bool InotifyEventQueue::takePending(KernelEvent& event) {
  while (!pending_.empty()) {
    const auto found = registrations_.find(pending_.front());
    pending_.pop_front();
    if (found == registrations_.end() || found->second.pending == 0)
      continue;
    event.descriptor = found->first;
    event.flags = std::exchange(found->second.pending, std::uint8_t(0));
    event.userData = found->second.userData;
    return true;
  }
  return false;
}

void InotifyEventQueue::beginRound() {
  const auto now = calls_.now();
  const std::lock_guard lock(mutex_);
  round_.budget = std::min<Clock::duration>(now - round_.begin, TimeBetweenRounds) / LookingPart;
  round_.begin = now;
  round_.left = registrations_.size();
  round_.least = LeastFilesOfARound;
}

void InotifyEventQueue::lookAtSome() {
  const std::lock_guard lock(mutex_);
  // What the kernel tells keeps its order before what only a look finds.
  collect();
  const auto begin = calls_.now();
  round_.left = std::min(round_.left, registrations_.size());
  auto at = registrations_.upper_bound(round_.lastLookedAt);
  for (int i = 0; i < FilesAtATime && round_.left > 0; ++i, ++at) {
    if (at == registrations_.end())
      at = registrations_.begin();
    round_.lastLookedAt = at->first;
    --round_.left;
    round_.least -= round_.least > 0 ? 1 : 0;
    if (at->second.mask & (VnodeWrite | VnodeExtend))
      deliver(*at->second.inode, changes_.compareContents(*at->second.inode));
  }
  round_.budget -= calls_.now() - begin;
}

} // namespace zq::platform
