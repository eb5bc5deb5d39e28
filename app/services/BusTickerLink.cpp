#include "app/services/BusTickerLink.h"

#include "app/bus/TickerClient.h"
#include "app/bus/bus_names.h"

#include <QtCore/QPointer>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// The bus's own, where no reply comes.
bool isWithoutReply(const QString& errorName) {
  return errorName == "org.freedesktop.DBus.Error.NoReply"_L1 ||
         errorName == "org.freedesktop.DBus.Error.Timeout"_L1 ||
         errorName == "org.freedesktop.DBus.Error.TimedOut"_L1;
}

TickerClient::Callback callbackFor(BusTickerLink* link, TickerLink::Done done) {
  return [link = QPointer(link), done = std::move(done)](const BusReply& reply) {
    if (link)
      done(readBusReply(reply));
  };
}
} // namespace

TickerReply readBusReply(const BusReply& reply) {
  if (reply.ok)
    return {TickerReply::Kind::Taken, {}};
  if (reply.isUnreachable() || isWithoutReply(reply.errorName))
    return {TickerReply::Kind::Lost, {}};
  if (reply.errorName == TooMuchErrorName ||
      reply.errorName == "org.freedesktop.DBus.Error.LimitsExceeded"_L1)
    return {TickerReply::Kind::TooMuch, {}};
  return {TickerReply::Kind::Refused, reply.errorMessage};
}

BusTickerLink::BusTickerLink(TickerClient& client) : client_(client) {
  client_.setStartsTicker(false);
  connect(&client_, &TickerClient::tickerAppeared, this, [this] {
    isThere_ = true;
    Q_EMIT appeared();
  });
  connect(&client_, &TickerClient::tickerVanished, this, [this] {
    isThere_ = false;
    Q_EMIT vanished();
  });
  client_.watch();
}

BusTickerLink::~BusTickerLink() = default;

void BusTickerLink::show(const QByteArray& archive, const QVariantMap& origin, Done done) {
  client_.displaySign(archive, origin, callbackFor(this, std::move(done)));
}

void BusTickerLink::remove(const QString& identifier, Done done) {
  client_.removeSign(identifier, callbackFor(this, std::move(done)));
}

void BusTickerLink::arrange(const QStringList& identifiers, Done done) {
  client_.arrangeSigns(identifiers, callbackFor(this, std::move(done)));
}

} // namespace zq::app
