// The cell of a rollover button.
#pragma once

#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/rollover/appearance_attributes.h"

class ZQRollOverButtonAppearance;

namespace zq {
class RollOverDrawings;
}
namespace zq::platform {
class BezierPath;
}

// Points between the bounds of a rollover button and the frame in which its cell is drawn; 0 unless
// a program sets it. The cell does not read it.
extern ZQTICKER_EXPORT float zq_insetCell;

// Draws a button in one of three looks, normal, mouse-over and highlighted, and tracks the mouse: a
// press is a click, or, on a cell with a menu, pops the menu up once it has been held, or at once
// when it lies on the arrow.
//
// Colours and shadows come from an appearance: the cell's own, or without one that of the class of
// its control view. A setter of the cell changes that appearance, and with it every button that
// shares it. Without any appearance getters answer null, 0 or false, and setters do nothing; fills
// then have the colour that the context has.
//
// Drawing goes by a layout for one frame size. It is computed on the first draw at a new size, and
// after whatever says that it invalidates the layout. A redraw builds nothing anew that has not
// changed.
//
// Thread: main.
class ZQTICKER_EXPORT ZQRollOverButtonCell : public zq::platform::ButtonCell {
  Q_GADGET
  ZQ_OBJECT

 public:
  // A centred cell called "Button" without an appearance of its own.
  // Operation: init
  ZQRollOverButtonCell();
  // The same with another title.
  // Operation: initTextCell:
  explicit ZQRollOverButtonCell(const QString& title);
  ~ZQRollOverButtonCell() override;

  // Appearance.

  // The cell's own appearance, else that of the control view's class; null without both.
  std::shared_ptr<ZQRollOverButtonAppearance> appearance() const;
  // Gives the cell an appearance of its own; null takes it away. Does not invalidate the layout.
  void setAppearance(std::shared_ptr<ZQRollOverButtonAppearance> appearance);

  // The attributes of the appearance; appearance_attributes.h says what they mean. None of them but
  // the bezel style invalidates the layout.
#define ZQ_DECLARE_FORWARDING(Type, property, getter, setter)                                      \
  Type getter() const;                                                                             \
  void setter(Type property);
  ZQ_APPEARANCE_OBJECTS(ZQ_DECLARE_FORWARDING)
#undef ZQ_DECLARE_FORWARDING
  std::uint64_t shadingMode() const;
  void setShadingMode(std::uint64_t shadingMode);
  double popUpMenuDelay() const;
  void setPopUpMenuDelay(double popUpMenuDelay);
  bool alwaysShowMenuIndicator() const;
  void setAlwaysShowMenuIndicator(bool alwaysShowMenuIndicator);
  bool isBordered() const override;
  void setBordered(bool bordered) override;
  // The appearance's bezel style. Setting it invalidates the layout.
  std::uint64_t zqBezelStyle() const;
  void setZqBezelStyle(std::uint64_t style);
  // The same as setZqBezelStyle; the style of the platform's cell, which bezelStyle gives, stays as
  // it is.
  void setBezelStyle(int style) override;

  // Whether the mouse is over the control. Setting it redraws nothing.
  bool mouseOver() const {
    return mouseOver_;
  }
  void setMouseOver(bool mouseOver) {
    mouseOver_ = mouseOver;
  }

  // Layout.

  // Computes the layout for `frame` in the coordinates of `inView`; null counts as not flipped.
  void calculateLayoutForFrame(const QRectF& frame, zq::platform::ControlView* inView);
  // Has the next draw compute the layout: sets the width of lastFrameSize to 0. A new title does
  // not do so by itself.
  void invalidateLayout();
  // Both invalidate the layout.
  void setMenu(const zq::platform::Ref<zq::platform::Menu>& menu) override;
  void setFont(const zq::platform::Ref<zq::platform::Font>& font) override;

