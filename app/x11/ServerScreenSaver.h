// The screen saver of the X server itself.
#pragma once

#include "app/x11/XConnection.h"

#include <QtCore/QObject>

#include <memory>

namespace zq::app {

// Tells whether the server has blanked the screen or shows its saver, for itself or because a
// program that saves screens has told it to. Screens that are switched off to save power usually
// have been blanked by then.
//
// Thread: main.
class ServerScreenSaver : public QObject {
  Q_OBJECT

 public:
  explicit ServerScreenSaver(QObject* parent = nullptr);
  ~ServerScreenSaver() override;

  // False where the program does not run on an X server, or the server does not tell.
  bool isActive() const { return isActive_; }
  Q_SIGNAL void changed();

 private:
  void receive(const xcb_generic_event_t* event);
  void setState(int state);

  std::shared_ptr<XConnection> connection_;
  int eventCode_ = 0;
  bool isActive_ = false;
};

} // namespace zq::app
