// A ticker that is another program as a receiver of signs.
#pragma once

#include "app/display/FrameClock.h"
#include "app/services/SignReceiver.h"
#include "app/services/TickerLink.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <optional>

namespace zq::app {

struct SendLimits {
  // The most signs in the order of arrival that are kept, and the most characters in them; the
  // newest ones stay.
  std::size_t mostSigns = 1000;
  std::size_t mostCharacters = 16'000'000;
  // Calls at once after a rest, and a second in the long run: less than a ticker takes of one
  // sender.
  double burst = 150;
  double rate = 40;
  // How long to leave a ticker alone that has enough for now. Doubles each time, from the shortest
  // pause to the longest, until it takes something.
  std::chrono::milliseconds shortestPause = std::chrono::milliseconds(250);
  std::chrono::milliseconds longestPause = std::chrono::seconds(10);
};

// What becomes of the signs that are shown without end once their sender ends.
enum class EndlessSigns { AreTakenBack, Stay };

// Sends signs to a ticker, by value, and waits for it where there is none. A ticker that appears
// gets all signs that are to be shown now: the arranged ones, those that are shown without end, and
// what has not been taken by a ticker yet.
//
// One call is under way at a time, so that a sign that is refused for the moment is not overtaken:
// the next call is the same one again, after a pause. Calls are spread over time, since a ticker
// refuses and logs floods. What is removed goes first, since it makes
// room. A ticker's other refusals are told in a log line (category zqticker.services), and the sign
// goes.
//
// An arranged sign that is shown a limited number of times is not sent again when it changes: it
// would be shown anew.
//
// Thread: main.
class SignSender : public QObject, public SignReceiver {
  Q_OBJECT

 public:
  // `senderIdentifier` stands in the origin of all signs and before their identifiers, so that
  // they take the places of those that the same sender left when it ended. `link` must outlive the
  // object. `seconds` is a monotonic clock.
  SignSender(TickerLink& link, const QString& senderIdentifier, SendLimits limits = {},
             std::function<double()> seconds = FrameClock::now);
  ~SignSender() override;

  // A combo sign without a picture: it is drawn in the font and color of the display it comes to.
  platform::Ref<ZQTickerSign> makeTextSign(const QString& text) override;
  void add(platform::Ref<ZQTickerSign> sign, const SignOrigin& origin, Order order) override;
  void replace(platform::Ref<ZQTickerSign> sign, const SignOrigin& origin) override;
  void remove(const QString& identifier) override;
  void arrange(const QStringList& identifiers) override;
  // One that the ticker has taken is not known any more where it is shown a limited number of
  // times.
  bool hasWaiting(const QString& identifier) override;

  // Whether signs in the order of arrival are dropped for new ones.
  bool isFull() const { return arrivalCount_ >= limits_.mostSigns; }
  std::uint64_t droppedCount() const { return droppedCount_; }

  // Sends nothing more, takes back what is said, and emits `finished` once the ticker has answered,
  // from the event loop; at once where there is none.
  void finish(EndlessSigns endless);
  // How long it takes at most to send what is to be taken back, as long as the ticker answers.
  std::chrono::milliseconds removalTime() const;
  Q_SIGNAL void finished();

 private:
  struct Parcel {
    platform::Ref<ZQTickerSign> sign;
    SignOrigin origin;
    Order order = Order::Arrival;
    std::size_t characters = 0;
    std::uint64_t version = 0; // another one for each change
    bool isTaken = false;      // stands in `shown_`
    bool mayBeThere = false;   // was sent at least once
  };
  using Parcels = std::list<Parcel>;

  struct Call {
    enum class Kind { Show, Remove, Arrange };
    Kind kind;
    QString identifier;
    std::uint64_t version = 0;
    std::uint64_t number = 0;
  };

  QString fullIdentifier(const QString& identifier) const;
  static bool isEndless(const Parcel& parcel);
  bool isUnderWay(const Parcel& parcel) const;
  void erase(Parcels::iterator parcel);
  void dropSurplus();
  bool dropOldest(Parcels& parcels);
  void takeBack(const QString& identifier);
  void startAnew();
  void sendNext();
  bool mayCall();
  void sendSign();
  TickerLink::Done beginCall(Call::Kind kind, const QString& identifier, std::uint64_t version = 0);
  void take(std::uint64_t number, const TickerReply& reply);
  void settle(const Call& call);
  void undo(const Call& call);
  void tell(const QString& refusal);

  TickerLink& link_;
  QString senderIdentifier_;
  SendLimits limits_;
  Parcels waiting_; // to be sent, in this order
  Parcels shown_;   // taken by the ticker, for the next one
  QHash<QString, Parcels::iterator> known_;
  std::size_t arrivalCount_ = 0;
  std::size_t arrivalCharacters_ = 0;
  std::uint64_t droppedCount_ = 0;
  std::deque<QString> removals_; // to be sent
  QStringList order_;
  bool isOrderDue_ = false;
  std::optional<Call> underWay_;
  std::uint64_t callCount_ = 0;
  std::uint64_t versionCount_ = 0;
  std::function<double()> seconds_;
  double callsLeft_;        // of the burst
  double callsLeftSeconds_; // when that was so
  QTimer pause_;
  std::chrono::milliseconds nextPause_;
  QString toldRefusal_;
  bool isFinishing_ = false;
};

} // namespace zq::app
