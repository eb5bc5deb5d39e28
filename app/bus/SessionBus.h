// The connection to the session bus, for as long as the program runs.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>

#include <optional>

namespace zq::app {

// Connects, and connects anew when the bus has gone away and comes back at the same address. A
// connection that broke is never used again.
//
// Thread: main.
class SessionBus : public QObject {
  Q_OBJECT

 public:
  // Nothing for no bus: it never opens.
  explicit SessionBus(std::optional<QString> address, QObject* parent = nullptr);
  ~SessionBus() override;

  // Tries at once, and then again and again, more and more rarely, where there is an address; does
  // nothing while it does so, and once a connection broke. Whether it is open.
  bool open();
  bool isOpen() const;
  const std::optional<QString>& address() const { return address_; }
  // The connection now; one that is not connected while the bus is away.
  const QDBusConnection& connection() const { return connection_; }

  // There is a new connection, on which nothing is registered yet. Not for the one that `open`
  // makes at once.
  Q_SIGNAL void opened();
  Q_SIGNAL void closed();

 private:
  Q_SLOT void lost();
  bool connectOnce();
  void disconnect();

  std::optional<QString> address_;
  QDBusConnection connection_;
  QTimer retry_;
};

} // namespace zq::app
