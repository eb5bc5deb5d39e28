// Whether other windows cover one, on an X server.
#pragma once

#include "app/x11/XConnection.h"

#include <QtCore/QObject>

#include <memory>

class QWindow;

namespace zq::app {

// Tells when a window is covered altogether, and when a part of it is free again. The server knows
// of it where windows are drawn straight to the screen; under a compositing manager, and of windows
// that are translucent, it tells that they are never covered.
//
// Thread: main.
class WindowVisibility : public QObject {
  Q_OBJECT

 public:
  explicit WindowVisibility(QObject* parent = nullptr);
  ~WindowVisibility() override;

  // Watches this window from now on and no other one, none for null: one that has just been made
  // and not been shown yet, since the server tells of changes only. It counts as free until the
  // server tells.
  void watch(QWindow* window);
  bool isCovered() const { return isCovered_; }
  Q_SIGNAL void changed();

 private:
  void receive(const xcb_generic_event_t* event);
  void setCovered(bool isCovered);

  std::shared_ptr<XConnection> connection_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  bool isCovered_ = false;
};

} // namespace zq::app
