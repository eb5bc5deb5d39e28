// The keyboard on the strip.
#pragma once

#include <QtCore/QObject>
#include <QtGui/qwindowdefs.h>

class QWidget;

namespace zq::app {

class FocusRing;

// Gives a window that takes no keyboard focus the focus when it is asked to, and gives it back to
// the window that had it: with Escape, or on request. When the focus goes elsewhere by itself, it
// is as if it had never been here. A ring around the window shows that it is there.
//
// On X11 it asks in the user's name, as a key of the desktop that runs a command does; elsewhere
// the window system may refuse.
//
// Thread: main.
class StripFocus : public QObject {
  Q_OBJECT

 public:
  // `window` must outlive this object and have Qt::WindowDoesNotAcceptFocus.
  explicit StripFocus(QWidget& window);
  ~StripFocus() override;

  // Asks for the focus, as soon as the window is on the screen.
  void take();
  // Nothing where the window has no focus.
  void giveBack();

  // Whether the window has the keyboard now.
  bool isTaken() const { return isTaken_; }
  Q_SIGNAL void changed(bool isTaken);

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void ask();
  void accept(bool acceptsFocus);
  void setTaken(bool isTaken);

  QWidget& window_;
  FocusRing* ring_;
  bool isAwaited_ = false; // until the window is on the screen
  bool isTaken_ = false;
  WId before_ = 0; // the window that had the keyboard; 0 for none
};

} // namespace zq::app
