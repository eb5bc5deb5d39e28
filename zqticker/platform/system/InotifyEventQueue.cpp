#include "zqticker/platform/system/InotifyEventQueue_p.h"

#include "zqticker/platform/system/inotify_limits_p.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <limits>
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
constexpr int MostReadsInARow = 16;
// Files looked at before the lock is given free.
constexpr int FilesAtATime = 64;
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
    : instance_(instance), wakeUp_(wakeUp), inodes_(instance, calls),
      nextDescriptor_(FirstDescriptor) {}

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
  const int file = ::open(path.constData(), O_PATH | O_CLOEXEC);
  if (file < 0)
    return -1;
  int descriptor = -1;
  int error = EBADF;
  {
    const std::lock_guard lock(mutex_);
    if (!closed_) {
      auto inode = inodes_.watch(file);
      error = errno;
      if (inode)
        descriptor = startRegistration(std::move(inode));
      else if (error == ENOSPC)
        reportLimit();
    }
  }
  ::close(file);
  if (descriptor < 0)
    errno = error;
  return descriptor;
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

void InotifyEventQueue::reportLimit() {
  if (!std::exchange(limitReported_, true))
    logInotifyLimit(ENOSPC);
}

int InotifyEventQueue::add(int descriptor, std::uint32_t mask, const QString& userData) {
  const std::lock_guard lock(mutex_);
  const auto found = registrations_.find(descriptor);
  if (found == registrations_.end())
    return fail(EBADF);
  found->second.mask = mask;
  found->second.pending &= mask;
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
  inodes_.end();
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
  auto answer = waitUntil(Clock::now(), timeout);
  const std::lock_guard lock(mutex_);
  if (--waiters_ == 0 && closed_)
    closeEverything();
  return answer;
}

std::variant<KernelEvent, KernelEventQueue::TimedOut, KernelEventQueue::Stopped>
InotifyEventQueue::waitUntil(Clock::time_point begin, std::chrono::nanoseconds timeout) {
  KernelEvent event;
  for (;;) {
    if (stopped_)
      return Stopped();
    {
      const std::lock_guard lock(mutex_);
      collect();
      if (takePending(event))
        return event;
    }
    if (!sleep(begin, timeout))
      break;
  }
  lookAround((Clock::now() - begin) / LookingPart);
  const std::lock_guard lock(mutex_);
  collect();
  if (takePending(event))
    return event;
  return TimedOut();
}

// Whether something came before the time was over.
bool InotifyEventQueue::sleep(Clock::time_point begin, std::chrono::nanoseconds timeout) {
  std::array<pollfd, 2> watched = {{{instance_, POLLIN, 0}, {wakeUp_, POLLIN, 0}}};
  timespec left{};
  if (timeout >= timeout.zero()) {
    const auto rest = std::max(timeout - (Clock::now() - begin), timeout.zero());
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
      inodes_.note(event);
      at += sizeof(inotify_event) + event.len;
    }
  }
  inodes_.endBatch();
}

void InotifyEventQueue::collect() {
  readEvents();
  auto& noted = inodes_.noted();
  // Reading more while one is evaluated can lengthen the list.
  for (std::size_t i = 0; i < noted.size(); ++i) {
    Inode& inode = *noted[i];
    deliver(inode, inodes_.evaluate(inode, [this] { readEvents(); }));
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
    each->pending |= asked;
  }
}

bool InotifyEventQueue::takePending(KernelEvent& event) {
  while (!pending_.empty()) {
    const auto found = registrations_.find(pending_.front());
    pending_.pop_front();
    if (found == registrations_.end() || found->second.pending == 0)
      continue;
    event.descriptor = found->first;
    event.flags = std::exchange(found->second.pending, 0);
    event.userData = found->second.userData;
    return true;
  }
  return false;
}

// Goes on where the last round has ended.
void InotifyEventQueue::lookAround(Clock::duration budget) {
  const auto end = Clock::now() + budget;
  std::size_t left = std::numeric_limits<std::size_t>::max();
  while (lookAtSome(left) && !stopped_ && Clock::now() < end) {
  }
}

// Whether some are left of the round.
bool InotifyEventQueue::lookAtSome(std::size_t& left) {
  const std::lock_guard lock(mutex_);
  left = std::min(left, registrations_.size());
  auto at = registrations_.upper_bound(lastLookedAt_);
  for (int i = 0; i < FilesAtATime && left > 0; ++i, --left, ++at) {
    if (at == registrations_.end())
      at = registrations_.begin();
    lastLookedAt_ = at->first;
    Inode& inode = *at->second.inode;
    if (const std::uint32_t flags = inodes_.compareContents(inode))
      deliver(inode, flags);
  }
  return left > 0;
}

} // namespace zq::platform