  // The frame size of the layout; zero before the first one.
  QSizeF lastFrameSize() const {
    return lastFrameSize_;
  }
  void setLastFrameSize(QSizeF size) {
    lastFrameSize_ = size;
  }
  // The outline of the button, at the origin: where it is drawn decides the frame. Null before the
  // first layout.
  const zq::platform::Ref<zq::platform::BezierPath>& backgroundPath() const {
    return backgroundPath_;
  }
  void setBackgroundPath(const zq::platform::Ref<zq::platform::BezierPath>& path);
  // The same while it is pressed: one point lower at what is seen as its top.
  const zq::platform::Ref<zq::platform::BezierPath>& highlightedBackgroundPath() const {
    return highlightedBackgroundPath_;
  }
  void setHighlightedBackgroundPath(const zq::platform::Ref<zq::platform::BezierPath>& path);
  // The triangle that stands for the menu, in the view's coordinates. Null until a layout with a
  // menu; a layout without one leaves it.
  const zq::platform::Ref<zq::platform::BezierPath>& arrowPath() const {
    return arrowPath_;
  }
  void setArrowPath(const zq::platform::Ref<zq::platform::BezierPath>& path);
  // Where the title is drawn, in the view's coordinates.
  const QRectF& textRect() const {
    return textRect_;
  }

  // Points kept free between the end of an outline of `height` points and the text, a whole number:
  // 5 in a rounded rectangle, in a plate so many that half of the ascender meets its round end.
  double textInsetForHeight(double height) const;
  // intrinsicContentSize.
  QSizeF cellSize() const override;
  // Room for the title, and for the arrow of a menu; 22 points high, 19 as a small and 16 as a mini
  // control.
  QSizeF intrinsicContentSize() const override;

  // Drawing. Both leave the colours that they set in the current context.

  // Draws the interior, and around it the frame where the cell is bordered.
  void drawWithFrame(const QRectF& frame, zq::platform::ControlView* inView) override;
  // Draws the body, the arrow and the title by the layout as it is. A highlighted cell restores the
  // context's state also where it has not saved it, which is where highlightsBy holds contents
  // only: what the caller saved is then restored early.
  void drawInteriorWithFrame(const QRectF& frame, zq::platform::ControlView* inView) override;

  // Tracking.

  // Ends with Yes for a click and for a menu, with No when the pointer has left the frame; with
  // `untilMouseUp` also when the cell stops tracking before the release. Each event restarts the
  // wait of popUpMenuDelay seconds for the menu.
  std::shared_ptr<zq::platform::TrackingSession>
  makeTrackingSession(const zq::platform::Event& event, const QRectF& inRect,
                      zq::platform::ControlView* ofView, bool untilMouseUp) override;
  // Whether the control's button type is on/off.
  bool clickChangesState(const zq::platform::ControlView* view) const override;
  // Where the menu pops up, in window coordinates: one point to the right of the frame's origin,
  // and 5.5 below.
  QPointF menuPositionForFrame(const QRectF& frame, zq::platform::ControlView* inView) const;
  // Pops up the menu, if there is one, at that place, whatever the location of `event`.
  void showMenuForEvent(const zq::platform::Event& event, zq::platform::ControlView* controlView,
                        const QRectF& cellFrame) override;

  // A new cell that has the title and the appearance of a new one: nothing of this cell.
  // Operation: copyWithZone:
  zq::platform::Ref<zq::platform::Object> copy() override;

  // The appearance is archived where the cell has its own, its bordered flag left out. A coder
  // without keys logs "will only work with keyed coding"; nothing is written then, and nothing
  // read.
  void encodeWithCoder(zq::platform::Coder& coder) override;
  // A decoded cell is centred, whatever the archive says.
  zq::platform::Ref<zq::platform::Object> initWithCoder(zq::platform::Coder& coder) override;

 private:
  void finishInit();
  void layOutArrow(float endRadius, bool isFlipped);

  std::shared_ptr<ZQRollOverButtonAppearance> appearance_;
  bool mouseOver_ = false;
  zq::platform::Ref<zq::platform::BezierPath> backgroundPath_;
  zq::platform::Ref<zq::platform::BezierPath> highlightedBackgroundPath_;
  zq::platform::Ref<zq::platform::BezierPath> arrowPath_;
  // A width of 0 marks the layout as invalid.
  QSizeF lastFrameSize_{0, 0};
  QRectF textRect_;
  // Makes both outlines.
  zq::platform::Ref<zq::platform::BezierPath> (*getBackgroundSelector_)(const QRectF& rect) =
      nullptr;
  // What drawing keeps for the next time.
  std::unique_ptr<zq::RollOverDrawings> drawings_;
};
