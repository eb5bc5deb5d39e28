#include "app/bus/BusListener.h"

#include "app/bus/bus_names.h"

#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>

#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr int FirstRetryMilliseconds = 1000;
constexpr int LastRetryMilliseconds = 60'000;
// Without an end, and so without a timer.
constexpr int NoTimeout = std::numeric_limits<int>::max();
const QString OwnerSignal = u"NameOwnerChanged"_s;

// Names of connections are never used twice: the library remembers the ones that broke.
QString newName() {
  static int count = 0;
  return u"zqticker-listener-%1"_s.arg(++count);
}
} // namespace

BusListener::BusListener(std::optional<QString> address, QObject* parent)
    : QObject(parent), address_(std::move(address)), connection_(QString()),
      retryMilliseconds_(FirstRetryMilliseconds) {
  retry_.setSingleShot(true);
  connect(&retry_, &QTimer::timeout, this, &BusListener::open);
}

BusListener::~BusListener() {
  disconnect();
}

// The library's own way onto a bus waits for the bus to greet. To a peer it only connects; greeted
// by ourselves, the bus is as good as one.
void BusListener::open() {
  if (!address_ || connection_.isConnected())
    return;
  disconnect();
  connection_ = QDBusConnection::connectToPeer(*address_, newName());
  if (!connection_.isConnected()) {
    disconnect();
    retryLater();
    return;
  }
  connection_.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                      u"Disconnected"_s, this, SLOT(lost()));
  ask(BusDaemonName, BusDaemonPath, BusDaemonName, u"Hello"_s, {},
      [this](const QDBusMessage&) { retryMilliseconds_ = FirstRetryMilliseconds; });
  Q_EMIT opened();
}

void BusListener::disconnect() {
  const QString name = connection_.name();
  connection_ = QDBusConnection(QString());
  senders_.clear();
  owners_.clear();
  if (!name.isEmpty())
    QDBusConnection::disconnectFromPeer(name);
}

void BusListener::retryLater() {
  retry_.start(retryMilliseconds_);
  retryMilliseconds_ = std::min(2 * retryMilliseconds_, LastRetryMilliseconds);
}

void BusListener::lost() {
  // Of a connection that has been given up already.
  if (connection_.isConnected() || connection_.name().isEmpty())
    return;
  disconnect();
  retryLater();
  Q_EMIT closed();
}

void BusListener::listen(const QString& service, const QString& path, const QString& interface,
                         const QString& member) {
  followOwner(service);
  QStringList& senders = senders_[interface + u'.' + member];
  if (senders.isEmpty())
    connection_.connect(QString(), QString(), interface, member, this, SLOT(receive(QDBusMessage)));
  if (!senders.contains(service))
    senders.append(service);
  const QString rule =
      u"type='signal',sender='%1',interface='%2',member='%3'"_s.arg(service, interface, member);
  addMatch(path.isEmpty() ? rule : rule + u",path='%1'"_s.arg(path));
}

// Signals bear their senders' unique names.
void BusListener::followOwner(const QString& service) {
  if (owners_.contains(service))
    return;
  if (owners_.isEmpty())
    connection_.connect(QString(), BusDaemonPath, BusDaemonName, OwnerSignal, this,
                        SLOT(receiveOwner(QString, QString, QString, QDBusMessage)));
  owners_.insert(service, QString());
  addMatch(u"type='signal',sender='%1',interface='%1',member='%2',arg0='%3'"_s.arg(
      BusDaemonName, OwnerSignal, service));
  ask(BusDaemonName, BusDaemonPath, BusDaemonName, u"GetNameOwner"_s, {service},
      [this, service](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ReplyMessage)
          setOwner(service, reply.arguments().value(0).toString());
      });
}

void BusListener::setOwner(const QString& service, const QString& owner) {
  if (owners_.value(service) == owner)
    return;
  owners_.insert(service, owner);
  Q_EMIT ownerChanged(service, !owner.isEmpty());
}

void BusListener::addMatch(const QString& rule) {
  ask(BusDaemonName, BusDaemonPath, BusDaemonName, u"AddMatch"_s, {rule}, {});
}

void BusListener::ask(const QString& service, const QString& path, const QString& interface,
                      const QString& method, const QVariantList& arguments,
                      std::function<void(const QDBusMessage& reply)> answered) {
  QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
  call.setArguments(arguments);
  call.setAutoStartService(false);
  auto* watcher = new QDBusPendingCallWatcher(connection_.asyncCall(call, NoTimeout), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this,
          [this, name = connection_.name(),
           answered = std::move(answered)](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            if (answered && name == connection_.name() && connection_.isConnected())
              answered(QDBusPendingReply<>(*finished).reply());
          });
}

void BusListener::receive(const QDBusMessage& signal) {
  const QStringList senders = senders_.value(signal.interface() + u'.' + signal.member());
  const bool isTheirs = std::any_of(senders.begin(), senders.end(), [&](const QString& service) {
    return owners_.value(service) == signal.service();
  });
  if (isTheirs)
    Q_EMIT heard(signal);
}

void BusListener::receiveOwner(const QString& service, const QString&, const QString& now,
                               const QDBusMessage& signal) {
  if (signal.service() == BusDaemonName && owners_.contains(service))
    setOwner(service, now);
}

} // namespace zq::app
