#include "app/intake/MessageIntake.h"

#include "app/commands/failures.h"
#include "app/intake/MessageValues.h"
#include "app/intake/message_pictures.h"
#include "app/intake/sign_archives.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQTickerSign.h"
#include "zqticker/signs/message_keys.h"

#include <QtCore/QLoggingCategory>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
Q_LOGGING_CATEGORY(messageLog, "zqticker.messages")

const QString ArrangedKey = u"arranged"_s;

// What a string of the dictionary says before it is checked; long ones are refused later.
QString peek(const QVariantMap& dictionary, const QString& key) {
  const QVariant value = dictionary.value(key);
  return value.typeId() == QMetaType::QString ? value.toString().left(LongestIdentifier)
                                              : QString();
}

SenderKey senderOf(const QVariantMap& dictionary, const QString& connection) {
  return {peek(dictionary, ZQTickerMessageSenderIdentifierKey), connection};
}

QString nameOf(const SenderKey& sender) {
  if (sender.identifier.isEmpty())
    return sender.connection.isEmpty() ? u"an unknown sender"_s : sender.connection;
  return quotedForMessage(sender.identifier);
}
} // namespace

LimitError::~LimitError() = default;

MessageIntake::MessageIntake(Host host, QObject* parent) : QObject(parent), host_(std::move(host)) {
  reportTimer_.setSingleShot(true);
  connect(&reportTimer_, &QTimer::timeout, this, &MessageIntake::reportRefusals);
}

MessageIntake::~MessageIntake() = default;

ArrivingSign MessageIntake::takeMessage(const QVariantMap& dictionary, const QString& connection) {
  const SenderKey sender = senderOf(dictionary, connection);
  admit(sender, byteCountOf(dictionary, LargestMessage));
  // A queue that is full costs no decoding.
  if (const auto refusal = held_.refusal(sender, peek(dictionary, ZQTickerMessageIdentifierKey), 0))
    refuse(sender, *refusal);
  const auto draft = std::make_shared<MessageDraft>(dictionary, gateFor(sender));
  ArrivingSign arriving;
  if (draft->undecodedPixels() > MostPixelsAtOnce)
    arriving.decode = [draft] { draft->decode(); };
  arriving.show = [this, draft, sender] {
    const DisplayMessage message = draft->message(host_.style());
    return hold(message.sign, message.origin, Order::Free, sender);
  };
  return arriving;
}

ArrivingSign MessageIntake::takeSign(const QByteArray& archive, const QVariantMap& origin,
                                     const QString& connection) {
  const SenderKey sender = senderOf(origin, connection);
  admit(sender, archive.size() + byteCountOf(origin, LargestMessage));
  const SignOrigin readOrigin = app::readOrigin(origin);
  const bool isArranged = MessageValues(origin).boolean(ArrangedKey).value_or(false);
  const platform::Ref<ZQTickerSign> sign = unarchiveSign(archive, gateFor(sender));
  ArrivingSign arriving;
  if (const auto picture = pictureOf(*sign); pixelCountOf(picture) > MostPixelsAtOnce)
    arriving.decode = [picture] { isWhole(*picture); };
  arriving.show = [this, sign, readOrigin, isArranged, sender] {
    checkSign(*sign);
    // As in a message, an empty one identifies nothing.
    if (sign->identifier() == QString())
      sign->setIdentifier(std::nullopt);
    return hold(sign, readOrigin, isArranged ? Order::Arranged : Order::Free, sender);
  };
  return arriving;
}

void MessageIntake::admitCall(qsizetype bytes, const QString& connection) {
  admit({QString(), connection}, bytes);
}

void MessageIntake::admit(const SenderKey& sender, qsizetype bytes) {
  if (const auto refusal = limits_.refusal(sender, bytes, host_.time()))
    refuse(sender, *refusal);
}

WorkGate MessageIntake::gateFor(const SenderKey& sender) {
  return [this, sender](qint64 pixels) {
    if (const auto refusal = limits_.workRefusal(sender, pixels, host_.time()))
      refuse(sender, *refusal);
  };
}

void MessageIntake::refuse(const SenderKey& sender, const SenderLimits::Refusal& refusal) {
  using Scope = SenderLimits::Scope;
  const QString who = refusal.scope == Scope::Sender       ? nameOf(sender)
                      : refusal.scope == Scope::Connection ? sender.connection
                                                           : u"all senders"_s;
  note(u"messages refused from "_s + who, refusal.reason);
  throw LimitError(refusal.reason);
}

QString MessageIntake::hold(const platform::Ref<ZQTickerSign>& sign, const SignOrigin& origin,
                            Order order, const SenderKey& sender) {
  const qint64 memory = memoryOf(*sign);
  if (const auto refusal = held_.refusal(sender, sign->identifier().value_or(QString()), memory))
    refuse(sender, *refusal);
  const QString identifier = host_.show(sign, origin, order);
  held_.add(sign, sender, memory);
  return identifier;
}

void MessageIntake::note(const QString& subject, const QString& detail) {
  const QString line = refusals_.note(subject, detail, host_.time());
  if (line.isEmpty())
    return;
  qCWarning(messageLog, "%s", qUtf8Printable(line));
  reportRefusals();
}

void MessageIntake::reportRefusals() {
  const double time = host_.time();
  const QStringList lines = refusals_.takeDue(time);
  for (const QString& line : lines)
    qCWarning(messageLog, "%s", qUtf8Printable(line));
  const double due = refusals_.nextDue();
  if (std::isinf(due)) {
    reportTimer_.stop();
    return;
  }
  // Not before the time by rounding.
  const auto wait = std::chrono::milliseconds(std::llround(std::ceil((due - time) * 1000)) + 1);
  reportTimer_.start(std::max(wait, std::chrono::milliseconds(1)));
}

} // namespace zq::app
