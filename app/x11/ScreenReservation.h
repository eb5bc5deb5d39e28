// A window's room at an edge of the X screen.
#pragma once

#include "app/x11/EdgeReservation.h"

#include <QtCore/QObject>

class QWidget;

namespace zq::app {

// Tells window managers about a top-level window that belongs to the desktop rather than to a
// program: what kind it is, that it is on every desktop and in no list of windows, and, once asked
// for, that no other window should lie where it stands. The room is free again whenever the window
// is hidden. All of it is told anew when the window is shown, and when it gets another native
// window.
//
// Without an X server nothing happens.
//
// Thread: main.
class ScreenReservation : public QObject {
  Q_OBJECT

 public:
  // `window` must outlive this object.
  explicit ScreenReservation(QWidget& window);
  ~ScreenReservation() override;

  // Keeps this room free, or, with nothing, none. `isAtEdge` says that the window's screen ends at
  // the edge of the X screen: window managers that know nothing of a band's ends are told then too.
  void reserve(const std::optional<EdgeReservation>& room, bool isAtEdge);

  // Whether the window is a dock, as it is at first, or else a utility.
  void setDock(bool dock) { isDock_ = dock; }

  // What is kept free while the window is shown.
  const std::optional<EdgeReservation>& reserved() const { return room_; }

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void writeRoom();
  void writeHints();

  QWidget& window_;
  std::optional<EdgeReservation> room_;
  bool isAtEdge_ = false;
  bool isDock_ = true;
};

} // namespace zq::app
