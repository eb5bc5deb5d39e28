// What other programs reserve at the edges of the X screen.
#pragma once

#include "app/OncePerTurn.h"
#include "app/x11/EdgeReservation.h"
#include "app/x11/XConnection.h"

#include <QtCore/QObject>

namespace zq::app {

// Reads what the windows that the window manager knows reserve, and follows it. Where there is no X
// server or no window manager nothing is reserved.
//
// Thread: main.
class OtherReservations : public QObject {
  Q_OBJECT

 public:
  explicit OtherReservations(QObject* parent = nullptr);
  ~OtherReservations() override;

  // Whether there is an X server to ask.
  bool isAvailable() const { return connection_ != nullptr; }

  // Everything but what the window `own` reserves. Windows are older than it that the window
  // manager has known for longer; all are where it does not know it.
  std::vector<OtherReservation> beside(xcb_window_t own) const;

  // The size of the X screen in device pixels.
  QSize whole() const { return whole_; }

  // Something is reserved that was not, or no more; or the X screen has another size.
  Q_SIGNAL void changed();

 private:
  struct Window {
    xcb_window_t id;
    QRect geometry;
    bool isStrip;
    std::vector<EdgeReservation> reservations;

    bool operator==(const Window&) const = default;
  };

  void listen();
  void receive(const xcb_generic_event_t* event);
  void read();
  std::vector<Window> readWindows(const std::vector<xcb_window_t>& ids);

  std::shared_ptr<XConnection> connection_;
  std::vector<xcb_window_t> known_; // by the window manager, the oldest first
  std::vector<Window> reserving_;   // in the same order
  QSize whole_;
  OncePerTurn reading_;
};

} // namespace zq::app
