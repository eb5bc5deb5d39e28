// The platform's button.
#pragma once

#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/objects/Object.h"

#include <QtWidgets/QAbstractButton>

#include <cstdint>
#include <memory>

namespace zq::platform {

class ButtonCell;
class ButtonObject;
class Coder;

// A QAbstractButton whose look and behaviour are those of its cell.
//
// A press goes like this: while the pointer is inside, the cell is highlighted and tracks the mouse
// (not until the button comes up); if the tracking ends with No, the highlight goes and the press
// waits for the pointer to come back or for the release. The highlight lasts as long as the menu
// that a tracking has popped up. A press ends without a click when the button is disabled or
// hidden, when its window is blocked or loses the focus, and when the release went elsewhere.
//
// Signals: pressed and released go with the highlight of a press; clicked follows each action that
// the cell has sent, after the release that belongs to it, so that a button without target can be
// used by its signals; toggled tells changes of the state from and to on. The state is the cell's,
// isChecked says whether it is on; click and assistive technology perform the cell's click. In an
// exclusive QButtonGroup one button is on.
//
// What an action or another callback raises is logged where the event loop called the button, and
// passes through where the program did. The button, its window and its menu may be destroyed in any
// callback.
//
// The button takes no keyboard focus. Coordinates as in ControlView, y downwards.
//
// Thread: main.
class ZQTICKER_EXPORT Button : public QAbstractButton, public ControlView {
  Q_OBJECT
  Q_PROPERTY(QString title READ title WRITE setTitle)
  Q_PROPERTY(bool bordered READ isBordered WRITE setBordered)
  Q_PROPERTY(int bezelStyle READ bezelStyle WRITE setBezelStyle)

 public:
  // With a ButtonCell.
  explicit Button(QWidget* parent = nullptr);
  ~Button() override;

  // Never null.
  Ref<ButtonCell> cell() const;
  // Puts `cell` into the button, which shows its state from now on; null raises
  // InvalidArgumentException. The cell takes on whether the button is enabled.
  virtual void setCell(const Ref<ButtonCell>& cell);

  // The cell's, and a redisplay where it is set.
  QString title() const;
  void setTitle(const QString& title);
  CellState state() const;
  void setState(CellState state);
  virtual bool isBordered() const;
  virtual void setBordered(bool bordered);
  virtual int bezelStyle() const;
  virtual void setBezelStyle(int style);

  // The type last set; MomentaryLight until then, whatever the cell does.
  ButtonType buttonType() const override;
  virtual void setButtonType(ButtonType type);

  // The frame in the coordinates of the superview, y upwards: the origin is the lower left corner.
  // Setting it rounds the origin to whole points and the size up. A view without superview keeps
  // the origin for the first that it comes into.
  QRectF frame() const;
  void setFrame(const QRectF& frame);
  // The size that the contents need; here the cell's cellSize. Both hints of the widget are this,
  // rounded up.
  virtual QSizeF intrinsicContentSize() const;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  // Gives the frame the cell's cellSize, its origin kept.
  virtual void sizeToFit();

  // Whether ViewFrameDidChangeNotification is posted about viewObject, to the default center, when
  // the frame has changed; true at first. A hidden view's change is told when it is shown.
  bool postsFrameChangedNotifications() const;
  void setPostsFrameChangedNotifications(bool posts);

  // Whether the view is in a window: below another widget, or shown as a window itself.
  bool isInWindow() const;
  // What notifications about its window are about; null outside of one.
  Ref<Object> windowObject() const;

  // Takes the view out of its superview, and hides it.
  virtual void removeFromSuperview();
  virtual void removeFromSuperviewWithoutNeedingDisplay();

  // Tells by mouseEntered and mouseExited when the pointer enters or leaves `rect`, until its tag,
  // never 0, is removed. A rectangle counts as entered from the start where `assumeInside`;
  // otherwise one under the pointer is entered when that next moves. Unknown tags are ignored.
  //
  // What the toolkit says of the pointer besides the mouse's own events is told in the next turn of
  // the event loop, or before the next of these; so the view and its window may be destroyed.
  //
  // Nothing is told during a press; what changed meanwhile is told at its end. The pointer counts
  // as outside while a menu or another widget has it, and when the window loses the focus, until it
  // moves again; and where it is still held down after such an end of a press, until it is
  // released. If a rectangle is removed while the pointer is inside, a leave is told once the
  // pointer is found outside of those that there are then.
  using TrackingRectTag = std::intptr_t;
  TrackingRectTag addTrackingRect(const QRectF& rect, bool assumeInside);
  void removeTrackingRect(TrackingRectTag tag);

  // Pops up the cell's menu as a press would, for assistive technology.
  void showMenu();

  // Writes and reads frame, state of the view and cell under the keys of views and controls.
  // Archive a button as its viewObject; see ButtonObject.
  virtual void encodeWithCoder(Coder& coder);
  // Raises ArchiveException.
  virtual void initWithCoder(Coder& coder);

  bool isFlipped() const override;
  QRectF bounds() const override;
  QPointF convertPointToWindow(QPointF point) const override;
  QPointF convertPointFromWindow(QPointF point) const override;
  void setNeedsDisplay() override;
  void sendAction(const Selector& action, const Target& target) override;
  void cellDidChangeState(Cell& cell) override;
  void menuDidOpen(Menu& menu) override;
  void menuDidClose(Menu& menu) override;
  QWidget* widget() override;
  // Always the same, a ButtonObject.
  Ref<Object> viewObject() override;

 protected:
  Button(const Ref<ButtonCell>& cell, QWidget* parent);

  // Hooks; the base class does nothing in them unless it says so.

  // The pointer has entered or left a tracking rectangle.
  virtual void mouseEntered(const Event& event);
  virtual void mouseExited(const Event& event);
  // The view has come into a window, into another, or out of one.
  virtual void viewDidMoveToWindow();
  // The button is being enabled or disabled; the cell still says what it was before.
  virtual void enabledWillChange(bool enabled);
  // Draws the view into the current context; here the cell over the whole bounds.
  virtual void drawRect(const QRectF& dirtyRect);
  // The object that stands for this view; subclasses with an archive name of their own make their
  // own kind.
  virtual Ref<ButtonObject> makeViewObject();

  bool event(QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void checkStateSet() override;
  void nextCheckState() override;

 private:
  friend class ButtonObject;
  friend class ButtonPress;
  struct Private;
  std::unique_ptr<Private> private_;
};

} // namespace zq::platform
