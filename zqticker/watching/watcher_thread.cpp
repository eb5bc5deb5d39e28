#include "zqticker/watching/watcher_thread_p.h"

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/system/KernelEventQueue.h"
#include "zqticker/platform/system/Workspace.h"
#include "zqticker/watching/VXKQueue.h"
#include "zqticker/watching/watching_log_p.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <pthread.h>
#include <system_error>
#include <thread>

using namespace zq::platform;

namespace {
constexpr std::chrono::seconds LongestWait(5);

struct Report {
  VnodeEvent flag;
  QString name;
};

// In the order in which the flags of one event are reported. Copies that are never destroyed: the
// thread may outlive the program's main function.
const std::array<Report, 7>& reports() {
  static const auto* const all = new std::array<Report, 7>{{
      {VnodeRename, VXFileWatcherRenameNotification},
      {VnodeWrite, VXFileWatcherWriteNotification},
      {VnodeDelete, VXFileWatcherDeleteNotification},
      {VnodeAttrib, VXFileWatcherAttributeChangeNotification},
      {VnodeExtend, VXFileWatcherSizeIncreaseNotification},
      {VnodeLink, VXFileWatcherLinkCountChangeNotification},
      {VnodeRevoke, VXFileWatcherAccessRevocationNotification},
  }};
  return *all;
}

void report(const KernelEvent& event, VXKQueue& watcher) {
  // The path as registered: it may not be watched any more.
  const QString& path = event.userData;
  Workspace::sharedWorkspace().noteFileSystemChanged(path);
  for (const Report& each : reports())
    if (event.flags & each.flag)
      watcher.postNotification(each.name, path);
}

void watch(KernelEventQueue& queue, const std::weak_ptr<VXKQueue>& watching) {
  for (;;) {
    const auto answer = queue.wait(LongestWait);
    if (std::holds_alternative<KernelEventQueue::Stopped>(answer))
      return;
    const auto* const event = std::get_if<KernelEvent>(&answer);
    if (!event || event->flags == 0)
      continue;
    try {
      if (const Ref<VXKQueue> watcher = watching.lock())
        report(*event, *watcher);
    } catch (const Exception& exception) {
      qCWarning(watchingLog, "Error in VXKQueue watcherThread: %s",
                qUtf8Printable(exception.reason()));
    }
  }
}

void runWatcherThread(const Ref<KernelEventQueue>& queue, const std::weak_ptr<VXKQueue>& watcher) {
  pthread_setname_np(pthread_self(), "VXKQueue");
  try {
    watch(*queue, watcher);
  } catch (...) {
    // What is no exception of the platform ends the thread, deliberately without a word.
  }
  if (queue->close() != 0)
    qCWarning(watchingLog, "release: Couldn't close main kqueue (%d)", errno);
}
} // namespace

bool startWatcherThread(const Ref<KernelEventQueue>& queue,
                        const std::weak_ptr<VXKQueue>& watcher) {
  try {
    std::thread([queue, watcher] { runWatcherThread(queue, watcher); }).detach();
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}
