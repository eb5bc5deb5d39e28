#include "app/bus/TickerService.h"

#include "app/bus/BusFailure.h"
#include "app/bus/BusObject.h"
#include "app/bus/TickerReceiver.h"
#include "app/bus/bus_names.h"
#include "app/bus/receive_limits.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QLoggingCategory>
#include <QtDBus/QDBusMessage>

#include <exception>
#include <new>
#include <system_error>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
Q_LOGGING_CATEGORY(busLog, "zqticker.bus")

// Of a turn of the event loop; a frame of 60 a second has 16.
constexpr int MillisecondsAtOnce = 4;
constexpr int CallMilliseconds = 10'000;
constexpr int FarewellMilliseconds = 1000;

// Requests and replies of the bus for names.
constexpr uint DoNotQueue = 4;
constexpr uint BecameOwner = 1;
constexpr uint IsOwnerAlready = 4;

QDBusMessage busCall(const QString& method, const QVariantList& arguments) {
  QDBusMessage call =
      QDBusMessage::createMethodCall(BusDaemonName, BusDaemonPath, BusDaemonName, method);
  call.setArguments(arguments);
  return call;
}

// The sign that is to be displayed; nothing where something else is asked.
std::optional<ArrivingSign> arrivalOf(const BusRequest& request, TickerReceiver& receiver) {
  const BusSender sender{request.sender, request.bytes};
  switch (request.kind) {
  case BusRequest::Kind::DisplayMessage:
    return receiver.displayMessage(request.dictionary, sender);
  case BusRequest::Kind::DisplayNotification:
    return receiver.displayNotification(request.dictionary, sender);
  case BusRequest::Kind::DisplaySign:
    return receiver.displaySign(request.archive, request.dictionary, sender);
  default:
    return std::nullopt;
  }
}

// Does what else is asked; the reply's arguments. Quitting comes after the reply.
QVariantList perform(TickerReceiver& receiver, const BusRequest& request) {
  const BusSender sender{request.sender, request.bytes};
  switch (request.kind) {
  case BusRequest::Kind::RemoveSign:
    return {receiver.removeSign(request.text, sender)};
  case BusRequest::Kind::ArrangeSigns:
    receiver.arrangeSigns(request.strings, sender);
    break;
  case BusRequest::Kind::Run:
    receiver.run(request.strings, request.text, request.descriptor);
    break;
  case BusRequest::Kind::ShowQueue:
    receiver.showQueue();
    break;
  case BusRequest::Kind::ShowSettings:
    receiver.showSettings();
    break;
  case BusRequest::Kind::Pause:
    receiver.pause();
    break;
  case BusRequest::Kind::Resume:
    receiver.resume();
    break;
  case BusRequest::Kind::Hide:
    receiver.hide();
    break;
  case BusRequest::Kind::Show:
    receiver.show();
    break;
  case BusRequest::Kind::Focus:
    receiver.focus();
    break;
  case BusRequest::Kind::DisplayMessage:
  case BusRequest::Kind::DisplayNotification:
  case BusRequest::Kind::DisplaySign:
  case BusRequest::Kind::Quit:
    break;
  }
  return {};
}

void refuse(const PendingRequest& pending, const QString& name, const QString& message) {
  // A notification has no sender that waits.
  if (pending.message.isReplyRequired())
    pending.connection.send(pending.message.createErrorReply(name, message));
}
} // namespace

TickerService::TickerService(std::optional<QString> address, QObject* parent)
    : QObject(parent), bus_(std::move(address)),
      object_(std::make_unique<BusObject>(inbox_, [this] {
        QMetaObject::invokeMethod(
            this, [this] { turn_.start(); }, Qt::QueuedConnection);
      })) {
  turn_.setSingleShot(true);
  turn_.setInterval(0);
  connect(&turn_, &QTimer::timeout, this, &TickerService::handOut);
  thread_.setObjectName(u"zqticker-bus"_s);
  object_->moveToThread(&thread_);
  thread_.start();
  connect(&bus_, &SessionBus::opened, this, &TickerService::rejoin);
  connect(&bus_, &SessionBus::closed, this, [this] { ownsName_ = isExported_ = false; });
}

TickerService::~TickerService() {
  QDBusConnection connection = bus_.connection();
  connection.unregisterObject(TickerObjectPath);
  // Waits for the reply: whoever asks for the name afterwards gets it.
  if (isExported_)
    connection.call(busCall(u"ReleaseName"_s, {QString(TickerBusName)}), QDBus::Block,
                    FarewellMilliseconds);
  thread_.quit();
  thread_.wait();
  if (decoder_.joinable())
    decoder_.join();
}

TickerService::Start TickerService::start() {
  return bus_.open() ? join(false) : Start::NoBus;
}

