#include "app/intake/SenderLimits.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// How often senders that have rested are looked for, in seconds.
constexpr double LookInterval = 1;

QString nameOf(SenderLimits::Scope scope) {
  switch (scope) {
  case SenderLimits::Scope::Sender:
    return u"one sender"_s;
  case SenderLimits::Scope::Connection:
    return u"one program"_s;
  case SenderLimits::Scope::All:
    break;
  }
  return u"all senders"_s;
}
} // namespace

double SenderLimits::Bucket::level(const FlowLimit& limit, double time) const {
  const double rested = std::max(time - time_, 0.0) * limit.rate;
  return limit.burst - std::max(used_ - rested, 0.0);
}

bool SenderLimits::Bucket::isFull(const FlowLimit& limit, double time) const {
  return level(limit, time) >= limit.burst;
}

bool SenderLimits::Bucket::has(double amount, const FlowLimit& limit, double time) const {
  return amount <= level(limit, time);
}

void SenderLimits::Bucket::take(double amount, const FlowLimit& limit, double time) {
  used_ = limit.burst - level(limit, time) + amount;
  time_ = std::max(time, time_);
}

SenderLimits::Account& SenderLimits::accountOf(const QString& name, Accounts& accounts,
                                               const SenderAllowance& allowance, double time) {
  if (const auto found = accounts.known.find(name); found != accounts.known.end())
    return *found;
  if (accounts.known.size() >= MostKnown && time >= accounts.lookedThrough + LookInterval) {
    accounts.lookedThrough = time;
    accounts.known.removeIf([&](const auto& known) {
      const Account& account = known.value();
      return account.messages.isFull(allowance.messages, time) &&
             account.bytes.isFull(allowance.bytes, time) &&
             account.pixels.isFull(allowance.pixels, time);
    });
  }
  return accounts.known.size() < MostKnown ? accounts.known[name] : accounts.shared;
}

std::array<SenderLimits::Part, 3> SenderLimits::partsOf(const SenderKey& sender, double time) {
  return {{{Scope::Sender, &accountOf(sender.identifier, senders_, OneSender, time), OneSender},
           {Scope::Connection, &accountOf(sender.connection, connections_, OneConnection, time),
            OneConnection},
           {Scope::All, &all_, AllSenders}}};
}

std::optional<SenderLimits::Refusal> SenderLimits::refusalOf(const Part& part, qsizetype bytes,
                                                             double time) {
  const SenderAllowance& allowance = part.allowance;
  if (!part.account->messages.has(1, allowance.messages, time))
    return Refusal{part.scope, u"more than %1 messages a second from %2"_s.arg(
                                   QString::number(allowance.messages.rate), nameOf(part.scope))};
  if (!part.account->bytes.has(double(bytes), allowance.bytes, time))
    return Refusal{part.scope,
                   u"more than %1 MiB a second from %2"_s.arg(
                       QString::number(allowance.bytes.rate / (1 << 20)), nameOf(part.scope))};
  return std::nullopt;
}

std::optional<SenderLimits::Refusal> SenderLimits::refusal(const SenderKey& sender, qsizetype bytes,
                                                           double time) {
  if (bytes > LargestMessage)
    return Refusal{Scope::Sender, u"a message of more than %1 MiB"_s.arg(LargestMessage >> 20)};
  // Accounts of strangers are opened only where all have room.
  if (!senders_.known.contains(sender.identifier) &&
      !connections_.known.contains(sender.connection))
    if (auto refusal = refusalOf({Scope::All, &all_, AllSenders}, bytes, time))
      return refusal;
  const std::array<Part, 3> parts = partsOf(sender, time);
  for (const Part& part : parts)
    if (auto refusal = refusalOf(part, bytes, time))
      return refusal;
  for (const Part& part : parts) {
    part.account->messages.take(1, part.allowance.messages, time);
    part.account->bytes.take(double(bytes), part.allowance.bytes, time);
  }
  return std::nullopt;
}

std::optional<SenderLimits::Refusal> SenderLimits::workRefusal(const SenderKey& sender,
                                                               qint64 pixels, double time) {
  const std::array<Part, 3> parts = partsOf(sender, time);
  for (const Part& part : parts)
    if (!part.account->pixels.has(double(pixels), part.allowance.pixels, time))
      return Refusal{part.scope,
                     u"more than %1 million pixels a second to decode from %2"_s.arg(
                         QString::number(part.allowance.pixels.rate / 1e6), nameOf(part.scope))};
  for (const Part& part : parts)
    part.account->pixels.take(double(pixels), part.allowance.pixels, time);
  return std::nullopt;
}

} // namespace zq::app
