// How much of what was received may be in use at a time.
#pragma once

class QDBusConnection;

namespace zq::app {

// Lets the connection read on, however much is in use. By default the library beneath stops reading
// at 63 MB and at 4096 descriptors, and goes on when messages are freed; but it cannot be told so
// from another thread than that of the connection, on which no message is ever freed. Two large
// messages would close the ticker to everybody. Nothing where the library has other names for it.
void liftReceiveLimits(const QDBusConnection& connection);

} // namespace zq::app
