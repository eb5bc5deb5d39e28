// How much other programs may send.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>

#include <array>
#include <cstddef>
#include <optional>

namespace zq::app {

// Who sent a message. Senders that give no identifier of their own count as one sender.
struct SenderKey {
  QString identifier; // "senderID"
  QString connection; // the unique name on the bus; empty for none
};

// How fast messages may come: `rate` a second in the long run, and `burst` at once after a rest.
struct FlowLimit {
  double rate = 0;
  double burst = 0;
};

// What one sender may do, or one connection, or all together.
struct SenderAllowance {
  FlowLimit messages;
  FlowLimit bytes;
  FlowLimit pixels;          // that are decoded, see WorkGate
  std::size_t signCount = 0; // queued at the same time
  qint64 memory = 0;         // bytes that they take, pictures decoded
};

// Nobody reads fifty new signs a second. A service that finds a restarted ticker sends what it has
// at once: twenty feeds of ten items. A core decodes some fifty million pixels a second.
inline constexpr SenderAllowance OneSender{
    {50, 200}, {4 << 20, 32 << 20}, {8e6, 64e6}, 500, qint64(128) << 20};
// A process may speak for several senders, as a service with several feeds does.
inline constexpr SenderAllowance OneConnection{
    {100, 400}, {8 << 20, 64 << 20}, {12e6, 96e6}, 1000, qint64(192) << 20};
// What this program stands without being slow, whoever sends it.
inline constexpr SenderAllowance AllSenders{
    {200, 800}, {16 << 20, 128 << 20}, {16e6, 128e6}, 2000, qint64(256) << 20};
// A picture and an archived text of the largest size, and everything else.
inline constexpr qsizetype LargestMessage = qsizetype(20) << 20;

// The rate and the size of messages, per sender, per connection and over all. A message that is
// refused takes nothing of any allowance. Memory is bounded, however many senders there are: those
// that have rested are forgotten, and where too many have not, further ones share one allowance.
//
// Times are those of a monotonic clock, in seconds. Thread: one.
class SenderLimits {
 public:
  // The most senders, and the most connections, that are told apart.
  static constexpr qsizetype MostKnown = 256;

  enum class Scope { Sender, Connection, All };
  struct Refusal {
    Scope scope;
    QString reason; // "more than 50 messages a second from one sender"
  };

  // Nothing where a message of so many bytes may pass at `time`; it is then counted.
  std::optional<Refusal> refusal(const SenderKey& sender, qsizetype bytes, double time);

  // Nothing where work of so many pixels, see WorkGate, may be done for a message that has passed;
  // it is then counted.
  std::optional<Refusal> workRefusal(const SenderKey& sender, qint64 pixels, double time);

  qsizetype knownCount() const { return senders_.known.size() + connections_.known.size(); }

 private:
  // What is left of a flow limit.
  class Bucket {
   public:
    bool isFull(const FlowLimit& limit, double time) const;
    bool has(double amount, const FlowLimit& limit, double time) const;
    void take(double amount, const FlowLimit& limit, double time);

   private:
    double level(const FlowLimit& limit, double time) const;
    double used_ = 0;
    double time_ = 0;
  };
  struct Account {
    Bucket messages;
    Bucket bytes;
    Bucket pixels;
  };
  struct Accounts {
    QHash<QString, Account> known;
    Account shared; // of those beyond MostKnown
    double lookedThrough = 0;
  };

  // An account with what it is held to.
  struct Part {
    Scope scope;
    Account* account;
    const SenderAllowance& allowance;
  };
  // From the narrowest one, which names the culprit.
  std::array<Part, 3> partsOf(const SenderKey& sender, double time);
  static std::optional<Refusal> refusalOf(const Part& part, qsizetype bytes, double time);

  static Account& accountOf(const QString& name, Accounts& accounts,
                            const SenderAllowance& allowance, double time);

  Accounts senders_;
  Accounts connections_;
  Account all_;
};

} // namespace zq::app
