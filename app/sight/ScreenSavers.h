// The session's screen saver.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QSet>
#include <QtCore/QString>

#include <optional>

class QDBusMessage;

namespace zq::app {

class BusListener;

// Whether a screen saver covers the screen, or a lock that is told as one is. Hears those of the
// desktops, on the session bus; any of them is enough.
//
// Thread: main.
class ScreenSavers : public QObject {
  Q_OBJECT

 public:
  // `bus` must outlive the object.
  explicit ScreenSavers(BusListener& bus, QObject* parent = nullptr);
  ~ScreenSavers() override;

  // False as long as nobody has told.
  bool isActive() const { return !active_.isEmpty(); }
  Q_SIGNAL void changed();

 private:
  void listen();
  void hear(const QDBusMessage& signal);
  void askWhether(const QString& service);
  void setActive(const QString& service, bool isActive);

  BusListener& bus_;
  QSet<QString> active_; // names of services
};

} // namespace zq::app
