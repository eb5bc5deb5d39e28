#include "app/services/SignSender.h"

#include "app/intake/sign_archives.h"
#include "zqticker/platform/archiving/PortCoder.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/message_keys.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QLoggingCategory>
#include <QtCore/QPointer>

#include <algorithm>
#include <cmath>
#include <exception>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
Q_LOGGING_CATEGORY(servicesLog, "zqticker.services")

// Removals that wait for a ticker.
constexpr std::size_t MostRemovals = 10'000;
constexpr qsizetype LongestIdentifier = 512;

std::size_t charactersIn(const ZQTickerSign& sign) {
  const auto* combo = dynamic_cast<const ZQComboTickerSign*>(&sign);
  return combo ? static_cast<std::size_t>(combo->text().toString().size()) : 0;
}

QByteArray archiveOf(const Ref<ZQTickerSign>& sign) {
  PortCoder coder(PortCoder::Passing::ByCopy);
  return portMessageItem(sign, coder).archive;
}
} // namespace

SignSender::SignSender(TickerLink& link, const QString& senderIdentifier, SendLimits limits,
                       std::function<double()> seconds)
    : link_(link), senderIdentifier_(senderIdentifier), limits_(limits),
      seconds_(std::move(seconds)), callsLeft_(limits.burst), callsLeftSeconds_(seconds_()),
      nextPause_(limits.shortestPause) {
  pause_.setSingleShot(true);
  connect(&pause_, &QTimer::timeout, this, &SignSender::sendNext);
  connect(&link_, &TickerLink::appeared, this, &SignSender::startAnew);
  connect(&link_, &TickerLink::vanished, this, [this] {
    underWay_.reset();
    pause_.stop();
    if (isFinishing_)
      Q_EMIT finished();
  });
}

SignSender::~SignSender() = default;

// Long ones are told apart by their hash.
QString SignSender::fullIdentifier(const QString& identifier) const {
  if (identifier.size() <= LongestIdentifier)
    return senderIdentifier_ + u' ' + identifier;
  const QByteArray hash =
      QCryptographicHash::hash(identifier.toUtf8(), QCryptographicHash::Sha1).toHex();
  return senderIdentifier_ + u' ' + QString::fromLatin1(hash);
}

bool SignSender::isEndless(const Parcel& parcel) {
  return parcel.sign->loopCount() < 0;
}

bool SignSender::isUnderWay(const Parcel& parcel) const {
  return underWay_ && underWay_->kind == Call::Kind::Show &&
         underWay_->identifier == parcel.sign->identifier();
}

Ref<ZQTickerSign> SignSender::makeTextSign(const QString& text) {
  return ZQComboTickerSign::make(text, nullptr);
}

void SignSender::add(Ref<ZQTickerSign> sign, const SignOrigin& origin, Order order) {
  if (isFinishing_)
    return;
  const QString identifier = fullIdentifier(sign->identifier().value_or(QString()));
  sign->setIdentifier(identifier);
  Parcel parcel{std::move(sign), origin, order, 0, ++versionCount_};
  parcel.origin.senderIdentifier = senderIdentifier_;
  parcel.characters = charactersIn(*parcel.sign);
  if (const auto known = known_.constFind(identifier); known != known_.constEnd()) {
    parcel.mayBeThere = (*known)->mayBeThere;
    erase(*known);
  }
  if (order == Order::Arrival) {
    ++arrivalCount_;
    arrivalCharacters_ += parcel.characters;
  }
  known_.insert(identifier, waiting_.insert(waiting_.end(), std::move(parcel)));
  dropSurplus();
  sendNext();
}

void SignSender::replace(Ref<ZQTickerSign> sign, const SignOrigin& origin) {
  const QString identifier = fullIdentifier(sign->identifier().value_or(QString()));
  const auto known = known_.constFind(identifier);
  if (known == known_.constEnd())
    return;
  Parcel& parcel = **known;
  sign->setIdentifier(identifier);
  parcel.sign = std::move(sign);
  parcel.origin = origin;
  parcel.origin.senderIdentifier = senderIdentifier_;
  parcel.version = ++versionCount_;
  if (parcel.isTaken && isEndless(parcel)) {
    parcel.isTaken = false;
    waiting_.splice(waiting_.end(), shown_, *known);
  }
  sendNext();
}

