#include "app/interaction/StripPointer.h"

#include "app/display/SignItem.h"
#include "app/display/StripWidget.h"
#include "app/interaction/SignOpener.h"
#include "app/interaction/sign_locations.h"
#include "zqticker/platform/graphics/Color.h"

#include <QtGui/QHelpEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QToolTip>

namespace zq::app {

using namespace platform;

namespace {
ActionRequest requestOf(const SignItem& item) {
  return item.sign() ? actionOf(*item.sign(), item.origin().actionData) : ActionRequest();
}

bool opensSomething(const std::optional<SignSpot>& sign) {
  return sign && SignOpener::opensSomething(requestOf(sign->item()));
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
    moveTo(static_cast<QMouseEvent*>(event)->position());
    break;
  case QEvent::MouseButtonPress:
  case QEvent::MouseButtonDblClick:
    press(*static_cast<QMouseEvent*>(event));
    break;
  case QEvent::MouseButtonRelease:
    release(*static_cast<QMouseEvent*>(event));
    break;
  case QEvent::Leave:
  case QEvent::Hide:
    leave();
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
}

void StripPointer::release(const QMouseEvent& event) {
  if (event.button() != Qt::LeftButton || !pressedAt_)
    return;
  const QPointF way = event.position() - *pressedAt_;
  const Strip::Entry pressed = std::exchange(pressed_, nullptr);
  pressedAt_.reset();
  moveTo(event.position());
  const auto under = sign();
  strip_.player().setPaused(StripPlayer::Pause::Hand, false);
  const bool isClick = way.manhattanLength() < QApplication::startDragDistance();
  if (isClick && pressed && under && under->entry == pressed)
    opener_.perform(requestOf(under->item()));
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
  const QUrl url = locationOf(requestOf(under->item()).string).url;
  // Escaped, so that nothing in it is taken for a mark-up.
  QToolTip::showText(event.globalPos(), shortenedLocation(url).toHtmlEscaped(), &strip_,
                     under->area.toAlignedRect());
  return true;
}

} // namespace zq::app
