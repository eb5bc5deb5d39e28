// A program that talks to the running ticker.
#pragma once

#include "app/bus/SessionBus.h"
#include "app/bus/bus_address.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtDBus/QDBusMessage>

#include <functional>

namespace zq::app {

// What became of a call.
struct BusReply {
  bool ok = false;
  QString errorName;    // "org.zqticker.Error.InvalidMessage"; empty where all is well
  QString errorMessage; // for the user, one line without a full stop
  QString identifier;   // of what is shown
  bool removed = false; // for removeSign

  // Whether there was nobody to answer: no bus, or no ticker on it. Worth another try once the
  // ticker appears.
  bool isUnreachable() const;
};

// Calls the ticker, either waiting for the reply up to a deadline, or with a callback. A call that
// the ticker does not answer in time fails with the bus's own error.
//
// Thread: main. Callbacks come from the event loop, in the order of the replies, and not after the
// client's end.
class TickerClient : public QObject {
  Q_OBJECT

 public:
  using Callback = std::function<void(const BusReply& reply)>;

  explicit TickerClient(std::optional<QString> address = sessionBusAddress(),
                        QObject* parent = nullptr);
  ~TickerClient() override;

  // Whether there is a bus now; the first call connects.
  bool hasBus();
  // Whether a ticker owns the name now. Asks the bus, except while it is watched.
  bool hasTicker();

  // Tells from now on when a ticker appears and vanishes; `tickerAppeared` comes, from the event
  // loop, for one that is there already. Goes on when the bus restarts or is started later.
  void watch();
  Q_SIGNAL void tickerAppeared();
  Q_SIGNAL void tickerVanished();

  // Whether a call starts the ticker where none runs; true at first. Quitting never
  // does, nor do pause() to focus().
  void setStartsTicker(bool starts) { startsTicker_ = starts; }
  // How long a call may take, 25 seconds at first; starting the ticker counts.
  void setDeadline(int milliseconds) { deadline_ = milliseconds; }

  // Values of a message: QString, QByteArray, bool, numbers, lists and dictionaries of them.
  BusReply displayMessage(const QVariantMap& message);
  void displayMessage(const QVariantMap& message, Callback callback);
  // `archive` holds the sign under "root", see portMessageItem(); `origin` the keys that a sign has
  // no place for.
  BusReply displaySign(const QByteArray& archive, const QVariantMap& origin = {});
  void displaySign(const QByteArray& archive, const QVariantMap& origin, Callback callback);
  BusReply removeSign(const QString& identifier);
  void removeSign(const QString& identifier, Callback callback);
  BusReply arrangeSigns(const QStringList& identifiers);
  void arrangeSigns(const QStringList& identifiers, Callback callback);
  // `standardInput` is a descriptor that the ticker gets a duplicate of; one that is not open is
  // left out.
  BusReply run(const QStringList& arguments, const QString& folder, int standardInput = -1);
  BusReply showQueue();
  BusReply showSettings();
  // These never start a ticker: what does not run needs no pause.
  BusReply pause();
  BusReply resume();
  BusReply hide();
  BusReply show();
  BusReply focus();
  BusReply quit();

 private:
  QDBusMessage makeCall(const QString& method, const QVariantList& arguments) const;
  BusReply call(const QDBusMessage& message);
  BusReply askRunning(const QString& method);
  void call(const QDBusMessage& message, Callback callback);
  void observe();
  void setTickerPresent(bool present);
  Q_SLOT void ownerChanged(const QString& name, const QString& before, const QString& after);

  SessionBus bus_;
  int deadline_;
  bool startsTicker_ = true;
  bool isWatching_ = false;
  bool isTickerPresent_ = false;
};

} // namespace zq::app
