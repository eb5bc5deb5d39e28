// The view in which a cell draws.
#pragma once

#include "zqticker/platform/controls/control_types.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Weak.h"

#include <QtCore/QPointF>
#include <QtCore/QRectF>

class QWidget;

namespace zq::platform {

class Cell;
class Menu;
class Selector;
class Target;
struct Event;

// What a cell asks of its view. A view may be destroyed in whatever it calls: hold it by
// Weak<ControlView> over any call that leaves one's own code.
//
// Points and rectangles are in the view's own coordinates: points, the origin at the lower left
// and y upwards, or at the upper left and y downwards where isFlipped. Window coordinates are
// always y-up with the origin at the window's lower left.
//
// Thread: main.
class ZQTICKER_EXPORT ControlView : public WeakReferenced {
 public:
  ControlView();
  ~ControlView() override;

  virtual bool isFlipped() const = 0;
  // The view's area, its origin at (0, 0).
  virtual QRectF bounds() const = 0;
  virtual QPointF convertPointToWindow(QPointF point) const = 0;
  virtual QPointF convertPointFromWindow(QPointF point) const = 0;

  // Has the whole view drawn anew.
  virtual void setNeedsDisplay() = 0;

  // Sends `action` to `target` on behalf of this view, which is the message's argument as a
  // QObject pointer, if it takes one. Does nothing where either is none. What the receiver raises
  // passes through.
  virtual void sendAction(const Selector& action, const Target& target);

  // `cell` has another state than before.
  virtual void cellDidChangeState(Cell& cell);

  // `menu` was popped up for this view, or went away again, whatever made it.
  virtual void menuDidOpen(Menu& menu);
  virtual void menuDidClose(Menu& menu);

  // Whether the look changes while the pointer is inside; false by default.
  virtual bool tracksMouseInside() const;
  // The button type last set; 0 by default.
  virtual ButtonType buttonType() const;
  // The appearance that all views of this class share; null by default.
  virtual Ref<Object> classAppearance() const;

  // The widget that shows the view, or null.
  virtual QWidget* widget() = 0;
  // The reference object that stands for this view in archives and notifications, or null.
  virtual Ref<Object> viewObject();
};

} // namespace zq::platform
