#include "zqticker/platform/system/KernelEventQueue.h"

#include "zqticker/platform/system/InotifyEventQueue_p.h"

namespace zq::platform {

KernelEventQueue::~KernelEventQueue() = default;

Ref<KernelEventQueue> KernelEventQueue::make() {
  return InotifyEventQueue::make(InotifyCalls());
}

} // namespace zq::platform
