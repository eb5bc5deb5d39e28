// A message bus that is listened to.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

#include <functional>
#include <optional>

namespace zq::app {

// Hears the signals of services on a bus, and asks them, without ever waiting for the bus or for
// them: nothing here keeps the caller longer than writing into a socket. Services are not started
// by it.
//
// A bus that is not there, or goes away, is tried again, more and more rarely and without a word.
//
// Thread: main.
class BusListener : public QObject {
  Q_OBJECT

 public:
  // Nothing for no bus: it never opens.
  explicit BusListener(std::optional<QString> address, QObject* parent = nullptr);
  ~BusListener() override;

  // Connects, at once where the bus is there; nothing happens while it is open. Whoever listens
  // does so whenever it is `opened`.
  void open();

  // Hears a signal of the service from now on, for as long as the bus is there; from any of its
  // objects where `path` is empty. Others that send a signal of that name are not heard. Nothing
  // happens while the bus is not there.
  void listen(const QString& service, const QString& path, const QString& interface,
              const QString& member);
  // Calls a method. `answered` gets the reply whenever it comes, an error included; never, where
  // the bus goes away before it.
  void ask(const QString& service, const QString& path, const QString& interface,
           const QString& method, const QVariantList& arguments,
           std::function<void(const QDBusMessage& reply)> answered);

  // The bus is there, and nothing is listened to yet.
  Q_SIGNAL void opened();
  // The bus has gone.
  Q_SIGNAL void closed();
  // A signal that is listened to.
  Q_SIGNAL void heard(const QDBusMessage& signal);
  // A service that is listened to has come, or gone; also told of one that was there before.
  Q_SIGNAL void ownerChanged(const QString& service, bool isThere);

 private:
  Q_SLOT void receive(const QDBusMessage& signal);
  Q_SLOT void receiveOwner(const QString& service, const QString& before, const QString& now,
                           const QDBusMessage& signal);
  Q_SLOT void lost();
  void followOwner(const QString& service);
  void setOwner(const QString& service, const QString& owner);
  void addMatch(const QString& rule);
  void disconnect();
  void retryLater();

  std::optional<QString> address_;
  QDBusConnection connection_;
  QHash<QString, QStringList> senders_; // services, by interface and member of their signals
  QHash<QString, QString> owners_;      // unique names, by service; empty where it is not there
  QTimer retry_;
  int retryMilliseconds_; // until the next try
};

} // namespace zq::app
