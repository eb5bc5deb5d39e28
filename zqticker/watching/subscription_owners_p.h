// Which watchers live, and whose a subscription is: a call of the platform can come later than its
// watcher's end, and then its reference must not be looked at.
#pragma once

#include "zqticker/watching/VXFNSubscribeFileWatcher.h"

// Thread: any, for all of them.
void noteWatcher(const zq::platform::Ref<VXFNSubscribeFileWatcher>& watcher);
void forgetWatcher(const VXFNSubscribeFileWatcher* watcher);

// Held for the process where nobody forgets it, as the subscription itself.
void noteSubscription(zq::platform::DirectorySubscription* handle,
                      const zq::platform::Ref<VXFNSubscribeFileWatcher>& owner);
void forgetSubscription(zq::platform::DirectorySubscription* handle);

// The watcher at the address `reference`; null once it has gone, even when another one has taken
// its address since the subscription was made.
zq::platform::Ref<VXFNSubscribeFileWatcher>
ownerOfSubscription(const void* reference, zq::platform::DirectorySubscription* handle);
