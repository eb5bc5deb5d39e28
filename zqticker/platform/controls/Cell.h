// The part of a control that draws it and follows the mouse.
#pragma once

#include "zqticker/platform/controls/control_types.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Selector.h"
#include "zqticker/platform/objects/Target.h"
#include "zqticker/platform/objects/Weak.h"
#include "zqticker/platform/text/ParagraphStyle.h"

#include <QtCore/QRectF>
#include <QtCore/QSizeF>

#include <memory>

namespace zq::platform {

class ControlView;
class Font;
class Menu;
class TrackingSession;
struct Event;

// A cell shows a value in a rectangle of its control view. It belongs to its view, which it does
// not own.
//
// Cells are held by Ref: tracking keeps its cell alive.
//
// Thread: main.
class ZQTICKER_EXPORT Cell : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSCell")

 public:
  // A text cell with an empty text, natural alignment and no font.
  Cell();
  ~Cell() override;

  CellType type() const;

  // Off at first. Setting anything but off and mixed means on, and so does mixed where the cell
  // does not allow it. Tells the control view of a change.
  CellState state() const;
  virtual void setState(CellState state);
  // The state after this one: on, off, and mixed between off and on where it is allowed.
  CellState nextState() const;
  virtual void setNextState();
  bool allowsMixedState() const;
  void setAllowsMixedState(bool allows);

  bool isEnabled() const;
  virtual void setEnabled(bool enabled);
  bool isHighlighted() const;
  virtual void setHighlighted(bool highlighted);
  // Whether tracking sends the action on every pass rather than once at its end.
  bool isContinuous() const;
  virtual void setContinuous(bool continuous);
  virtual bool isBordered() const;
  virtual void setBordered(bool bordered);

  // What the cell shows: a QString, a number, a date, a Ref<AttributedString> or an Image.
  const Any& objectValue() const { return contents_; }
  virtual void setObjectValue(const Any& value);
  // The value as text, attributes left out; empty for an image and for nothing.
  QString title() const;
  virtual void setTitle(const QString& title);

  // Null where none was set; the title is then measured and drawn in the default font.
  Ref<Font> font() const;
  virtual void setFont(const Ref<Font>& font);
  TextAlignment alignment() const;
  virtual void setAlignment(TextAlignment alignment);
  ControlSize controlSize() const { return controlSize_; }
  virtual void setControlSize(ControlSize size);

  // The menu that the cell pops up, or null. Not archived.
  const Ref<Menu>& menu() const { return menu_; }
  virtual void setMenu(const Ref<Menu>& menu);

  // What is sent to whom by a click; none here, see ActionCell.
  virtual Selector action() const;
  virtual Target target() const;

  // Not owned; null while the cell belongs to no view and once that has gone.
  ControlView* controlView() const { return controlView_.get(); }
  virtual void setControlView(ControlView* view);

  // Sizes, in points.

  // The smallest size that shows everything; here that of the title.
  virtual QSizeF cellSize() const;
  // The same within `bounds`, which is not looked at here.
  virtual QSizeF cellSizeForBounds(const QRectF& bounds) const;
  // Where inside `bounds` the contents are drawn; here `bounds` itself.
  virtual QRectF drawingRectForBounds(const QRectF& bounds) const;
  // cellSize by default.
  virtual QSizeF intrinsicContentSize() const;

  // Drawing into the current context, in the coordinates of `inView`.

  // Draws the border, if any, and the interior.
  virtual void drawWithFrame(const QRectF& frame, ControlView* inView);
  // Draws the contents; here the title on one line, in the middle of the height.
  virtual void drawInteriorWithFrame(const QRectF& frame, ControlView* inView);
  // Sets the highlight and has the view drawn anew where it changes.
  // Operation: highlight:withFrame:inView:
  virtual void highlight(bool flag, const QRectF& withFrame, ControlView* inView);

  // Tracking.

  // The machine that does what trackMouse describes; see TrackingSession. Cells with rules of
  // their own make another.
  virtual std::shared_ptr<TrackingSession> makeTrackingSession(const Event& event,
                                                               const QRectF& inRect,
                                                               ControlView* ofView,
                                                               bool untilMouseUp);
  // Runs that machine to its end in an event loop of its own, which takes all that the left button
  // does meanwhile, and returns whether it ended with Yes. A control feeds the machine from its
  // handlers instead. The end of the application, and of the view, ends it with No.
  bool trackMouse(const Event& event, const QRectF& inRect, ControlView* ofView, bool untilMouseUp);

  // Hooks of tracking; points are window points. Whether to follow the mouse at all, and on: YES by
  // default.
  virtual bool startTrackingAt(QPointF startPoint, ControlView* inView);
  virtual bool continueTracking(QPointF lastPoint, QPointF at, ControlView* inView);
  virtual void stopTracking(QPointF lastPoint, QPointF at, ControlView* inView, bool mouseIsUp);

  // What a completed click does: sends the action for `inView`, then sets the next state where
  // clickChangesState. A press by assistive technology does the same.
  virtual void performClick(ControlView* inView);
  // Whether a click on `view` takes the cell to its next state; false here.
  virtual bool clickChangesState(const ControlView* view) const;

  // Pops up the menu, if there is one, as an answer to `event`; here at the origin of `cellFrame`.
  virtual void showMenuForEvent(const Event& event, ControlView* controlView,
                                const QRectF& cellFrame);

  // An equal cell that belongs to no view.
  Ref<Object> copy() override;
  // Archives all but menu and control view. Unknown bits of the flag words are written as they
  // were read.
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 protected:
  Cell(const Cell& other);

 private:
  // The archive's own words are where the flags live, so that no bit is lost.
  std::uint32_t flags_;
  std::uint32_t flags2_;
  ControlSize controlSize_ = ControlSize::Regular;
  // The font of a text cell, the image of an image cell.
  Ref<Object> support_;
  Any contents_;
  Ref<Menu> menu_;
  Weak<ControlView> controlView_;
};

} // namespace zq::platform
