#include "zqticker/watching/VXKQueue.h"

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/objects/MainThread.h"
#include "zqticker/platform/system/KernelEventQueue.h"
#include "zqticker/platform/system/Workspace.h"
#include "zqticker/watching/VXMainThreadProxy.h"
#include "zqticker/watching/WatchedPaths_p.h"
#include "zqticker/watching/path_text_p.h"
#include "zqticker/watching/watcher_thread_p.h"
#include "zqticker/watching/watching_log_p.h"

#include <cerrno>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
constexpr std::uint32_t DefaultMask = VnodeRename | VnodeAttrib | VnodeWrite | VnodeDelete;
} // namespace

Ref<VXKQueue> VXKQueue::sharedFileWatcher() {
  static std::mutex mutex;
  static auto* const shared = new Ref<VXKQueue>;
  const std::lock_guard lock(mutex);
  if (!*shared)
    *shared = make();
  return *shared;
}

Ref<VXKQueue> VXKQueue::make() {
  return make(KernelEventQueue::make());
}

Ref<VXKQueue> VXKQueue::make(Ref<KernelEventQueue> queue) {
  if (!queue)
    return nullptr;
  const Ref<VXKQueue> watcher(new VXKQueue(queue));
  return startWatcherThread(queue, watcher) ? watcher : nullptr;
}

VXKQueue::VXKQueue(Ref<KernelEventQueue> queue)
    : queue_(std::move(queue)), watched_(std::make_unique<WatchedPaths>()) {}

VXKQueue::~VXKQueue() {
  // Before the thread closes the queue, and them with it.
  for (const int descriptor : watched_->takeAll())
    closeDescriptor(descriptor, "dealloc");
  queue_->stop();
}

int VXKQueue::queueFD() const {
  return queue_->descriptor();
}

VXFileWatcherDelegate* VXKQueue::delegate() const {
  const std::lock_guard lock(delegateMutex_);
  return delegate_.get();
}

void VXKQueue::setDelegate(Weak<VXFileWatcherDelegate> delegate) {
  Ref<VXMainThreadProxy> proxy = copyMainThreadProxy(delegate.get());
  const std::lock_guard lock(delegateMutex_);
  delegate_ = delegate;
  std::swap(delegateProxy_, proxy);
}

QString VXKQueue::description() const {
  const std::lock_guard lock(mutex_);
  return className() + " { watchedPaths = "_L1 + describePaths(watched_->paths()) +
         ", alwaysNotify = "_L1 + (alwaysNotify_ ? "YES"_L1 : "NO"_L1) + " }"_L1;
}

void VXKQueue::addPath(const QString& path) {
  addPathToQueue(path, DefaultMask);
}

void VXKQueue::addPathToQueue(const QString& path) {
  addPathToQueue(path, DefaultMask);
}

void VXKQueue::addPathToQueue(const QString& path, std::uint32_t mask) {
  const QByteArray name = fileSystemRepresentation(path);
  const int descriptor = name.isEmpty() ? -1 : queue_->openForEvents(name);
  if (descriptor < 0)
    return;
  const std::lock_guard lock(mutex_);
  watched_->append(path, descriptor);
  // A registration that fails is deliberately not noticed: the path counts as watched.
  queue_->add(descriptor, mask, path);
}

void VXKQueue::removePath(const QString& path) {
  removePathFromQueue(path);
}

void VXKQueue::removePathFromQueue(const QString& path) {
  std::optional<int> descriptor;
  {
    const std::lock_guard lock(mutex_);
    descriptor = watched_->takeFirst(path);
  }
  if (!descriptor)
    throw RangeException(path + " is not watched"_L1);
  closeDescriptor(*descriptor, "removePathFromQueue");
}

void VXKQueue::removeAllPathsFromQueue() {
  const std::lock_guard lock(mutex_);
  for (const int descriptor : watched_->takeAll())
    queue_->closeDescriptor(descriptor);
}

void VXKQueue::closeDescriptor(int descriptor, const char* operation) {
  if (queue_->closeDescriptor(descriptor) == 0)
    return;
  const int error = errno;
  // A queue that an exception has closed took its descriptors along.
  if (queue_->descriptor() >= 0)
    qCWarning(watchingLog, "%s: Couldn't close file descriptor (%d)", operation, error);
}

void VXKQueue::postNotification(const QString& name, const QString& path) {
  Ref<VXMainThreadProxy> proxy;
  {
    const std::lock_guard lock(delegateMutex_);
    // Without a living delegate the main thread need not be asked.
    if (delegate_)
      proxy = delegateProxy_;
  }
  if (proxy) {
    try {
      proxy->call(&VXFileWatcherDelegate::watcherReceivedNotification, *this, name, path);
    } catch (const MainThreadEndedException&) {
      // The program is about to end and its delegate hears nothing more; a line for each event
      // until then would tell nobody anything.
    }
  }
  // As it is now: the delegate may have been replaced, or have gone.
  if (delegate() && !alwaysNotify_)
    return;
  Workspace::sharedWorkspace().notificationCenter().postNotificationName(name, shared_from_this(),
                                                                         {{u"path"_s, path}});
}
