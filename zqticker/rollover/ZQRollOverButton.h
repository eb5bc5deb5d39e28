// A button that changes its look while the pointer is over it.
#pragma once

#include "zqticker/platform/controls/Button.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/rollover/RollOverButtonClass.h"
#include "zqticker/rollover/appearance_attributes.h"

class ZQRollOverButtonAppearance;
class ZQRollOverButtonCell;

namespace zq::platform {
class Notification;
}

// A push button, or one that pops up a menu, drawn by a ZQRollOverButtonCell. It tells the cell
// when the pointer comes in and goes, and gives it the appearance that all buttons of its class
// share.
//
// The appearance of a class comes from a file that the program brings along; see appearanceDataURL.
// It is read once, when the class is first used: when its first button is made, or its appearance
// asked for or set. A class without a file of its own has none, whatever those above it have.
//
// The look is the cell's own appearance where it was given one, else the class's. Setting a colour
// of one button that has none of its own changes all buttons of its class; only this one is
// redrawn at once.
//
// A click changes the state only where the button type is on/off. The rest of a press, and the
// signals, are as Button says.
//
// Thread: main.
class ZQTICKER_EXPORT ZQRollOverButton : public zq::platform::Button,
                                         public virtual zq::RollOverButtonClass {
  Q_OBJECT
  Q_PROPERTY(bool tracksMouseInside READ tracksMouseInside WRITE setTracksMouseInside)
#define ZQ_STATE_PROPERTY(Type, property, getter, setter)                                          \
  Q_PROPERTY(Type property READ getter WRITE setter)
  ZQ_APPEARANCE_OBJECTS(ZQ_STATE_PROPERTY)
#undef ZQ_STATE_PROPERTY
  Q_PROPERTY(ZQIntegerAttribute shadingMode READ shadingMode WRITE setShadingMode)
  Q_PROPERTY(ZQSecondsAttribute popUpMenuDelay READ popUpMenuDelay WRITE setPopUpMenuDelay)
  Q_PROPERTY(ZQFlagAttribute alwaysShowMenuIndicator READ alwaysShowMenuIndicator WRITE
                 setAlwaysShowMenuIndicator)

 public:
  // A button without defaults: it has its cell, and no more.
  // Operation: init
  explicit ZQRollOverButton(QWidget* parent = nullptr);
  // Sets the defaults as awakeFromNib does, and then the title. The frame is that of Button::frame.
  // Operation: initWithFrame:andTitle:
  ZQRollOverButton(const QRectF& frame, const QString& title, QWidget* parent = nullptr);
  ~ZQRollOverButton() override;

  // The look of a class.

  // The appearance that all buttons of exactly this class share: `appearance<PlayButton>()`. Null
  // where it has none.
  // Operation: + appearance
  template <class Class>
  static std::shared_ptr<ZQRollOverButtonAppearance> appearance() {
    return appearanceOf(recordOf<Class>());
  }
  // Takes the place of what was read from the file; redraws nothing. Null raises
  // InvalidArgumentException.
  // Operation: + setAppearance:
  template <class Class>
  static void setAppearance(std::shared_ptr<ZQRollOverButtonAppearance> appearance) {
    setAppearanceOf(recordOf<Class>(), std::move(appearance));
  }
  // Where the appearance of the class `className`, without its namespace, is read from: the
  // resource "className.button" of the main bundle, or an empty address where there is none. A
  // subclass that has a function of this name is asked instead, and for its own subclasses too.
  //
  // What is no file address means no appearance. A file that cannot be read means none either, and
  // is logged as "Error loading appearance data for className: …". One that is no archive of an
  // appearance raises ArchiveException, and the archive of nothing InvalidArgumentException, where
  // the class is first used; it has no appearance afterwards.
  // Operation: + appearanceDataURL
  static QUrl appearanceDataURL(const QString& className);

  // Sets what a button needs that did not come by title and frame: a rollover cell, the bold system
  // font where the cell has none, and that it hears of changes of its frame. Called for a button
  // that came out of an archive.
  //
  // A cell of another kind is replaced: title, tag, target, action and continuity are taken over,
  // its state is not.
  virtual void awakeFromNib();

  // Whether the look changes while the pointer is inside; true at first. Switching it off takes the
  // look back without a redisplay.
  bool tracksMouseInside() const override;
  void setTracksMouseInside(bool tracksMouseInside);

  // The attributes of the cell's appearance, as appearance_attributes.h and the cell describe them.
  // Setters have the whole button drawn anew. A cell of another kind has none of them: its button
  // answers null, 0 and false, and setters do nothing.
#define ZQ_DECLARE_FORWARDING(Type, property, getter, setter)                                      \
  Type getter() const;                                                                             \
  void setter(Type property);
  ZQ_APPEARANCE_OBJECTS(ZQ_DECLARE_FORWARDING)
#undef ZQ_DECLARE_FORWARDING
  std::uint64_t shadingMode() const;
  void setShadingMode(std::uint64_t shadingMode);
  bool alwaysShowMenuIndicator() const;
  void setAlwaysShowMenuIndicator(bool alwaysShowMenuIndicator);
  // Setting it needs no redisplay, and asks for none.
  double popUpMenuDelay() const;
  void setPopUpMenuDelay(double popUpMenuDelay);
  zq::platform::ControlSize controlSize() const;
  void setControlSize(zq::platform::ControlSize controlSize);
  // The appearance's bezel style, of a cell of another kind the cell's. Setting the former has the
  // cell compute its layout anew, and asks for no redisplay.
  int bezelStyle() const override;
  void setBezelStyle(int style) override;
  bool isBordered() const override;
  void setBordered(bool bordered) override;

  // Never: what is behind the button shows through.
  bool isOpaque() const;
  // Always: a click into a window that is not active acts at once, whatever `event`, which may be
  // null.
  bool acceptsFirstMouse(const zq::platform::Event* event) const;
  // Never.
  bool canBecomeKeyView() const;
  // As wide as the contents need, as high as the cell.
  QSizeF intrinsicContentSize() const override;
  // Gives the frame the cell's size and zq_insetCell on all sides, its origin kept.
  void sizeToFit() override;

  void removeFromSuperview() override;
  void removeFromSuperviewWithoutNeedingDisplay() override;

  // Archives whether the button tracks the mouse besides what a Button archives. A coder without
  // keys logs "will only work with keyed coding"; nothing is written then, and nothing read. A
  // decoded button has no defaults until awakeFromNib.
  void encodeWithCoder(zq::platform::Coder& coder) override;
  void initWithCoder(zq::platform::Coder& coder) override;

  // The appearance of the button's class.
  zq::platform::Ref<zq::platform::Object> classAppearance() const override;

 protected:
  // The frame, or the size of the window, has changed; the tracking rectangle is installed anew.
  virtual void frameDidChange(const zq::platform::Ref<zq::platform::Notification>& notification);
  // The rectangle that was installed last, whether it still is or not; 0 where none was.
  TrackingRectTag trackingRect() const {
    return trackingRect_;
  }

  void mouseEntered(const zq::platform::Event& event) override;
  void mouseExited(const zq::platform::Event& event) override;
  void viewDidMoveToWindow() override;
  void enabledWillChange(bool enabled) override;
  // Draws the cell over the whole bounds less zq_insetCell on all sides, whatever is dirty.
  void drawRect(const QRectF& dirtyRect) override;
  zq::platform::Ref<zq::platform::ButtonObject> makeViewObject() override;

 private:
  // Null for a cell of another kind.
  zq::platform::Ref<ZQRollOverButtonCell> rollOverCell() const;
  void setDefaultValues();
  void resetTrackingRect();

  TrackingRectTag trackingRect_ = 0;
  bool doesNotTrackMouseInside_ = false;
};