void SignSender::remove(const QString& identifier) {
  if (isFinishing_)
    return;
  const QString full = fullIdentifier(identifier);
  const auto known = known_.constFind(full);
  const bool mayBeThere = known == known_.constEnd() || (*known)->mayBeThere;
  if (known != known_.constEnd())
    erase(*known);
  if (mayBeThere)
    takeBack(full);
  sendNext();
}

void SignSender::arrange(const QStringList& identifiers) {
  if (isFinishing_)
    return;
  QStringList order;
  for (const QString& identifier : identifiers)
    order.append(fullIdentifier(identifier));
  order_ = order;
  isOrderDue_ = true;
  sendNext();
}

bool SignSender::hasWaiting(const QString& identifier) {
  return known_.contains(fullIdentifier(identifier));
}

void SignSender::erase(Parcels::iterator parcel) {
  if (parcel->order == Order::Arrival) {
    --arrivalCount_;
    arrivalCharacters_ -= parcel->characters;
  }
  known_.remove(*parcel->sign->identifier());
  (parcel->isTaken ? shown_ : waiting_).erase(parcel);
}

// What has been shown goes first, then the oldest that waits; the newest one stays.
void SignSender::dropSurplus() {
  while (arrivalCount_ > 1 &&
         (arrivalCount_ > limits_.mostSigns || arrivalCharacters_ > limits_.mostCharacters))
    if (!dropOldest(shown_) && !dropOldest(waiting_))
      return;
}

bool SignSender::dropOldest(Parcels& parcels) {
  const auto oldest = std::find_if(parcels.begin(), parcels.end(), [this](const Parcel& parcel) {
    return parcel.order == Order::Arrival && !isUnderWay(parcel) && &parcel != &waiting_.back();
  });
  if (oldest == parcels.end())
    return false;
  if (oldest->mayBeThere)
    takeBack(*oldest->sign->identifier());
  erase(oldest);
  ++droppedCount_;
  return true;
}

void SignSender::takeBack(const QString& identifier) {
  removals_.push_back(identifier);
  if (removals_.size() > MostRemovals)
    removals_.pop_front();
}

// The arranged signs in their order, then the others, those that were shown before what was not.
void SignSender::startAnew() {
  underWay_.reset();
  pause_.stop();
  nextPause_ = limits_.shortestPause;
  for (Parcel& parcel : shown_)
    parcel.isTaken = false;
  waiting_.splice(waiting_.begin(), shown_);
  QHash<QString, qsizetype> places;
  for (qsizetype i = 0; i < order_.size(); ++i)
    places.insert(order_[i], i);
  const auto placeOf = [&](const Parcel& parcel) {
    return parcel.order == Order::Arranged ? places.value(*parcel.sign->identifier(), order_.size())
                                           : order_.size() + 1;
  };
  waiting_.sort([&](const Parcel& a, const Parcel& b) { return placeOf(a) < placeOf(b); });
  isOrderDue_ = !order_.isEmpty();
  sendNext();
}

void SignSender::finish(EndlessSigns endless) {
  isFinishing_ = true;
  isOrderDue_ = false;
  pause_.stop();
  if (endless == EndlessSigns::AreTakenBack)
    for (const Parcels* parcels : {&shown_, &waiting_})
      for (const Parcel& parcel : *parcels)
        if (parcel.mayBeThere && isEndless(parcel))
          removals_.push_back(*parcel.sign->identifier());
  known_.clear();
  waiting_.clear();
  shown_.clear();
  if (link_.isThere())
    sendNext();
  else
    Q_EMIT finished();
}

std::chrono::milliseconds SignSender::removalTime() const {
  const double seconds = static_cast<double>(removals_.size()) / limits_.rate;
  return std::chrono::milliseconds(std::llround(seconds * 1000));
}

