// The ticker on the session bus: other programs reach it here.
#pragma once

#include "app/bus/BusInbox.h"
#include "app/bus/SessionBus.h"
#include "app/bus/bus_address.h"

#include <QtCore/QObject>
#include <QtCore/QThread>
#include <QtCore/QTimer>

#include <memory>

namespace zq::app {

class BusObject;
class TickerReceiver;

// Owns the ticker's name, exports its object, hears the broadcast notification, and hands what
// comes to a receiver. When the bus restarts, all of that is made again.
//
// Requests are handed over a few milliseconds at a time, so that frames stay on time whatever
// comes.
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
  // until there is one. It must outlive the service or be taken away.
  void setReceiver(TickerReceiver* receiver);

 private:
  Start join(bool waitsForName);
  Q_SLOT void nameAcquired(const QString& name);
  Q_SLOT void nameLost(const QString& name);
  void rejoin();
  void handOut();
  void answer(PendingRequest& pending);

  SessionBus bus_;
  BusInbox inbox_;
  QThread thread_;
  std::unique_ptr<BusObject> object_;
  TickerReceiver* receiver_ = nullptr;
  QTimer turn_;             // hands out once a turn of the event loop, whoever asks for it
  bool isExported_ = false; // on the connection of now
  bool ownsName_ = false;
  bool isHandingOut_ = false;
};

} // namespace zq::app
