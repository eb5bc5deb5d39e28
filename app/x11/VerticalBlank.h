// The vertical blanks of the screen that shows a window, told by the X server.
#pragma once

#include "app/display/BlankSource.h"

#include <QtGui/qwindowdefs.h>

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>

namespace zq::app {

class XConnection;

// Asks by the Present extension. The server counts the blanks of the screen on which most of the
// window is; where that has none it counts by a timer of its own. When the window has gone nothing
// is reported any more.
//
// Thread: main.
class VerticalBlank : public BlankSource {
  Q_OBJECT

 public:
  // Null where the program does not run on an X server, or the server has no Present extension.
  static std::unique_ptr<VerticalBlank> make(WId window);
  ~VerticalBlank() override;

  void request(quint64 count) override;
  void cancel() override;

 private:
  VerticalBlank(std::shared_ptr<XConnection> connection, WId window, std::uint8_t extension);
  void receive(const xcb_generic_event_t* event);
  void select(bool isWanted);

  std::shared_ptr<XConnection> connection_;
  std::uint32_t window_;
  std::uint8_t extension_;    // the opcode of Present
  std::uint32_t eventId_ = 0; // of what is selected; 0 for nothing
  std::uint32_t serial_ = 0;  // of the request whose report is awaited
  bool isAwaited_ = false;
  double askedAt_ = 0; // on the monotonic clock
};

} // namespace zq::app