void SignSender::sendNext() {
  while (!underWay_ && !pause_.isActive() && link_.isThere()) {
    const bool hasNothing = removals_.empty() && waiting_.empty() && !isOrderDue_;
    if (hasNothing) {
      if (isFinishing_)
        Q_EMIT finished();
      return;
    }
    if (!mayCall())
      return;
    if (!removals_.empty()) {
      const QString identifier = removals_.front();
      removals_.pop_front();
      link_.remove(identifier, beginCall(Call::Kind::Remove, identifier));
    } else if (!waiting_.empty()) {
      sendSign();
    } else {
      isOrderDue_ = false;
      link_.arrange(order_, beginCall(Call::Kind::Arrange, QString()));
    }
  }
}

// Otherwise the time will come.
bool SignSender::mayCall() {
  const double now = seconds_();
  callsLeft_ = std::min(callsLeft_ + (now - callsLeftSeconds_) * limits_.rate, limits_.burst);
  callsLeftSeconds_ = now;
  if (callsLeft_ < 1) {
    pause_.start(static_cast<int>(std::ceil((1 - callsLeft_) / limits_.rate * 1000)));
    return false;
  }
  --callsLeft_;
  return true;
}

// Sends the first sign that waits. One that cannot be archived goes.
void SignSender::sendSign() {
  Parcel& parcel = waiting_.front();
  QByteArray archive;
  try {
    archive = archiveOf(parcel.sign);
  } catch (const std::exception& exception) {
    tell(u"a sign cannot be sent: "_s + QString::fromUtf8(exception.what()));
    erase(waiting_.begin());
    return;
  }
  if (archive.size() > LargestMessageArchive) {
    tell(u"a sign cannot be sent: larger than %1 MiB"_s.arg(LargestMessageArchive >> 20));
    erase(waiting_.begin());
    return;
  }
  QVariantMap origin{{ZQTickerMessageSenderIdentifierKey, parcel.origin.senderIdentifier},
                     {ZQTickerMessageSenderNameKey, parcel.origin.senderName}};
  if (parcel.order == Order::Arranged)
    origin.insert(u"arranged"_s, true);
  parcel.mayBeThere = true;
  link_.show(archive, origin,
             beginCall(Call::Kind::Show, *parcel.sign->identifier(), parcel.version));
}

TickerLink::Done SignSender::beginCall(Call::Kind kind, const QString& identifier,
                                       std::uint64_t version) {
  underWay_ = Call{kind, identifier, version, ++callCount_};
  return [sender = QPointer(this), number = callCount_](const TickerReply& reply) {
    if (sender)
      sender->take(number, reply);
  };
}

void SignSender::take(std::uint64_t number, const TickerReply& reply) {
  if (!underWay_ || underWay_->number != number)
    return;
  const Call call = *underWay_;
  underWay_.reset();
  switch (reply.kind) {
  case TickerReply::Kind::Refused:
    tell(u"the ticker refuses a sign: "_s + reply.message);
    [[fallthrough]];
  case TickerReply::Kind::Taken:
    nextPause_ = limits_.shortestPause;
    settle(call);
    break;
  case TickerReply::Kind::TooMuch:
  case TickerReply::Kind::Lost:
    undo(call);
    pause_.start(nextPause_);
    nextPause_ = std::min(2 * nextPause_, limits_.longestPause);
    break;
  }
  sendNext();
}

void SignSender::settle(const Call& call) {
  if (call.kind != Call::Kind::Show)
    return;
  const auto known = known_.constFind(call.identifier);
  // It may have been removed or changed meanwhile.
  if (known == known_.constEnd() || (*known)->version != call.version)
    return;
  const Parcels::iterator parcel = *known;
  if (parcel->order != Order::Arranged && !isEndless(*parcel))
    return erase(parcel);
  parcel->isTaken = true;
  shown_.splice(shown_.end(), waiting_, parcel);
}

void SignSender::undo(const Call& call) {
  if (call.kind == Call::Kind::Remove)
    removals_.push_front(call.identifier);
  else if (call.kind == Call::Kind::Arrange)
    isOrderDue_ = !isFinishing_;
}

void SignSender::tell(const QString& refusal) {
  if (refusal == toldRefusal_)
    return;
  toldRefusal_ = refusal;
  qCWarning(servicesLog).noquote() << refusal;
}

} // namespace zq::app
