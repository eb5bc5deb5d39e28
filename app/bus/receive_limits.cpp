#include "app/bus/receive_limits.h"

#include <QtCore/QLibrary>
#include <QtDBus/QDBusConnection>

#include <limits>

using namespace Qt::StringLiterals;

namespace zq::app {

void liftReceiveLimits(const QDBusConnection& connection) {
  if (!connection.internalPointer())
    return;
  // In memory already: the toolkit's connections are made of it.
  QLibrary library(u"dbus-1"_s, 3);
  using SetLimit = void (*)(void* connection, long limit);
  for (const char* name :
       {"dbus_connection_set_max_received_size", "dbus_connection_set_max_received_unix_fds"})
    if (const auto setLimit = reinterpret_cast<SetLimit>(library.resolve(name)))
      setLimit(connection.internalPointer(), std::numeric_limits<long>::max());
}

} // namespace zq::app
