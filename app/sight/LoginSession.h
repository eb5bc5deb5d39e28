// The session as the login manager sees it.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <chrono>

class QDBusMessage;

namespace zq::app {

class BusListener;

// Whether the session of this process is locked, or the machine about to sleep. Hears logind on the
// system bus.
//
// Thread: main.
class LoginSession : public QObject {
  Q_OBJECT

 public:
  // A lock that is asked for is taken as one for `patience`: not every program that locks a screen
  // tells that it has, and none of those tells when it is over. `bus` must outlive the object.
  explicit LoginSession(BusListener& bus,
                        std::chrono::milliseconds patience = std::chrono::seconds(10),
                        QObject* parent = nullptr);
  ~LoginSession() override;

  // Both false as long as nobody has told.
  bool isLocked() const { return isLocked_ || lockAsked_.isActive(); }
  bool isAsleep() const { return isAsleep_; }
  Q_SIGNAL void changed();

 private:
  void listen();
  void findSession();
  void findSessionBy(int way);
  void followSession(const QString& path);
  void askWhetherLocked();
  void hear(const QDBusMessage& signal);
  void hearOfSession(const QDBusMessage& signal);
  void setLocked(bool isLocked);
  void forget();

  BusListener& bus_;
  QStringList paths_; // of session objects that are listened to; the last one is the session's own
  bool isLocked_ = false;
  bool isAsleep_ = false;
  QTimer lockAsked_;
};

} // namespace zq::app
