// Whether the user's session shows its screen.
#pragma once

#include "app/bus/BusListener.h"
#include "app/sight/LoginSession.h"
#include "app/sight/ScreenSavers.h"
#include "app/x11/ServerScreenSaver.h"

#include <QtCore/QObject>

#include <optional>

namespace zq::app {

// Nobody sees the screen while a screen saver covers it, while the session is locked, and while the
// machine goes to sleep. Where nobody tells, it is seen.
//
// Thread: main.
class SessionSight : public QObject {
  Q_OBJECT

 public:
  // The addresses of the session bus and of the system bus, nothing where there is none.
  SessionSight(std::optional<QString> sessionBus, std::optional<QString> systemBus);
  ~SessionSight() override;

  bool isInSight() const { return isInSight_; }
  Q_SIGNAL void changed(bool isInSight);

 private:
  void update();

  BusListener sessionBus_;
  BusListener systemBus_;
  ScreenSavers savers_;
  LoginSession login_;
  ServerScreenSaver server_;
  bool isInSight_ = true;
};

} // namespace zq::app
