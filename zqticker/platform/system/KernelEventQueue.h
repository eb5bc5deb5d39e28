// The kernel's event queue for files: who changes, removes or renames what is watched.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <chrono>
#include <cstdint>
#include <variant>

namespace zq::platform {

// What happened to a watched file or folder; the values of the vnode filter.
enum VnodeEvent : std::uint32_t {
  VnodeDelete = 0x01, // its last name, or the name by which it was opened, is gone
  VnodeWrite = 0x02,  // its contents; of a folder: an entry came, went or was renamed
  VnodeExtend = 0x04, // it has grown
  VnodeAttrib = 0x08, // mode, owner, times or extended attributes
  VnodeLink = 0x10,   // its number of names; of a folder: of its subfolders
  VnodeRename = 0x20, // it has another name or stands in another folder
  VnodeRevoke = 0x40, // its file system was unmounted
};

struct KernelEvent {
  int descriptor = -1;
  std::uint32_t flags = 0; // VnodeEvent values that the registration asks for
  QString userData{};      // as registered
};

// A queue of events about files. Each descriptor has at most one pending event, whose flags merge
// until it is taken; events are taken in the order in which their descriptors became pending.
// Thread: any; one thread at a time waits.
class ZQTICKER_EXPORT KernelEventQueue {
 public:
  // A queue, or null with errno where the kernel gives none; nothing is logged.
  static Ref<KernelEventQueue> make();

  virtual ~KernelEventQueue();
  KernelEventQueue(const KernelEventQueue&) = delete;
  KernelEventQueue& operator=(const KernelEventQueue&) = delete;

  // The queue's own descriptor; -1 once it is closed.
  virtual int descriptor() const = 0;

  // A descriptor of what is at `path`, for events only: it can be passed to this queue's functions
  // alone, does not count as an open file and holds back neither a deletion nor an unmounting.
  // Symbolic links are followed. Never blocks on what is there. -1 with errno where nothing can be
  // watched at `path`; where one of the kernel's limits is the reason, the first time is logged.
  //
  // What moves is followed into folders in which something is watched, and into those nearby: the
  // one it has left, the one above, and the folders within both. Anywhere else it cannot be looked
  // at: growth is then not told, a change of attributes or of names is told as VnodeLink, and its
  // removal when nobody holds it open any more.
  virtual int openForEvents(const QByteArray& path) = 0;

  // Asks for the events in `mask`, VnodeEvent values, from now on. A second call for a descriptor
  // takes the place of the first. 0, or -1 with errno.
  virtual int add(int descriptor, std::uint32_t mask, const QString& userData) = 0;

  // Ends a descriptor with its events, pending ones included. 0, or -1 with errno.
  virtual int closeDescriptor(int descriptor) = 0;

  struct TimedOut {};
  struct Stopped {};

  // Takes the first pending event; waits for one where none is pending, without an end when
  // `timeout` is negative. Where the kernel has lost events, what has changed is told all the same;
  // what is gone then is told as deleted and renamed, unless it is found nearby.
  //
  // Stores through a memory map cause no event: before it answers TimedOut, and every 5 seconds
  // while events keep coming, it looks at the sizes and times of watched files for at most a
  // hundredth of the time (that is 50 ms, about 40,000 files), at 64 files whatever the time. With
  // more files each round goes on where the last one has ended.
  virtual std::variant<KernelEvent, TimedOut, Stopped> wait(std::chrono::nanoseconds timeout) = 0;

  // Makes every wait, running or later, answer Stopped.
  virtual void stop() = 0;

  // Stops and closes the queue with all descriptors; a running wait is let out first. 0, or -1
  // with errno.
  virtual int close() = 0;

 protected:
  KernelEventQueue() = default;
};

} // namespace zq::platform
