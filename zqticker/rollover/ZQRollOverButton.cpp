#include "zqticker/rollover/ZQRollOverButton.h"

#include "zqticker/platform/controls/Event.h"
#include "zqticker/platform/controls/view_notifications.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/system/Bundle.h"
#include "zqticker/platform/system/Notification.h"
#include "zqticker/platform/system/NotificationCenter.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;

ZQRollOverButton::ZQRollOverButton(QWidget* parent)
    : RollOverButtonClass(this), Button(std::make_shared<ZQRollOverButtonCell>(), parent) {}

ZQRollOverButton::ZQRollOverButton(const QRectF& frame, const QString& title, QWidget* parent)
    : RollOverButtonClass(this), Button(std::make_shared<ZQRollOverButtonCell>(), parent) {
  setFrame(frame);
  setDefaultValues();
  setTitle(title);
}

ZQRollOverButton::~ZQRollOverButton() {
  // The registration for its own frame stays, which is deliberate: nobody posts about a view that
  // has gone, and the center sends nothing to it.
  NotificationCenter::defaultCenter().removeObserver(this, WindowDidResizeNotification);
  removeTrackingRect(trackingRect_);
}

QUrl ZQRollOverButton::appearanceDataURL(const QString& className) {
  return Bundle::mainBundle().URLForResource(className, u"button"_s);
}

Ref<Object> ZQRollOverButton::classAppearance() const {
  return appearanceOf(record());
}

Ref<ZQRollOverButtonCell> ZQRollOverButton::rollOverCell() const {
  return std::dynamic_pointer_cast<ZQRollOverButtonCell>(cell());
}

void ZQRollOverButton::awakeFromNib() {
  setDefaultValues();
}

void ZQRollOverButton::setDefaultValues() {
  if (!rollOverCell()) {
    const Ref<ButtonCell> old = cell();
    const auto replacement = std::make_shared<ZQRollOverButtonCell>(title());
    setCell(replacement);
    replacement->setControlSize(ControlSize::Regular);
    replacement->setTag(old->tag());
    replacement->setTarget(old->target());
    replacement->setAction(old->action());
    replacement->setContinuous(old->isContinuous());
    // The button answers for the new cell by now: its state is its own, not the old cell's. That is
    // deliberate; buttons made from others start off.
    replacement->setState(state());
  }
  NotificationCenter::defaultCenter().addObserver(this, &ZQRollOverButton::frameDidChange,
                                                  QString(ViewFrameDidChangeNotification),
                                                  viewObject());
  if (!cell()->font()) {
    cell()->setFont(
        Font::boldSystemFontOfSize(Font::systemFontSizeForControlSize(ControlSize::Regular)));
    updateGeometry();
    setNeedsDisplay();
  }
  setPostsFrameChangedNotifications(true);
}

// What the cell's appearance says.

#define ZQ_FORWARD(Type, property, getter, setter)                                                 \
  Type ZQRollOverButton::getter() const {                                                          \
    const auto shown = rollOverCell();                                                             \
    return shown ? shown->getter() : Type();                                                       \
  }                                                                                                \
  void ZQRollOverButton::setter(Type property) {                                                   \
    if (const auto shown = rollOverCell())                                                         \
      shown->setter(std::move(property));                                                          \
    setNeedsDisplay();                                                                             \
  }
ZQ_APPEARANCE_OBJECTS(ZQ_FORWARD)
ZQ_FORWARD(ZQIntegerAttribute, shadingMode, shadingMode, setShadingMode)
ZQ_FORWARD(ZQFlagAttribute, alwaysShowMenuIndicator, alwaysShowMenuIndicator,
           setAlwaysShowMenuIndicator)
#undef ZQ_FORWARD

double ZQRollOverButton::popUpMenuDelay() const {
  const auto shown = rollOverCell();
  return shown ? shown->popUpMenuDelay() : 0;
}
void ZQRollOverButton::setPopUpMenuDelay(double popUpMenuDelay) {
  if (const auto shown = rollOverCell())
    shown->setPopUpMenuDelay(popUpMenuDelay);
}

