// The state of a button.
#pragma once

#include "zqticker/platform/controls/Button.h"
#include "zqticker/platform/controls/ButtonPress_p.h"
#include "zqticker/platform/controls/TrackingRectangles_p.h"

#include <optional>

namespace zq::platform {

struct Button::Private {
  Private(Button* owner, Ref<ButtonCell> firstCell) : button(owner), cell(std::move(firstCell)) {}

  // The look of a press, and pressed and released with it. While a menu of the button is open, the
  // end waits for its closing.
  void beginHighlight();
  void endHighlight();
  void finishHighlight();
  // Emits clicked so many times, and toggled, for the group of the button as well.
  void tellClicks(int count);
  void tellToggled();

  // Starts, feeds and ends presses.
  void startPress(const Event& event);
  void feedPress(const Event& event);
  void cancelPress();
  void pressDidEnd();
  // Neither the press nor the pointer is the button's any more.
  void losePointer();

  // Does it once the toolkit is through with what it tells; see LaterCalls.
  void later(void (Private::*action)());
  // Does now what waits. False where the button is gone then.
  bool catchUp();

  // The pointer is at a point of the view, or outside; kept for later during a press.
  void pointerIsAt(std::optional<QPointF> point);
  void pointerIsOutside() { pointerIsAt(std::nullopt); }
  // Tells the rectangles, at once.
  void tellPointer(std::optional<QPointF> point);
  // The same, as the window system says.
  void findPointer();

  // Null for a window and outside of one.
  QWidget* superview() const { return button->isWindow() ? nullptr : button->parentWidget(); }
  // The window has become another one, or none, perhaps.
  void checkWindow();
  void frameDidChange();

  Button* const button;
  Ref<ButtonCell> cell;
  ButtonType type = ButtonType::MomentaryLight;
  bool postsFrameChanges = true;

  std::shared_ptr<ButtonPress> press;
  bool isHighlightHeld = false;
  int openMenus = 0;
  // Within click(), which emits clicked itself.
  bool isPerformingClick = false;
  bool isTakingOverState = false;

  TrackingRectangles rectangles;
  bool isListeningToMonitor = false;
  // What became of the pointer during a press: where it was inside last, and where it is. The cell
  // has followed it on its own, so that a visit that is over by the end is told all the same.
  struct PressedPointer {
    std::optional<QPointF> lastInside;
    std::optional<QPointF> now;
  };
  std::optional<PressedPointer> pointerAfterPress;

  QPointer<QWidget> window;
  std::optional<QPointF> originWithoutSuperview;

  // The object that stands for the button: owned, except while it owns the button itself.
  std::weak_ptr<ButtonObject> object;
  Ref<ButtonObject> ownedObject;

  // The view's flags in the archive; a new view has its subviews resized.
  std::uint32_t viewFlags = 0x100;
};

} // namespace zq::platform
