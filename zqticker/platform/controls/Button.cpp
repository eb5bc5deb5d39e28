#include "zqticker/platform/controls/Button.h"

#include "zqticker/platform/controls/ButtonAccessible_p.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/ButtonObject.h"
#include "zqticker/platform/controls/Button_p.h"
#include "zqticker/platform/controls/Event.h"
#include "zqticker/platform/controls/LaterCalls_p.h"
#include "zqticker/platform/controls/PointerMonitor_p.h"
#include "zqticker/platform/controls/callback_border_p.h"
#include "zqticker/platform/controls/mouse_events_p.h"
#include "zqticker/platform/controls/view_notifications.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QSignalBlocker>
#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QButtonGroup>

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::platform {

Button::Button(QWidget* parent) : Button(std::make_shared<ButtonCell>(), parent) {}

Button::Button(const Ref<ButtonCell>& cell, QWidget* parent)
    : QAbstractButton(parent), private_(std::make_unique<Private>(this, cell)) {
  ButtonAccessible::install();
  setFocusPolicy(Qt::NoFocus);
  // Rectangles inside the view are left without leaving the view.
  setMouseTracking(true);
  // Whether the state changes is the cell's business, see nextCheckState.
  setCheckable(true);
  cell->setControlView(this);
  connect(&PointerMonitor::shared(), &PointerMonitor::ownerOfPointerChanged, this,
          [this](const PointerPlace& now) {
            LaterCalls::shared().add(
                this, [this, point = now.over(this)] { private_->pointerIsAt(point); });
          });
}

Button::~Button() {
  if (private_->press)
    private_->press->abandon();
  if (private_->isListeningToMonitor)
    PointerMonitor::shared().removeListener();
}

Ref<ButtonCell> Button::cell() const {
  return private_->cell;
}

void Button::setCell(const Ref<ButtonCell>& cell) {
  if (!cell)
    throw InvalidArgumentException(u"a button needs a cell"_s);
  if (cell == private_->cell)
    return;
  private_->cancelPress();
  if (private_->cell->controlView() == this)
    private_->cell->setControlView(nullptr);
  private_->cell = cell;
  cell->setControlView(this);
  cell->setEnabled(isEnabled());
  cellDidChangeState(*cell);
  updateGeometry();
  setNeedsDisplay();
}

QString Button::title() const {
  return private_->cell->title();
}
void Button::setTitle(const QString& title) {
  private_->cell->setTitle(title);
  updateGeometry();
  setNeedsDisplay();
}

CellState Button::state() const {
  return private_->cell->state();
}
void Button::setState(CellState state) {
  private_->cell->setState(state);
}

bool Button::isBordered() const {
  return private_->cell->isBordered();
}
void Button::setBordered(bool bordered) {
  private_->cell->setBordered(bordered);
  setNeedsDisplay();
}

int Button::bezelStyle() const {
  return private_->cell->bezelStyle();
}
void Button::setBezelStyle(int style) {
  private_->cell->setBezelStyle(style);
  setNeedsDisplay();
}

ButtonType Button::buttonType() const {
  return private_->type;
}
void Button::setButtonType(ButtonType type) {
  private_->type = type;
  private_->cell->setButtonType(type);
  setNeedsDisplay();
}

// Geometry.

QRectF Button::frame() const {
  const QWidget* superview = private_->superview();
  if (!superview)
    return {private_->originWithoutSuperview.value_or(QPointF()), QSizeF(size())};
  return {double(x()), double(superview->height() - y() - height()), double(width()),
          double(height())};
}

void Button::setFrame(const QRectF& frame) {
  const QSize size(int(std::ceil(frame.width())), int(std::ceil(frame.height())));
  if (const QWidget* superview = private_->superview()) {
    const int bottom = superview->height() - int(std::lround(frame.y()));
    setGeometry(int(std::lround(frame.x())), bottom - size.height(), size.width(), size.height());
  } else {
    private_->originWithoutSuperview = frame.topLeft();
    resize(size);
  }
}

QSizeF Button::intrinsicContentSize() const {
  return private_->cell->cellSize();
}

QSize Button::sizeHint() const {
  const QSizeF size = intrinsicContentSize();
  return {int(std::ceil(size.width())), int(std::ceil(size.height()))};
}
QSize Button::minimumSizeHint() const {
  return sizeHint();
}

void Button::sizeToFit() {
  setFrame(QRectF(frame().topLeft(), private_->cell->cellSize()));
}

bool Button::postsFrameChangedNotifications() const {
  return private_->postsFrameChanges;
}
void Button::setPostsFrameChangedNotifications(bool posts) {
  private_->postsFrameChanges = posts;
}

bool Button::isInWindow() const {
  return private_->window;
}
Ref<Object> Button::windowObject() const {
  return platform::windowObject(private_->window);
}

void Button::removeFromSuperview() {
  QWidget* superview = parentWidget();
  const QRect uncovered = geometry();
  const QPointer<QWidget> guard = superview;
  setParent(nullptr);
  if (guard)
    guard->update(uncovered);
}
void Button::removeFromSuperviewWithoutNeedingDisplay() {
  setParent(nullptr);
}

bool Button::isFlipped() const {
  return true;
}
QRectF Button::bounds() const {
  return {0, 0, double(width()), double(height())};
}

QPointF Button::convertPointToWindow(QPointF point) const {
  const QPointF own(point.x(), isFlipped() ? point.y() : height() - point.y());
  return windowPointFromGlobal(mapToGlobal(own), *this);
}
QPointF Button::convertPointFromWindow(QPointF point) const {
  const QPointF own = mapFromGlobal(globalPointFromWindow(point, *this));
  return {own.x(), isFlipped() ? own.y() : height() - own.y()};
}

void Button::setNeedsDisplay() {
  update();
}

QWidget* Button::widget() {
  return this;
}

Ref<ButtonObject> Button::makeViewObject() {
  return std::make_shared<ButtonObject>(this);
}
Ref<Object> Button::viewObject() {
  Ref<ButtonObject> object = private_->object.lock();
  if (!object) {
    object = makeViewObject();
    private_->object = object;
    private_->ownedObject = object;
  }
  return object;
}

// State and clicks.

void Button::sendAction(const Selector& action, const Target& target) {
  const QPointer<Button> alive = this;
  const bool isOfClick = private_->isPerformingClick;
  const std::shared_ptr<ButtonPress> press = isOfClick ? nullptr : private_->press;
  if (press)
    press->countAction();
  ControlView::sendAction(action, target);
  if (alive && !press && !isOfClick)
    private_->tellClicks(1);
}

void Button::cellDidChangeState(Cell& cell) {
  if (&cell != private_->cell.get() || private_->isTakingOverState)
    return;
  const QPointer<Button> alive = this;
  const bool wasChecked = isChecked();
  setNeedsDisplay();
  private_->isTakingOverState = true;
  {
    // The toolkit's own emission does not bear the end of the button.
    const QSignalBlocker blocker(this);
    setChecked(private_->cell->state() == CellState::On);
  }
  if (!alive)
    return;
  private_->isTakingOverState = false;
  // In an exclusive group the button that is on stays on.
  checkStateSet();
  if (isChecked() != wasChecked)
    private_->tellToggled();
}

// The toolkit, or a group of buttons, has set whether the button is checked.
void Button::checkStateSet() {
  const bool isOn = private_->cell->state() == CellState::On;
  if (isChecked() != isOn)
    private_->cell->setState(isChecked() ? CellState::On : CellState::Off);
}

// The toolkit asks for the consequence of a click, or a group for the end of being checked.
void Button::nextCheckState() {
  if (group() && group()->exclusive() && group()->checkedButton() != this && isChecked()) {
    setChecked(false);
    return;
  }
  const QPointer<Button> alive = this;
  const Ref<ButtonCell> cell = private_->cell;
  private_->isPerformingClick = true;
  try {
    cell->performClick(this);
  } catch (...) {
    if (alive)
      private_->isPerformingClick = false;
    throw;
  }
  if (alive)
    private_->isPerformingClick = false;
}

// Tracking rectangles.

Button::TrackingRectTag Button::addTrackingRect(const QRectF& rect, bool assumeInside) {
  const TrackingRectTag tag = private_->rectangles.add(rect, assumeInside);
  if (!std::exchange(private_->isListeningToMonitor, true))
    PointerMonitor::shared().addListener();
  return tag;
}

void Button::removeTrackingRect(TrackingRectTag tag) {
  private_->rectangles.remove(tag);
  if (private_->rectangles.isEmpty() && std::exchange(private_->isListeningToMonitor, false))
    PointerMonitor::shared().removeListener();
}

void Button::mouseEntered(const Event&) {}
void Button::mouseExited(const Event&) {}
void Button::viewDidMoveToWindow() {}
void Button::enabledWillChange(bool) {}

// Drawing.

void Button::drawRect(const QRectF&) {
  private_->cell->drawWithFrame(bounds(), this);
}

void Button::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  GraphicsContext context(&painter, size(), isFlipped());
  QRectF dirty = event->rect();
  if (!isFlipped())
    dirty.moveTop(height() - dirty.bottom());
  logRaised([&] { drawRect(dirty); });
}

} // namespace zq::platform
