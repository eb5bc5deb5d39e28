// The strip under the pointer.
#pragma once

#include "app/controls/RestingPointer.h"
#include "app/display/ScrollDirection.h"
#include "app/interaction/SignMark.h"
#include "app/interaction/StripDrag.h"
#include "app/interaction/sign_spots.h"

#include <QtCore/QObject>

#include <optional>

class QHelpEvent;
class QMouseEvent;
class QWheelEvent;

namespace zq::app {

class SignOpener;
class StripWidget;
class TickerDisplay;

// Watches the pointer over a strip. While it rests there, see RestingPointer, or while the strip's
// menu is open, the strip stands still, if it is to; so it does while the left button is down. A
// sign whose action opens something is underlined while the pointer is over it, which is a pointing
// hand then, and its tool tip is the address; a click performs the action.
//
// The left button drags the strip forward and back, and throws it; so does a finger. A wheel moves
// it: forward when it is turned down or to the right; a touch pad moves it with the fingers.
//
// It only looks at events: others see all of them, but those of wheels.
//
// Thread: main.
class StripPointer : public QObject {
  Q_OBJECT

 public:
  // All of them must outlive it. Switches the strip's mouse tracking and tool tips on.
  StripPointer(StripWidget& strip, TickerDisplay& display, const SignOpener& opener);
  ~StripPointer() override;

  // Whether the strip stands still while the pointer rests on it; it does at first.
  void setPausesAtRest(bool pauses);

  // The sign under the pointer; nothing while that is elsewhere, or over a control.
  std::optional<SignSpot> sign() const;

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void watchChildren();
  void pauseWhereItRests();
  void moveTo(QPointF place);
  void leave();
  void turn(const QWheelEvent& event);
  void takeHold(QPointF place);
  void drag(QPointF place);
  double alongStrip(QPointF place) const;
  void letGo();
  void press(const QMouseEvent& event);
  void release(const QMouseEvent& event);
  void showHint();
  bool showToolTip(const QHelpEvent& event);
  bool isOnControl(QPointF place) const;

  StripWidget& strip_;
  TickerDisplay& display_;
  const SignOpener& opener_;
  RestingPointer resting_;
  SignMark* underline_;
  bool pausesAtRest_ = true;
  bool isMenuOpen_ = false;
  bool isHandShown_ = false;
  std::optional<QPointF> place_; // of the pointer over the strip
  std::optional<QPointF> pressedAt_;
  Strip::Entry pressed_;          // the sign there
  std::optional<StripDrag> drag_; // while the button is down
  ScrollDirection dragDirection_ = ScrollDirection::Left;
  bool isDragged_ = false;
};

} // namespace zq::app
