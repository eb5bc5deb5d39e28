#include "app/bus/SessionBus.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr int FirstRetryMilliseconds = 100;
constexpr int LastRetryMilliseconds = 5000;

// Names of connections are never used twice: the library remembers the ones that broke.
QString newName() {
  static int count = 0;
  return u"zqticker-%1"_s.arg(++count);
}
} // namespace

SessionBus::SessionBus(std::optional<QString> address, QObject* parent)
    : QObject(parent), address_(std::move(address)), connection_(QString()) {
  retry_.setSingleShot(true);
  connect(&retry_, &QTimer::timeout, this, [this] {
    if (connectOnce()) {
      Q_EMIT opened();
      return;
    }
    retry_.start(std::min(2 * retry_.interval(), LastRetryMilliseconds));
  });
}

SessionBus::~SessionBus() {
  disconnect();
}

bool SessionBus::isOpen() const {
  return connection_.isConnected();
}

bool SessionBus::open() {
  if (isOpen())
    return true;
  // What broke comes back by the timer, so that nobody misses that it is another connection.
  const bool comesByItself = retry_.isActive() || !connection_.name().isEmpty();
  if (!address_ || comesByItself)
    return false;
  if (connectOnce())
    return true;
  retry_.start(FirstRetryMilliseconds);
  return false;
}

bool SessionBus::connectOnce() {
  disconnect();
  connection_ = QDBusConnection::connectToBus(*address_, newName());
  if (!connection_.isConnected()) {
    disconnect();
    return false;
  }
  retry_.stop();
  connection_.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                      u"Disconnected"_s, this, SLOT(lost()));
  return true;
}

void SessionBus::disconnect() {
  const QString name = connection_.name();
  connection_ = QDBusConnection(QString());
  if (!name.isEmpty())
    QDBusConnection::disconnectFromBus(name);
}

void SessionBus::lost() {
  // Of a connection that has been given up already.
  if (isOpen() || connection_.name().isEmpty())
    return;
  disconnect();
  retry_.start(FirstRetryMilliseconds);
  Q_EMIT closed();
}

} // namespace zq::app
