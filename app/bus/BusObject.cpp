#include "app/bus/BusObject.h"

#include "app/bus/BusFailure.h"
#include "app/bus/bus_names.h"
#include "app/bus/request_reading.h"
#include "app/bus/ticker_interface.h"
#include "zqticker/version.h"

#include <QtDBus/QDBusVariant>

#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
void answerProperties(const QDBusMessage& call, const QDBusConnection& connection) {
  const QVariant version = QStringLiteral(ZQTICKER_VERSION);
  const QString interface = call.arguments().value(0).toString();
  const bool isOurs = interface == TickerInterface || interface.isEmpty();
  const bool isVersion = isOurs && call.arguments().value(1).toString() == "Version"_L1;
  if (call.member() == "GetAll"_L1 && call.signature() == "s"_L1)
    connection.send(
        call.createReply(isOurs ? QVariantMap{{u"Version"_s, version}} : QVariantMap()));
  else if (call.member() == "Get"_L1 && call.signature() == "ss"_L1 && isVersion)
    connection.send(call.createReply(QVariant::fromValue(QDBusVariant(version))));
  else if (call.member() == "Set"_L1 && call.signature() == "ssv"_L1 && isVersion)
    connection.send(call.createErrorReply(QDBusError::PropertyReadOnly, u"Version is read only"_s));
  else if (call.signature() == (call.member() == "Set"_L1 ? "ssv"_L1 : "ss"_L1))
    connection.send(call.createErrorReply(QDBusError::UnknownProperty, u"no such property"_s));
  else
    connection.send(call.createErrorReply(QDBusError::InvalidArgs, u"no such method"_s));
}
} // namespace

BusObject::BusObject(BusInbox& inbox, std::function<void()> wake)
    : inbox_(inbox), wake_(std::move(wake)) {}

BusObject::~BusObject() = default;

QString BusObject::introspect(const QString&) const {
  return tickerInterface();
}

bool BusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  const QString interface = message.interface();
  if (interface == "org.freedesktop.DBus.Properties"_L1) {
    answerProperties(message, connection);
    return true;
  }
  // These the library answers, with the description above.
  if (interface == "org.freedesktop.DBus.Introspectable"_L1 ||
      interface == "org.freedesktop.DBus.Peer"_L1 ||
      (interface.isEmpty() && message.member() == "Introspect"_L1))
    return false;
  try {
    handleCall(message, connection);
  } catch (const BusFailure& failure) {
    if (failure.kind() == BusFailure::Kind::TooMuch)
      refusals_.note(message.service(), failure.message());
    connection.send(message.createErrorReply(failure.errorName(), failure.message()));
  }
  return true;
}

void BusObject::handleCall(const QDBusMessage& call, const QDBusConnection& connection) {
  const bool isOurs = call.interface().isEmpty() || call.interface() == TickerInterface;
  if (std::optional<BusRequest> request = isOurs ? readCall(call) : std::nullopt)
    put({std::move(*request), call, connection});
  else if (isOurs)
    connection.send(call.createErrorReply(QDBusError::UnknownMethod,
                                          TickerInterface + u" has no such method"_s));
  else
    connection.send(call.createErrorReply(QDBusError::UnknownInterface, u"no such interface"_s));
}

void BusObject::notified(const QDBusMessage& signal) {
  try {
    put({readNotification(signal), signal, QDBusConnection(QString())});
  } catch (const BusFailure& failure) {
    refusals_.note(signal.service(), failure.message());
  }
}

void BusObject::put(PendingRequest&& pending) {
  switch (inbox_.put(std::move(pending))) {
  case BusInbox::Admission::First:
    wake_();
    break;
  case BusInbox::Admission::Further:
    break;
  case BusInbox::Admission::Refused:
    throw BusFailure(BusFailure::Kind::TooMuch, u"too many messages wait"_s);
  }
}

} // namespace zq::app
