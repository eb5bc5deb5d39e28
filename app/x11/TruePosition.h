// Where a window really stands.
#pragma once

#include "app/OncePerTurn.h"
#include "app/x11/XConnection.h"

#include <QtCore/QObject>

class QWidget;

namespace zq::app {

// Keeps Qt's notion of a top-level window's place right. Qt asks the server for it whenever the
// window has changed within its frame; at that moment a window manager may be about to move the
// frame, of which the window hears nothing. Here the frame is listened to as well, and Qt is told
// where the window has come to stand.
//
// Without an X server nothing happens.
//
// Thread: main.
class TruePosition : public QObject {
  Q_OBJECT

 public:
  // `window` must outlive this object.
  explicit TruePosition(QWidget& window);
  ~TruePosition() override;

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void listen();
  void findFrame();
  void receive(const xcb_generic_event_t* event);
  void tell();

  QWidget& widget_;
  std::shared_ptr<XConnection> connection_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_window_t frame_ = XCB_WINDOW_NONE; // the window manager's, around the window; or none
  OncePerTurn telling_;
};

} // namespace zq::app
