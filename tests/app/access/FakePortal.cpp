#include "tests/app/access/FakePortal.h"

#include <QtCore/QUuid>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>

using namespace Qt::StringLiterals;

namespace zq::app::testing {

namespace {
const QString Name = u"org.freedesktop.portal.Desktop"_s;
const QString Path = u"/org/freedesktop/portal/desktop"_s;
const QString Interface = u"org.freedesktop.portal.Settings"_s;

QVariant wrapped(const QVariant& value) {
  return QVariant::fromValue(QDBusVariant(value));
}
} // namespace

FakePortal::FakePortal(const QString& address, Age age)
    : age_(age),
      connection_(QDBusConnection::connectToBus(address, QUuid::createUuid().toString())) {
  connection_.registerVirtualObject(Path, this);
}

FakePortal::~FakePortal() {
  connection_.unregisterObject(Path);
  QDBusConnection::disconnectFromBus(connection_.name());
}

void FakePortal::show() {
  isShown_ = true;
  connection_.registerService(Name);
}

void FakePortal::set(const QString& space, const QString& name, const QVariant& value) {
  values_.insert({space, name}, value);
  if (!isShown_)
    return;
  QDBusMessage signal = QDBusMessage::createSignal(Path, Interface, u"SettingChanged"_s);
  signal.setArguments({space, name, wrapped(value)});
  connection_.send(signal);
}

void FakePortal::tellAll(const QString& space, const QString& name, const QVariant& value) const {
  const QDBusConnectionInterface* bus = connection_.interface();
  for (const QString& receiver : bus->registeredServiceNames().value()) {
    if (!receiver.startsWith(u':'))
      continue;
    QDBusMessage signal =
        QDBusMessage::createTargetedSignal(receiver, Path, Interface, u"SettingChanged"_s);
    signal.setArguments({space, name, wrapped(value)});
    connection_.send(signal);
  }
  // The bus answers in order.
  bus->registeredServiceNames();
}

QString FakePortal::introspect(const QString&) const {
  return QString();
}

bool FakePortal::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  const bool isOne = message.member() == "ReadOne"_L1 && age_ == Age::New;
  if (message.interface() != Interface || (!isOne && message.member() != "Read"_L1)) {
    connection.send(message.createErrorReply(QDBusError::UnknownMethod, u"no such method"_s));
    return true;
  }
  const auto found = values_.constFind(
      {message.arguments().value(0).toString(), message.arguments().value(1).toString()});
  if (found == values_.constEnd())
    connection.send(message.createErrorReply(u"org.freedesktop.portal.Error.NotFound"_s,
                                             u"Requested setting not found"_s));
  else
    connection.send(message.createReply(isOne ? wrapped(*found) : wrapped(wrapped(*found))));
  return true;
}

} // namespace zq::app::testing
