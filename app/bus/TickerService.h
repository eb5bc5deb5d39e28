// The ticker on the session bus: other programs reach it here.
#pragma once

#include "app/bus/BusInbox.h"
#include "app/bus/SessionBus.h"
#include "app/bus/bus_address.h"
#include "app/intake/ArrivingSign.h"

#include <QtCore/QObject>
#include <QtCore/QThread>
#include <QtCore/QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <thread>

namespace zq::app {

class BusObject;
class TickerReceiver;

// Owns the ticker's name, exports its object, hears the broadcast notification, and hands what
// comes to a receiver. When the bus restarts, all of that is made again.
//
// Requests are handed over a few milliseconds at a time, and pictures that take longer are decoded
// on another thread while all further requests wait, so that frames stay on time whatever comes.
//
// Thread: main.
class TickerService : public QObject {
  Q_OBJECT

 public:
  explicit TickerService(std::optional<QString> address = sessionBusAddress(),
                         QObject* parent = nullptr);
  ~TickerService() override;

  enum class Start {
    IsOwner, // from now on requests come
    IsTaken, // by another ticker; this one is not reachable
    NoBus,   // where the bus appears later, the service goes on by itself
  };
  // Claims the name, which only one of several programs that do so at once gets. May be called
  // again after IsTaken.
  Start start();
  bool ownsName() const { return ownsName_; }
  const std::optional<QString>& address() const { return bus_.address(); }

  // Who answers, from the event loop: to quit before that runs would do nothing. Requests wait
  // until there is one. It must outlive the service or be taken away; a sign that was on its way
  // to it is refused then.
  void setReceiver(TickerReceiver* receiver);

 private:
  Start join(bool waitsForName);
  Q_SLOT void nameAcquired(const QString& name);
  Q_SLOT void nameLost(const QString& name);
  void rejoin();
  void handOut();
  // A request whose sign is being decoded.
  struct Arriving {
    PendingRequest pending;
    std::function<QString()> show;
  };
  void take(const PendingRequest& pending);
  bool startDecoding(const PendingRequest& pending, const ArrivingSign& sign);
  void finishDecoding();
  // Sends what `act` gives, or the error that it raises; nothing yet where it gives nothing.
  void answer(const PendingRequest& pending,
              const std::function<std::optional<QVariantList>()>& act);

  SessionBus bus_;
  BusInbox inbox_;
  QThread thread_;
  std::unique_ptr<BusObject> object_;
  TickerReceiver* receiver_ = nullptr;
  QTimer turn_;             // hands out once a turn of the event loop, whoever asks for it
  bool isExported_ = false; // on the connection of now
  bool ownsName_ = false;
  bool isHandingOut_ = false;
  std::thread decoder_; // joinable while a sign is decoded, though nobody may want it any more
  std::optional<Arriving> arriving_;
};

} // namespace zq::app