ControlSize ZQRollOverButton::controlSize() const {
  return cell()->controlSize();
}
void ZQRollOverButton::setControlSize(ControlSize controlSize) {
  cell()->setControlSize(controlSize);
  updateGeometry();
  setNeedsDisplay();
}

int ZQRollOverButton::bezelStyle() const {
  const auto shown = rollOverCell();
  return shown ? int(shown->zqBezelStyle()) : Button::bezelStyle();
}
void ZQRollOverButton::setBezelStyle(int style) {
  const auto shown = rollOverCell();
  if (!shown)
    return Button::setBezelStyle(style);
  shown->setZqBezelStyle(std::uint64_t(style));
  updateGeometry();
}

bool ZQRollOverButton::isBordered() const {
  return cell()->isBordered();
}
void ZQRollOverButton::setBordered(bool bordered) {
  Button::setBordered(bordered);
  cell()->setBordered(bordered);
}

// The view.

bool ZQRollOverButton::isOpaque() const {
  return false;
}
bool ZQRollOverButton::acceptsFirstMouse(const Event*) const {
  return true;
}
bool ZQRollOverButton::canBecomeKeyView() const {
  return false;
}

QSizeF ZQRollOverButton::intrinsicContentSize() const {
  return {cell()->intrinsicContentSize().width(), Button::intrinsicContentSize().height()};
}

void ZQRollOverButton::sizeToFit() {
  const double inset = zq_insetCell;
  setFrame(QRectF(frame().topLeft(), cell()->cellSize() + QSizeF(2 * inset, 2 * inset)));
}

void ZQRollOverButton::drawRect(const QRectF&) {
  const double inset = zq_insetCell;
  cell()->drawWithFrame(bounds().adjusted(inset, inset, -inset, -inset), this);
}

// The pointer.

void ZQRollOverButton::resetTrackingRect() {
  if (trackingRect_ != 0)
    removeTrackingRect(trackingRect_);
  trackingRect_ = doesNotTrackMouseInside_ ? 0 : addTrackingRect(bounds(), false);
}

void ZQRollOverButton::frameDidChange(const Ref<Notification>&) {
  resetTrackingRect();
}

bool ZQRollOverButton::tracksMouseInside() const {
  return !doesNotTrackMouseInside_;
}

void ZQRollOverButton::setTracksMouseInside(bool tracksMouseInside) {
  if (tracksMouseInside == this->tracksMouseInside())
    return;
  doesNotTrackMouseInside_ = !tracksMouseInside;
  if (tracksMouseInside)
    return resetTrackingRect();
  // Its tag stays, which is deliberate: it says which rectangle was the last.
  removeTrackingRect(trackingRect_);
  if (const auto shown = rollOverCell(); shown && shown->mouseOver())
    shown->setMouseOver(false);
}

void ZQRollOverButton::mouseEntered(const Event&) {
  if (!isEnabled())
    return;
  if (const auto shown = rollOverCell())
    shown->setMouseOver(true);
  setNeedsDisplay();
}

void ZQRollOverButton::mouseExited(const Event&) {
  if (!isEnabled())
    return;
  if (const auto shown = rollOverCell())
    shown->setMouseOver(false);
  setNeedsDisplay();
}

void ZQRollOverButton::enabledWillChange(bool enabled) {
  if (enabled)
    return;
  if (const auto shown = rollOverCell())
    shown->setMouseOver(false);
  setNeedsDisplay();
}

// The window.

void ZQRollOverButton::viewDidMoveToWindow() {
  NotificationCenter& center = NotificationCenter::defaultCenter();
  if (!isInWindow()) {
    removeTrackingRect(trackingRect_);
    center.removeObserver(this, WindowDidResizeNotification);
    return;
  }
  resetTrackingRect();
  center.addObserver(this, &ZQRollOverButton::frameDidChange, QString(WindowDidResizeNotification),
                     windowObject());
}

void ZQRollOverButton::removeFromSuperview() {
  if (trackingRect_ != 0)
    removeTrackingRect(trackingRect_);
  Button::removeFromSuperview();
}

void ZQRollOverButton::removeFromSuperviewWithoutNeedingDisplay() {
  if (trackingRect_ != 0)
    removeTrackingRect(trackingRect_);
  Button::removeFromSuperviewWithoutNeedingDisplay();
}
