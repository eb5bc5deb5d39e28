// What keeps a loader alive: a set of the process until its completion, then its thread's event
// loop.
#pragma once

#include "zqticker/net/ZQURLLoader.h"

// Keeps `loader` for the process. Thread: any.
void keepLoader(const zq::platform::Ref<ZQURLLoader>& loader);

// Ends that, and keeps `loader` until control is back in the event loop that runs now on this
// thread; an event loop that is started meanwhile does not count. Then its context is emptied and
// it is let go of.
void releaseLoaderAfterUnitOfWork(const zq::platform::Ref<ZQURLLoader>& loader);