// The object first: calls that made the bus start this program come with the name.
TickerService::Start TickerService::join(bool waitsForName) {
  QDBusConnection connection = bus_.connection();
  if (!std::exchange(isExported_, true)) {
    liftReceiveLimits(connection);
    connection.registerVirtualObject(TickerObjectPath, object_.get());
    connection.connect(BusDaemonName, BusDaemonPath, BusDaemonName, u"NameAcquired"_s, this,
                       SLOT(nameAcquired(QString)));
    connection.connect(BusDaemonName, BusDaemonPath, BusDaemonName, u"NameLost"_s, this,
                       SLOT(nameLost(QString)));
  }
  const QDBusMessage reply = connection.call(
      busCall(u"RequestName"_s, {QString(TickerBusName), waitsForName ? 0u : DoNotQueue}),
      QDBus::Block, CallMilliseconds);
  const uint result = reply.arguments().value(0).toUInt();
  ownsName_ = result == BecameOwner || result == IsOwnerAlready;
  if (ownsName_ || waitsForName)
    connection.connect(QString(), QString(), TickerInterface, DisplayMessageSignal, object_.get(),
                       SLOT(notified(QDBusMessage)));
  if (reply.type() != QDBusMessage::ReplyMessage)
    return Start::NoBus;
  return ownsName_ ? Start::IsOwner : Start::IsTaken;
}

void TickerService::rejoin() {
  if (join(true) == Start::IsTaken)
    qCWarning(busLog).noquote()
        << u"another ticker receives messages from other programs until it ends"_s;
}

void TickerService::nameAcquired(const QString& name) {
  if (name == TickerBusName)
    ownsName_ = true;
}

void TickerService::nameLost(const QString& name) {
  if (name == TickerBusName)
    ownsName_ = false;
}

void TickerService::setReceiver(TickerReceiver* receiver) {
  if (receiver != receiver_)
    if (const auto abandoned = std::exchange(arriving_, std::nullopt))
      refuse(abandoned->pending, FailedErrorName, u"the ticker ends"_s);
  receiver_ = receiver;
  turn_.start();
}

void TickerService::handOut() {
  if (isHandingOut_)
    return;
  isHandingOut_ = true;
  const QDeadlineTimer deadline(MillisecondsAtOnce, Qt::PreciseTimer);
  bool isEmpty = false;
  while (receiver_ && !isEmpty && !decoder_.joinable() && !deadline.hasExpired()) {
    const std::optional<PendingRequest> pending = inbox_.take();
    isEmpty = !pending;
    if (pending)
      take(*pending);
  }
  isHandingOut_ = false;
  // Timers, frames and the user's events first.
  if (receiver_ && !isEmpty && !decoder_.joinable())
    turn_.start();
}

void TickerService::take(const PendingRequest& pending) {
  answer(pending, [&]() -> std::optional<QVariantList> {
    const std::optional<ArrivingSign> sign = arrivalOf(pending.request, *receiver_);
    if (!sign)
      return perform(*receiver_, pending.request);
    if (sign->decode && startDecoding(pending, *sign))
      return std::nullopt;
    return QVariantList{sign->show ? sign->show() : QString()};
  });
}

// Whether there is a thread for it.
bool TickerService::startDecoding(const PendingRequest& pending, const ArrivingSign& sign) {
  arriving_.emplace(Arriving{pending, sign.show});
  try {
    decoder_ = std::thread([this, decode = sign.decode] {
      try {
        decode();
      } catch (const std::exception&) {
        // It comes again when the sign is shown.
      }
      QMetaObject::invokeMethod(this, &TickerService::finishDecoding, Qt::QueuedConnection);
    });
  } catch (const std::system_error&) {
    arriving_.reset();
    return false;
  }
  return true;
}

void TickerService::finishDecoding() {
  decoder_.join();
  if (const auto arriving = std::exchange(arriving_, std::nullopt))
    answer(arriving->pending, [&] { return QVariantList{arriving->show()}; });
  turn_.start();
}

void TickerService::answer(const PendingRequest& pending,
                           const std::function<std::optional<QVariantList>()>& act) {
  try {
    const std::optional<QVariantList> reply = act();
    if (!reply)
      return;
    if (pending.message.isReplyRequired())
      pending.connection.send(pending.message.createReply(*reply));
    if (pending.request.kind == BusRequest::Kind::Quit)
      receiver_->quit();
  } catch (const BusFailure& failure) {
    refuse(pending, failure.errorName(), failure.message());
  } catch (const std::bad_alloc&) {
    refuse(pending, TooMuchErrorName, u"out of memory"_s);
  } catch (const std::exception& exception) {
    refuse(pending, FailedErrorName, QString::fromUtf8(exception.what()));
  }
}

} // namespace zq::app
