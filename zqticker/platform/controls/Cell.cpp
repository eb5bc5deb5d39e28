#include "zqticker/platform/controls/Cell.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/controls/CellTracking_p.h"
#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/Event.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/controls/cell_drawing_p.h"
#include "zqticker/platform/controls/cell_flags_p.h"
#include "zqticker/platform/controls/tracking_loop_p.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/string_drawing.h"

namespace zq::platform {

ZQ_REGISTER_CLASS(Cell);

static std::uint32_t flagsOfTextCell() {
  std::uint32_t word = 0;
  cell_flags::Type.set(word, std::uint32_t(CellType::Text));
  return word;
}

static std::uint32_t flags2OfNaturalAlignment() {
  std::uint32_t word = 0;
  cell_flags2::Alignment.set(word, std::uint32_t(TextAlignment::Natural));
  return word;
}

Cell::Cell()
    : flags_(flagsOfTextCell()), flags2_(flags2OfNaturalAlignment()), contents_(QString()) {}
Cell::~Cell() = default;

// A copy belongs to no view.
Cell::Cell(const Cell& other)
    : Object(other), flags_(other.flags_), flags2_(other.flags2_), controlSize_(other.controlSize_),
      support_(other.support_), contents_(other.contents_), menu_(other.menu_) {}

Ref<Object> Cell::copy() {
  return Ref<Object>(new Cell(*this));
}

CellType Cell::type() const {
  return CellType(cell_flags::Type.get(flags_));
}

CellState Cell::state() const {
  if (cell_flags2::Mixed.isSet(flags2_))
    return CellState::Mixed;
  return cell_flags::On.isSet(flags_) ? CellState::On : CellState::Off;
}

void Cell::setState(CellState wanted) {
  CellState state = wanted;
  if (wanted != CellState::Off && (wanted != CellState::Mixed || !allowsMixedState()))
    state = CellState::On;
  if (state == this->state())
    return;
  cell_flags::On.set(flags_, state == CellState::On);
  cell_flags2::Mixed.set(flags2_, state == CellState::Mixed);
  if (ControlView* view = controlView())
    view->cellDidChangeState(*this);
}

CellState Cell::nextState() const {
  if (state() == CellState::On)
    return CellState::Off;
  return state() == CellState::Off && allowsMixedState() ? CellState::Mixed : CellState::On;
}

void Cell::setNextState() {
  setState(nextState());
}

bool Cell::allowsMixedState() const {
  return cell_flags2::AllowsMixedState.isSet(flags2_);
}
void Cell::setAllowsMixedState(bool allows) {
  cell_flags2::AllowsMixedState.set(flags2_, allows);
  if (!allows && state() == CellState::Mixed)
    setState(CellState::On);
}

bool Cell::isEnabled() const {
  return !cell_flags::Disabled.isSet(flags_);
}
void Cell::setEnabled(bool enabled) {
  cell_flags::Disabled.set(flags_, !enabled);
}

bool Cell::isHighlighted() const {
  return cell_flags::Highlighted.isSet(flags_);
}
void Cell::setHighlighted(bool highlighted) {
  cell_flags::Highlighted.set(flags_, highlighted);
}

bool Cell::isContinuous() const {
  return cell_flags::Continuous.isSet(flags_);
}
void Cell::setContinuous(bool continuous) {
  cell_flags::Continuous.set(flags_, continuous);
}

bool Cell::isBordered() const {
  return cell_flags::Bordered.isSet(flags_);
}
void Cell::setBordered(bool bordered) {
  cell_flags::Bordered.set(flags_, bordered);
}

void Cell::setObjectValue(const Any& value) {
  contents_ = value;
}

QString Cell::title() const {
  if (const auto text = objectOf<AttributedString>(contents_))
    return text->string();
  return objectOf(contents_) ? QString() : contents_.toString();
}

void Cell::setTitle(const QString& title) {
  setObjectValue(Any(title));
}

Ref<Font> Cell::font() const {
  return std::dynamic_pointer_cast<Font>(support_);
}
void Cell::setFont(const Ref<Font>& font) {
  support_ = font;
}

TextAlignment Cell::alignment() const {
  return TextAlignment(cell_flags2::Alignment.get(flags2_));
}
void Cell::setAlignment(TextAlignment alignment) {
  cell_flags2::Alignment.set(flags2_, std::uint32_t(alignment));
}

void Cell::setControlSize(ControlSize size) {
  controlSize_ = size;
}

void Cell::setMenu(const Ref<Menu>& menu) {
  menu_ = menu;
}

Selector Cell::action() const {
  return Selector();
}
Target Cell::target() const {
  return Target();
}

void Cell::setControlView(ControlView* view) {
  controlView_ = view;
}

QSizeF Cell::cellSize() const {
  return sizeWithAttributes(title(), attributesOfTitle(*this));
}
QSizeF Cell::cellSizeForBounds(const QRectF&) const {
  return cellSize();
}
QRectF Cell::drawingRectForBounds(const QRectF& bounds) const {
  return bounds;
}
QSizeF Cell::intrinsicContentSize() const {
  return cellSize();
}

void Cell::drawWithFrame(const QRectF& frame, ControlView* inView) {
  if (isBordered())
    drawPlainBorder(frame, *this, inView);
  drawInteriorWithFrame(frame, inView);
}

void Cell::drawInteriorWithFrame(const QRectF& frame, ControlView* inView) {
  drawTitle(title(), drawingRectForBounds(frame), *this, inView);
}

void Cell::highlight(bool flag, const QRectF&, ControlView* inView) {
  if (flag == isHighlighted())
    return;
  const Weak<ControlView> view = inView;
  setHighlighted(flag);
  if (view)
    view->setNeedsDisplay();
}

std::shared_ptr<TrackingSession> Cell::makeTrackingSession(const Event& event, const QRectF& inRect,
                                                           ControlView* ofView, bool untilMouseUp) {
  return std::make_shared<CellTracking>(std::static_pointer_cast<Cell>(shared_from_this()), event,
                                        inRect, ofView, untilMouseUp);
}

bool Cell::trackMouse(const Event& event, const QRectF& inRect, ControlView* ofView,
                      bool untilMouseUp) {
  const auto session = makeTrackingSession(event, inRect, ofView, untilMouseUp);
  return runToItsEnd(*session, ofView) == TrackingSession::Result::Yes;
}

bool Cell::startTrackingAt(QPointF, ControlView*) {
  return true;
}
bool Cell::continueTracking(QPointF, QPointF, ControlView*) {
  return true;
}
void Cell::stopTracking(QPointF, QPointF, ControlView*, bool) {}

void Cell::performClick(ControlView* inView) {
  const Ref<Object> alive = shared_from_this();
  const Weak<ControlView> view = inView;
  if (inView)
    inView->sendAction(action(), target());
  if (clickChangesState(view.get()))
    setNextState();
}

bool Cell::clickChangesState(const ControlView*) const {
  return false;
}

void Cell::showMenuForEvent(const Event& event, ControlView* controlView, const QRectF& cellFrame) {
  if (!menu_ || !controlView)
    return;
  Event atFrame = event;
  atFrame.locationInWindow = controlView->convertPointToWindow(cellFrame.topLeft());
  Menu::popUpContextMenu(menu_, atFrame, controlView);
}

} // namespace zq::platform
