#include "app/bus/TickerClient.h"

#include "app/bus/bus_names.h"

#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusUnixFileDescriptor>

#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr int UsualDeadlineMilliseconds = 25'000;

QDBusMessage ownerQuestion() {
  QDBusMessage question = QDBusMessage::createMethodCall(BusDaemonName, BusDaemonPath,
                                                         BusDaemonName, u"NameHasOwner"_s);
  question.setArguments({QString(TickerBusName)});
  return question;
}

bool isNoTicker(const QString& errorName) {
  return errorName == "org.freedesktop.DBus.Error.ServiceUnknown"_L1 ||
         errorName == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1;
}

// The bus went away, or the ticker did before it replied.
bool isLost(const QString& errorName) {
  return errorName == "org.freedesktop.DBus.Error.Disconnected"_L1 ||
         errorName == "org.freedesktop.DBus.Error.NoReply"_L1;
}

BusReply noBus() {
  return {false, NoBusErrorName, u"no session bus"_s, {}, false};
}

BusReply readReply(const QDBusMessage& message) {
  BusReply reply;
  if (message.type() == QDBusMessage::ReplyMessage) {
    reply.ok = true;
    const QVariant first = message.arguments().value(0);
    if (first.metaType() == QMetaType::fromType<bool>())
      reply.removed = first.toBool();
    else
      reply.identifier = first.toString();
    return reply;
  }
  reply.errorName = message.errorName();
  reply.errorMessage = isNoTicker(reply.errorName) ? u"no ticker is running"_s
                       : isLost(reply.errorName)   ? u"the ticker does not answer"_s
                                                   : message.errorMessage();
  return reply;
}
} // namespace

bool BusReply::isUnreachable() const {
  return errorName == NoBusErrorName || isNoTicker(errorName) ||
         errorName == "org.freedesktop.DBus.Error.Disconnected"_L1;
}

TickerClient::TickerClient(std::optional<QString> address, QObject* parent)
    : QObject(parent), bus_(std::move(address)), deadline_(UsualDeadlineMilliseconds) {
  qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
  connect(&bus_, &SessionBus::opened, this, [this] {
    if (isWatching_)
      observe();
  });
  connect(&bus_, &SessionBus::closed, this, [this] { setTickerPresent(false); });
}

TickerClient::~TickerClient() = default;

bool TickerClient::hasBus() {
  return bus_.open();
}

bool TickerClient::hasTicker() {
  if (isWatching_)
    return isTickerPresent_;
  if (!hasBus())
    return false;
  const QDBusMessage reply = bus_.connection().call(ownerQuestion(), QDBus::Block, deadline_);
  return reply.type() == QDBusMessage::ReplyMessage && reply.arguments().value(0).toBool();
}

void TickerClient::watch() {
  if (std::exchange(isWatching_, true))
    return;
  if (hasBus())
    observe();
}

void TickerClient::observe() {
  QDBusConnection connection = bus_.connection();
  connection.connect(BusDaemonName, BusDaemonPath, BusDaemonName, u"NameOwnerChanged"_s,
                     {QString(TickerBusName)}, QString(), this,
                     SLOT(ownerChanged(QString, QString, QString)));
  // Asked after subscribing, so that no change is missed.
  auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(ownerQuestion()), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](auto* finished) {
    const QDBusMessage reply = finished->reply();
    if (reply.type() == QDBusMessage::ReplyMessage)
      setTickerPresent(reply.arguments().value(0).toBool());
    finished->deleteLater();
  });
}

void TickerClient::ownerChanged(const QString& name, const QString& before, const QString& after) {
  if (name != TickerBusName)
    return;
  // One that takes over from another knows nothing of what the other was told.
  if (!before.isEmpty())
    setTickerPresent(false);
  setTickerPresent(!after.isEmpty());
}

void TickerClient::setTickerPresent(bool present) {
  if (std::exchange(isTickerPresent_, present) == present || !isWatching_)
    return;
  if (present)
    Q_EMIT tickerAppeared();
  else
    Q_EMIT tickerVanished();
}

QDBusMessage TickerClient::makeCall(const QString& method, const QVariantList& arguments) const {
  QDBusMessage message =
      QDBusMessage::createMethodCall(TickerBusName, TickerObjectPath, TickerInterface, method);
  message.setArguments(arguments);
  message.setAutoStartService(startsTicker_);
  return message;
}

BusReply TickerClient::call(const QDBusMessage& message) {
  if (!hasBus())
    return noBus();
  return readReply(bus_.connection().call(message, QDBus::Block, deadline_));
}

void TickerClient::call(const QDBusMessage& message, Callback callback) {
  if (!hasBus()) {
    QMetaObject::invokeMethod(
        this, [callback = std::move(callback)] { callback(noBus()); }, Qt::QueuedConnection);
    return;
  }
  auto* watcher =
      new QDBusPendingCallWatcher(bus_.connection().asyncCall(message, deadline_), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this,
          [callback = std::move(callback)](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            callback(readReply(finished->reply()));
          });
}

BusReply TickerClient::displayMessage(const QVariantMap& message) {
  return call(makeCall(u"DisplayMessage"_s, {message}));
}

void TickerClient::displayMessage(const QVariantMap& message, Callback callback) {
  call(makeCall(u"DisplayMessage"_s, {message}), std::move(callback));
}

BusReply TickerClient::displaySign(const QByteArray& archive, const QVariantMap& origin) {
  return call(makeCall(u"DisplaySignFrom"_s, {archive, origin}));
}

void TickerClient::displaySign(const QByteArray& archive, const QVariantMap& origin,
                               Callback callback) {
  call(makeCall(u"DisplaySignFrom"_s, {archive, origin}), std::move(callback));
}

BusReply TickerClient::removeSign(const QString& identifier) {
  return call(makeCall(u"RemoveSign"_s, {identifier}));
}

void TickerClient::removeSign(const QString& identifier, Callback callback) {
  call(makeCall(u"RemoveSign"_s, {identifier}), std::move(callback));
}

BusReply TickerClient::arrangeSigns(const QStringList& identifiers) {
  return call(makeCall(u"ArrangeSigns"_s, {identifiers}));
}

void TickerClient::arrangeSigns(const QStringList& identifiers, Callback callback) {
  call(makeCall(u"ArrangeSigns"_s, {identifiers}), std::move(callback));
}

BusReply TickerClient::run(const QStringList& arguments, const QString& folder, int standardInput) {
  QList<QDBusUnixFileDescriptor> descriptors;
  if (const QDBusUnixFileDescriptor descriptor(standardInput); descriptor.isValid())
    descriptors.append(descriptor);
  return call(makeCall(u"Run"_s, {arguments, folder, QVariant::fromValue(descriptors)}));
}

BusReply TickerClient::showQueue() {
  return call(makeCall(u"ShowQueue"_s, {}));
}

BusReply TickerClient::showSettings() {
  return call(makeCall(u"ShowSettings"_s, {}));
}

BusReply TickerClient::askRunning(const QString& method) {
  QDBusMessage message = makeCall(method, {});
  message.setAutoStartService(false);
  return call(message);
}

BusReply TickerClient::pause() {
  return askRunning(u"Pause"_s);
}

BusReply TickerClient::resume() {
  return askRunning(u"Resume"_s);
}

BusReply TickerClient::hide() {
  return askRunning(u"Hide"_s);
}

BusReply TickerClient::show() {
  return askRunning(u"Show"_s);
}

BusReply TickerClient::focus() {
  return askRunning(u"Focus"_s);
}

BusReply TickerClient::quit() {
  return askRunning(u"Quit"_s);
}

} // namespace zq::app
