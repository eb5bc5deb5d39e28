#include "zqticker/rollover/ZQRollOverButtonCell.h"

#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/Event.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/rollover/RollOverDrawings_p.h"
#include "zqticker/rollover/RollOverTracking_p.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

using namespace zq::platform;

float zq_insetCell = 0;

ZQRollOverButtonCell::ZQRollOverButtonCell() : drawings_(std::make_unique<zq::RollOverDrawings>()) {
  finishInit();
}

ZQRollOverButtonCell::ZQRollOverButtonCell(const QString& title)
    : ButtonCell(title), drawings_(std::make_unique<zq::RollOverDrawings>()) {
  finishInit();
}

ZQRollOverButtonCell::~ZQRollOverButtonCell() = default;

void ZQRollOverButtonCell::finishInit() {
  ButtonCell::setAlignment(TextAlignment::Center);
}

Ref<Object> ZQRollOverButtonCell::copy() {
  const auto copy = std::make_shared<ZQRollOverButtonCell>();
  if (appearance_) {
    // They reach no appearance: the new cell has neither one of its own nor a view. That is
    // deliberate; copies that took their look along would no longer follow that of the class.
#define ZQ_COPY_OBJECT(Type, property, getter, setter) copy->setter(copyOf(getter()));
    ZQ_APPEARANCE_OBJECTS(ZQ_COPY_OBJECT)
#undef ZQ_COPY_OBJECT
  }
  return copy;
}

Ref<ZQRollOverButtonAppearance> ZQRollOverButtonCell::appearance() const {
  if (appearance_)
    return appearance_;
  const ControlView* view = controlView();
  return view ? std::dynamic_pointer_cast<ZQRollOverButtonAppearance>(view->classAppearance())
              : nullptr;
}

void ZQRollOverButtonCell::setAppearance(Ref<ZQRollOverButtonAppearance> appearance) {
  appearance_ = std::move(appearance);
}

#define ZQ_FORWARD(Type, property, getter, setter)                                                 \
  Type ZQRollOverButtonCell::getter() const {                                                      \
    const auto shown = appearance();                                                               \
    return shown ? shown->getter() : Type();                                                       \
  }                                                                                                \
  void ZQRollOverButtonCell::setter(Type property) {                                               \
    if (const auto shown = appearance())                                                           \
      shown->setter(std::move(property));                                                          \
  }
ZQ_APPEARANCE_OBJECTS(ZQ_FORWARD)
ZQ_FORWARD(ZQIntegerAttribute, shadingMode, shadingMode, setShadingMode)
ZQ_FORWARD(ZQSecondsAttribute, popUpMenuDelay, popUpMenuDelay, setPopUpMenuDelay)
ZQ_FORWARD(ZQFlagAttribute, alwaysShowMenuIndicator, alwaysShowMenuIndicator,
           setAlwaysShowMenuIndicator)
ZQ_FORWARD(ZQFlagAttribute, bordered, isBordered, setBordered)
#undef ZQ_FORWARD

std::uint64_t ZQRollOverButtonCell::zqBezelStyle() const {
  const auto shown = appearance();
  return shown ? shown->bezelStyle() : 0;
}

void ZQRollOverButtonCell::setZqBezelStyle(std::uint64_t style) {
  if (const auto shown = appearance())
    shown->setBezelStyle(style);
  lastFrameSize_.setWidth(0);
}

void ZQRollOverButtonCell::setBezelStyle(int style) {
  setZqBezelStyle(std::uint64_t(style));
}

void ZQRollOverButtonCell::invalidateLayout() {
  lastFrameSize_.setWidth(0);
}

void ZQRollOverButtonCell::setMenu(const Ref<Menu>& menu) {
  ButtonCell::setMenu(menu);
  lastFrameSize_.setWidth(0);
}

void ZQRollOverButtonCell::setFont(const Ref<Font>& font) {
  ButtonCell::setFont(font);
  lastFrameSize_.setWidth(0);
}

void ZQRollOverButtonCell::setBackgroundPath(const Ref<BezierPath>& path) {
  backgroundPath_ = path;
}
void ZQRollOverButtonCell::setHighlightedBackgroundPath(const Ref<BezierPath>& path) {
  highlightedBackgroundPath_ = path;
}
void ZQRollOverButtonCell::setArrowPath(const Ref<BezierPath>& path) {
  arrowPath_ = path;
}

std::shared_ptr<TrackingSession> ZQRollOverButtonCell::makeTrackingSession(const Event& event,
                                                                           const QRectF& inRect,
                                                                           ControlView* ofView,
                                                                           bool untilMouseUp) {
  return std::make_shared<zq::RollOverTracking>(
      std::static_pointer_cast<ZQRollOverButtonCell>(shared_from_this()), event, inRect, ofView,
      untilMouseUp);
}

bool ZQRollOverButtonCell::clickChangesState(const ControlView* view) const {
  return view && view->buttonType() == ButtonType::OnOff;
}

QPointF ZQRollOverButtonCell::menuPositionForFrame(const QRectF& frame, ControlView* inView) const {
  const QPointF origin = inView ? inView->convertPointToWindow(frame.topLeft()) : QPointF();
  return origin + QPointF(1.0, -5.5);
}

void ZQRollOverButtonCell::showMenuForEvent(const Event& event, ControlView* controlView,
                                            const QRectF& cellFrame) {
  Event atFrame = event;
  atFrame.locationInWindow = menuPositionForFrame(cellFrame, controlView);
  Menu::popUpContextMenu(menu(), atFrame, controlView);
}
