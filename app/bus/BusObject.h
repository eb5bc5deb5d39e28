// The ticker's object on the bus.
#pragma once

#include "app/bus/BusInbox.h"
#include "app/bus/RefusalLog.h"

#include <QtDBus/QDBusVirtualObject>

#include <functional>

namespace zq::app {

// Reads calls and notifications, answers those that need no ticker, refuses what is wrong or too
// much, and puts the rest into an inbox. It lives on a thread of its own: a flood of messages is
// read and refused there, while the strip moves.
//
// Thread: its own, once moved there.
class BusObject : public QDBusVirtualObject {
  Q_OBJECT

 public:
  // `wake` is called, on the object's thread, when the inbox is no longer empty.
  BusObject(BusInbox& inbox, std::function<void()> wake);
  ~BusObject() override;

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  // For the notification.
  Q_SLOT void notified(const QDBusMessage& signal);

 private:
  void handleCall(const QDBusMessage& call, const QDBusConnection& connection);
  void put(PendingRequest&& pending);

  BusInbox& inbox_;
  std::function<void()> wake_;
  RefusalLog refusals_;
};

} // namespace zq::app
