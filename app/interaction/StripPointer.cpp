#include "app/interaction/StripPointer.h"

#include "app/display/SignItem.h"
#include "app/display/StripWidget.h"
#include "app/interaction/SignOpener.h"
#include "app/interaction/sign_locations.h"
#include "zqticker/platform/graphics/Color.h"

#include <QtGui/QHelpEvent>
#include <QtGui/QInputDevice>
#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QToolTip>

#include <cmath>

namespace zq::app {

using namespace platform;

namespace {
// What a step of a wheel moves.
constexpr double NotchPoints = 60;
constexpr double NotchSeconds = 0.2;

bool isByFinger(const QMouseEvent& event) {
  return event.source() != Qt::MouseEventNotSynthesized ||
         (event.device() && event.device()->type() == QInputDevice::DeviceType::TouchScreen);
}

bool opensSomething(const std::optional<SignSpot>& sign) {
  return sign && SignOpener::opensSomething(actionOf(sign->item()));
}
} // namespace

StripPointer::StripPointer(StripWidget& strip, TickerDisplay& display, const SignOpener& opener)
    : strip_(strip), display_(display), opener_(opener), resting_(&strip),
      underline_(new SignMark(SignMark::Kind::Underline, &strip)) {
  strip.setAttribute(Qt::WA_AlwaysShowToolTips);
  strip.installEventFilter(this);
  watchChildren();
  connect(&resting_, &RestingPointer::restingChanged, this, &StripPointer::pauseWhereItRests);
  connect(&strip.player(), &StripPlayer::frameDue, this, &StripPointer::showHint);
  connect(&strip.menu(), &QMenu::aboutToShow, this, [this] {
    isMenuOpen_ = true;
    resting_.setHeld(true);
    pauseWhereItRests();
  });
  // The menu has the pointer until it has gone.
  connect(
      &strip.menu(), &QMenu::aboutToHide, this,
      [this] {
        isMenuOpen_ = false;
        resting_.setHeld(false);
        pauseWhereItRests();
      },
      Qt::QueuedConnection);
}

StripPointer::~StripPointer() = default;

void StripPointer::setPausesAtRest(bool pauses) {
  pausesAtRest_ = pauses;
  pauseWhereItRests();
}

void StripPointer::pauseWhereItRests() {
  const bool pauses = pausesAtRest_ && (resting_.isResting() || isMenuOpen_);
  StripPlayer& player = strip_.player();
  if (pauses != player.isPaused(StripPlayer::Pause::Pointer))
    player.setPaused(StripPlayer::Pause::Pointer, pauses);
}

// A control keeps the pointer's moves to itself; that it comes there ends the hint.
void StripPointer::watchChildren() {
  for (QObject* child : strip_.children())
    if (child->isWidgetType() && child != underline_)
      child->installEventFilter(this);
}

bool StripPointer::eventFilter(QObject* receiver, QEvent* event) {
  if (receiver != &strip_) {
    if (event->type() == QEvent::Enter)
      leave();
    return false;
  }
  switch (event->type()) {
  case QEvent::ChildAdded:
    watchChildren();
    break;
  case QEvent::Enter:
    moveTo(static_cast<QEnterEvent*>(event)->position());
    break;
  case QEvent::MouseMove:
    drag(static_cast<QMouseEvent*>(event)->position());
    moveTo(static_cast<QMouseEvent*>(event)->position());
    break;
  case QEvent::Wheel:
    turn(*static_cast<QWheelEvent*>(event));
    return true;
  case QEvent::MouseButtonPress:
  case QEvent::MouseButtonDblClick:
    press(*static_cast<QMouseEvent*>(event));
    break;
  case QEvent::MouseButtonRelease:
    release(*static_cast<QMouseEvent*>(event));
    break;
  case QEvent::Leave:
    leave();
    break;
  case QEvent::Hide:
    leave();
    letGo();
    break;
  case QEvent::ToolTip:
    return showToolTip(*static_cast<QHelpEvent*>(event));
  default:
    break;
  }
  return false;
}

bool StripPointer::isOnControl(QPointF place) const {
  return strip_.childAt(place.toPoint()) != nullptr;
}

std::optional<SignSpot> StripPointer::sign() const {
  return place_ && !isOnControl(*place_) ? signAt(display_, *place_) : std::nullopt;
}

void StripPointer::moveTo(QPointF place) {
  place_ = place;
  showHint();
}

void StripPointer::leave() {
  place_.reset();
  showHint();
}

void StripPointer::press(const QMouseEvent& event) {
  moveTo(event.position());
  if (event.button() != Qt::LeftButton || isOnControl(event.position()))
    return;
  const auto under = sign();
  pressedAt_ = event.position();
  pressed_ = under ? under->entry : nullptr;
  strip_.player().setPaused(StripPlayer::Pause::Hand, true);
  display_.moveBy(0, strip_.time());
  takeHold(event.position());
}

void StripPointer::takeHold(QPointF place) {
  dragDirection_ = display_.direction();
  drag_.emplace(alongStrip(place), display_.strip().travel());
  drag_->moveTo(alongStrip(place), strip_.time());
}

void StripPointer::release(const QMouseEvent& event) {
  if (event.button() != Qt::LeftButton || !pressedAt_)
    return;
  drag(event.position());
  const QPointF way = event.position() - *pressedAt_;
  const Strip::Entry pressed = std::exchange(pressed_, nullptr);
  const bool wasDragged = isDragged_;
  const double speed = drag_->speedAt(strip_.time());
  letGo();
  moveTo(event.position());
  if (wasDragged) {
    // A finger that has thrown the strip does not rest on it.
    if (isByFinger(event))
      resting_.forget();
    display_.throwBy(speed, strip_.time());
    strip_.displayChanged();
    return;
  }
  const auto under = sign();
  const bool isClick = way.manhattanLength() < QApplication::startDragDistance();
  if (isClick && pressed && under && under->entry == pressed)
    opener_.perform(actionOf(under->item()));
}

void StripPointer::letGo() {
  if (!pressedAt_)
    return;
  pressedAt_.reset();
  pressed_ = nullptr;
  drag_.reset();
  isDragged_ = false;
  strip_.player().setPaused(StripPlayer::Pause::Hand, false);
}

// Grows in the direction in which going forward moves signs.
double StripPointer::alongStrip(QPointF place) const {
  const double along = display_.isHorizontal() ? place.x() : place.y();
  return isReversed(display_.direction()) ? along : -along;
}

void StripPointer::drag(QPointF place) {
  if (!drag_)
    return;
  // The strip has turned meanwhile: what was under the hand then stays there.
  if (display_.direction() != dragDirection_)
    takeHold(place_.value_or(place));
  const double along = alongStrip(place);
  if (!isDragged_ && std::abs(along - alongStrip(*pressedAt_)) < QApplication::startDragDistance())
    return;
  isDragged_ = true;
  const double now = strip_.time();
  drag_->moveTo(along, now);
  display_.moveBy(drag_->travelAt(along) - display_.strip().travel(), now);
  strip_.displayChanged();
}

void StripPointer::turn(const QWheelEvent& event) {
  const bool isHorizontal = display_.isHorizontal();
  const auto part = [&](QPoint delta) {
    return isHorizontal && delta.x() != 0 ? QPointF(delta.x(), 0) : QPointF(0, delta.y());
  };
  // Across a horizontal strip, down is forward; else signs go where the fingers go.
  const auto forward = [&](QPointF delta) {
    return isHorizontal && delta.x() == 0 ? -delta.y() : alongStrip(delta);
  };
  const double angle = forward(part(event.angleDelta()));
  const double pixels = forward(part(event.pixelDelta()));
  const double notches = angle / int(QWheelEvent::DefaultDeltasPerStep);
  const double now = strip_.time();
  // Whole steps come from a wheel, for which the pixels mean nothing.
  if (angle != 0 && std::fmod(notches, 1) == 0)
    display_.glideBy(notches * NotchPoints, NotchSeconds, now);
  else if (pixels != 0 || angle != 0)
    display_.moveBy(pixels != 0 ? pixels : notches * NotchPoints, now);
  strip_.displayChanged();
}

// As long as the pointer is elsewhere, this costs a look at it a frame.
void StripPointer::showHint() {
  if (!place_ && !isHandShown_)
    return;
  const auto under = sign();
  const bool opens = opensSomething(under);
  if (opens) {
    const Ref<Color> text = display_.defaultTextColor();
    underline_->setColors(text ? text->qColor() : QColor(Qt::black), strip_.background());
    underline_->showAt(under->area);
    underline_->raise();
  } else {
    underline_->hide();
  }
  if (opens == isHandShown_)
    return;
  isHandShown_ = opens;
  if (opens)
    strip_.setCursor(Qt::PointingHandCursor);
  else
    strip_.unsetCursor();
}

bool StripPointer::showToolTip(const QHelpEvent& event) {
  const auto under =
      isOnControl(event.pos()) ? std::nullopt : signAt(display_, QPointF(event.pos()));
  if (!opensSomething(under))
    return false;
  const QUrl url = locationOf(actionOf(under->item()).string).url;
  // Escaped, so that nothing in it is taken for a mark-up.
  QToolTip::showText(event.globalPos(), shortenedLocation(url).toHtmlEscaped(), &strip_,
                     under->area.toAlignedRect());
  return true;
}

} // namespace zq::app
