// A connection to the X server of our own.
#pragma once

#include "app/OncePerTurn.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>

namespace zq::app {

// Beside that of Qt: what the server tells here wakes the main thread and nothing else, and what
// is sent here needs no part of Qt's drawing. Windows of Qt can be named on it, since names belong
// to the server.
//
// Requests that fail, such as those for windows that have just gone, are noted in the category
// zqticker.x11 at debug level and have no other effect.
//
// Thread: main.
class XConnection : public QObject, public std::enable_shared_from_this<XConnection> {
  Q_OBJECT

 public:
  // One for all who hold it, made anew when nobody does. Null where the program does not run on an
  // X server, or the connection is refused or was lost.
  static std::shared_ptr<XConnection> shared();

  // That of Qt, for what must come in the order of what Qt does to its windows; null without an X
  // server. Events are not to be taken from it.
  static xcb_connection_t* ofQt();

  ~XConnection() override;

  xcb_connection_t* get() const { return connection_; }
  xcb_screen_t* screen() const { return screen_; }

  // Sends what was asked for. Whoever has waited for a reply calls it too: events that came with
  // the reply wake nobody by themselves, and are told in a later turn of the event loop. Nothing is
  // told from within, so that frames do not begin while another one is being shown.
  void flush();

  // Has the server tell of these events (XCB_EVENT_MASK_…) of a window, beside those that others
  // asked for here.
  void selectEvents(xcb_window_t window, std::uint32_t events);

  // Whether a button of the pointer is pressed, wherever it is. Waits for the server.
  bool isButtonPressed();

  // What the server has told, except errors; valid during the call.
  Q_SIGNAL void received(const xcb_generic_event_t* event);
  // The server has gone; nothing can be asked any more.
  Q_SIGNAL void lost();

 private:
  XConnection(xcb_connection_t* connection, xcb_screen_t* screen);
  void receive();
  xcb_generic_event_t* next();

  xcb_connection_t* connection_;
  xcb_screen_t* screen_;
  QSocketNotifier notifier_;
  QHash<xcb_window_t, std::uint32_t> selected_;
  bool isReceiving_ = false;
  bool isLost_ = false;
  xcb_generic_event_t* queued_ = nullptr; // the first that came with a reply
  OncePerTurn receiving_;                 // what came so
};

// Waits until the server has done what was asked for on `connection`; what it tells meanwhile stays
// with the connection.
void awaitServer(xcb_connection_t* connection);

} // namespace zq::app
