// How much of what was received may be in use at a time.
#pragma once

class QDBusConnection;

namespace zq::app {

// Lets the connection read on, however much is in use. By default the library beneath stops reading
// at 63 MB and at 4096 descriptors until messages are freed. It then asks the connection to read on
// from the thread on which they were freed, which is never the connection's own, and a socket's
// notifier takes that from its own thread only: reading might never go on. Nothing where the
// library has other names for it.
void liftReceiveLimits(const QDBusConnection& connection);

} // namespace zq::app
