// The thread of a watcher.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <memory>

namespace zq::platform {
class KernelEventQueue;
}
class VXKQueue;

// Starts a thread that takes the events of `queue` and has `watcher` report them, until the queue
// is stopped; then it closes the queue. It refers to the watcher for the length of a report only.
// False where the system gives no thread.
bool startWatcherThread(const zq::platform::Ref<zq::platform::KernelEventQueue>& queue,
                        const std::weak_ptr<VXKQueue>& watcher);
