// A desktop of a benchmark's own, with nothing on it but what is measured.
#pragma once

#include "tests/app/XServer.h"
#include "tests/app/bus/PrivateBus.h"

#include <QtCore/QProcessEnvironment>
#include <QtCore/QRect>
#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusConnection>

#include <xcb/xcb.h>

#include <optional>

// Xvfb, whose Present extension ticks at 60 Hz, with openbox, 1920 pixels wide; a bus for both
// session and system, with a screen saver on it. Ends with the object.
class TickerDesktop {
 public:
  static constexpr int Width = 1920;
  static constexpr int Height = 400;

  TickerDesktop();
  ~TickerDesktop();

  bool isComplete() const;
  qint64 server() const { return server_.processId(); }
  // The environment of a program on this desktop, with settings of its own.
  QProcessEnvironment environment() const;

  // Lays a window that paints nothing over the whole screen, above all others, or takes it away.
  void setCovered(bool isCovered);
  // Tells that the screen saver is active.
  void setLocked(bool isLocked);

  // How fast what stands on rows `first` to `last` moves to the left, in pixels a second, found by
  // comparing two pictures of the screen; nothing where they have no shift in common.
  std::optional<double> speedOf(int firstRow, int lastRow) const;

 private:
  QString home() const;

  QTemporaryDir folder_;
  zq::app::testing::XServer server_;
  zq::app::testing::PrivateBus bus_;
  QDBusConnection saver_;
  xcb_connection_t* connection_;
  xcb_window_t cover_ = XCB_WINDOW_NONE;
};

// Runs the event loop meanwhile.
void pass(double seconds);
