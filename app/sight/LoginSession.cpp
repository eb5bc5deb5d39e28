#include "app/sight/LoginSession.h"

#include "app/bus/BusListener.h"

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
const QString Service = u"org.freedesktop.login1"_s;
const QString ManagerPath = u"/org/freedesktop/login1"_s;
const QString ManagerInterface = u"org.freedesktop.login1.Manager"_s;
const QString SessionInterface = u"org.freedesktop.login1.Session"_s;
const QString PropertiesInterface = u"org.freedesktop.DBus.Properties"_s;
const QString LockedProperty = u"LockedHint"_s;
const QString SleepSignal = u"PrepareForSleep"_s;

std::optional<bool> truthIn(const QVariant& value) {
  if (value.metaType() == QMetaType::fromType<QDBusVariant>())
    return truthIn(value.value<QDBusVariant>().variant());
  if (value.metaType() != QMetaType::fromType<bool>())
    return std::nullopt;
  return value.toBool();
}
} // namespace

LoginSession::LoginSession(BusListener& bus, std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent), bus_(bus) {
  lockAsked_.setSingleShot(true);
  lockAsked_.setInterval(patience);
  connect(&lockAsked_, &QTimer::timeout, this, &LoginSession::changed);
  connect(&bus, &BusListener::opened, this, &LoginSession::listen);
  connect(&bus, &BusListener::heard, this, &LoginSession::hear);
  connect(&bus, &BusListener::ownerChanged, this, [this](const QString&, bool isThere) {
    forget();
    if (isThere)
      findSession();
  });
  connect(&bus, &BusListener::closed, this, [this] {
    paths_.clear();
    forget();
  });
}

LoginSession::~LoginSession() = default;

void LoginSession::listen() {
  bus_.listen(Service, ManagerPath, ManagerInterface, SleepSignal);
}

void LoginSession::findSession() {
  bus_.ask(Service, ManagerPath, PropertiesInterface, u"Get"_s,
           {ManagerInterface, u"PreparingForSleep"_s}, [this](const QDBusMessage& reply) {
             isAsleep_ = truthIn(reply.arguments().value(0)).value_or(false);
             Q_EMIT changed();
           });
  findSessionBy(0);
}

// A program that a user's service manager has started belongs to no session; the user's own one is
// meant then.
void LoginSession::findSessionBy(int way) {
  const QString identifier = qEnvironmentVariable("XDG_SESSION_ID");
  if (way == 0 && identifier.isEmpty())
    way = 1;
  const auto tryNext = [this, way](const QDBusMessage& reply) {
    const QVariant path = reply.arguments().value(0);
    if (path.metaType() == QMetaType::fromType<QDBusObjectPath>())
      followSession(path.value<QDBusObjectPath>().path());
    else
      findSessionBy(way + 1);
  };
  const auto ask = [&](const QString& method, const QVariant& argument) {
    bus_.ask(Service, ManagerPath, ManagerInterface, method, {argument}, tryNext);
  };
  if (way == 0)
    ask(u"GetSession"_s, identifier);
  else if (way == 1)
    ask(u"GetSessionByPID"_s, static_cast<uint>(QCoreApplication::applicationPid()));
  else if (way == 2)
    ask(u"GetSession"_s, u"auto"_s);
}

void LoginSession::followSession(const QString& path) {
  if (!paths_.contains(path)) {
    bus_.listen(Service, path, SessionInterface, u"Lock"_s);
    bus_.listen(Service, path, SessionInterface, u"Unlock"_s);
    bus_.listen(Service, path, PropertiesInterface, u"PropertiesChanged"_s);
  }
  paths_.removeAll(path);
  paths_.append(path);
  askWhetherLocked();
}

void LoginSession::askWhetherLocked() {
  bus_.ask(Service, paths_.last(), PropertiesInterface, u"Get"_s,
           {SessionInterface, LockedProperty}, [this](const QDBusMessage& reply) {
             if (const std::optional<bool> isLocked = truthIn(reply.arguments().value(0)))
               setLocked(*isLocked);
           });
}

void LoginSession::hear(const QDBusMessage& signal) {
  if (signal.interface() == ManagerInterface && signal.member() == SleepSignal) {
    isAsleep_ = truthIn(signal.arguments().value(0)).value_or(false);
    Q_EMIT changed();
  } else if (!paths_.isEmpty() && signal.path() == paths_.last()) {
    hearOfSession(signal);
  }
}

void LoginSession::hearOfSession(const QDBusMessage& signal) {
  if (signal.interface() == SessionInterface && signal.member() == "Lock"_L1) {
    lockAsked_.start();
    Q_EMIT changed();
  } else if (signal.interface() == SessionInterface && signal.member() == "Unlock"_L1) {
    setLocked(false);
  } else if (signal.signature() == "sa{sv}as"_L1 &&
             signal.arguments().at(0).toString() == SessionInterface) {
    const auto values = qdbus_cast<QVariantMap>(signal.arguments().at(1));
    if (const std::optional<bool> isLocked = truthIn(values.value(LockedProperty)))
      setLocked(*isLocked);
    else if (signal.arguments().at(2).toStringList().contains(LockedProperty))
      askWhetherLocked();
  }
}

void LoginSession::setLocked(bool isLocked) {
  // What was asked for has been done, or is over.
  lockAsked_.stop();
  isLocked_ = isLocked;
  Q_EMIT changed();
}

void LoginSession::forget() {
  isAsleep_ = false;
  setLocked(false);
}

} // namespace zq::app
