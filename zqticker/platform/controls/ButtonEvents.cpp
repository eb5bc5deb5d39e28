// What the toolkit tells a button.
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/Button_p.h"
#include "zqticker/platform/controls/LaterCalls_p.h"
#include "zqticker/platform/controls/PointerMonitor_p.h"
#include "zqticker/platform/controls/WindowWatch_p.h"
#include "zqticker/platform/controls/callback_border_p.h"
#include "zqticker/platform/controls/mouse_events_p.h"
#include "zqticker/platform/controls/point_in_rect_p.h"
#include "zqticker/platform/controls/view_notifications.h"
#include "zqticker/platform/system/NotificationCenter.h"

#include <QtCore/QTimer>
#include <QtGui/QEnterEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QButtonGroup>

#include <utility>

namespace zq::platform {

// Presses.

void Button::Private::beginHighlight() {
  const QPointer<Button> alive = button;
  if (isHighlightHeld)
    finishHighlight();
  if (!alive)
    return;
  const Ref<ButtonCell> highlighted = cell;
  logRaised([&] { highlighted->highlight(true, button->bounds(), button); });
  if (!alive)
    return;
  button->setDown(true);
  Q_EMIT button->pressed();
  if (QButtonGroup* group = alive ? button->group() : nullptr) {
    Q_EMIT group->idPressed(group->id(button));
    if (alive && button->group() == group)
      Q_EMIT group->buttonPressed(button);
  }
}

void Button::Private::endHighlight() {
  if (openMenus > 0) {
    isHighlightHeld = true;
    return;
  }
  finishHighlight();
}

void Button::Private::finishHighlight() {
  isHighlightHeld = false;
  const QPointer<Button> alive = button;
  const Ref<ButtonCell> highlighted = cell;
  logRaised([&] { highlighted->highlight(false, button->bounds(), button); });
  if (!alive)
    return;
  button->setDown(false);
  Q_EMIT button->released();
  if (QButtonGroup* group = alive ? button->group() : nullptr) {
    Q_EMIT group->idReleased(group->id(button));
    if (alive && button->group() == group)
      Q_EMIT group->buttonReleased(button);
  }
}

void Button::Private::tellClicks(int count) {
  const QPointer<Button> alive = button;
  for (; count > 0 && alive; --count) {
    Q_EMIT button->clicked(button->isChecked());
    if (QButtonGroup* group = alive ? button->group() : nullptr) {
      Q_EMIT group->idClicked(group->id(button));
      if (alive && button->group() == group)
        Q_EMIT group->buttonClicked(button);
    }
  }
}

void Button::Private::tellToggled() {
  const QPointer<Button> alive = button;
  const bool isOn = button->isChecked();
  Q_EMIT button->toggled(isOn);
  if (QButtonGroup* group = alive ? button->group() : nullptr) {
    Q_EMIT group->idToggled(group->id(button), isOn);
    if (alive && button->group() == group)
      Q_EMIT group->buttonToggled(button, isOn);
  }
}

void Button::Private::startPress(const Event& event) {
  const QPointer<Button> alive = button;
  // The release of the one before went elsewhere.
  cancelPress();
  if (!alive)
    return;
  const auto started = std::make_shared<ButtonPress>(button);
  press = started;
  started->begin(event);
  if (alive && started->isOver() && press == started)
    pressDidEnd();
}

void Button::Private::feedPress(const Event& event) {
  const QPointer<Button> alive = button;
  const auto fed = press;
  fed->feed(event);
  if (alive && fed->isOver() && press == fed)
    pressDidEnd();
}

void Button::Private::cancelPress() {
  const QPointer<Button> alive = button;
  if (const auto cancelled = std::exchange(press, nullptr))
    cancelled->cancel();
  if (alive)
    pressDidEnd();
}

void Button::Private::pressDidEnd() {
  press = nullptr;
  const QPointer<Button> alive = button;
  const auto pointer = std::exchange(pointerAfterPress, std::nullopt);
  if (pointer && pointer->lastInside)
    tellPointer(pointer->lastInside);
  if (pointer && alive)
    tellPointer(pointer->now);
}

void Button::Private::losePointer() {
  const QPointer<Button> alive = button;
  cancelPress();
  if (alive)
    pointerIsOutside();
}

// The pointer.

void Button::Private::later(void (Private::*action)()) {
  LaterCalls::shared().add(button, [this, action] { (this->*action)(); });
}

bool Button::Private::catchUp() {
  const QPointer<Button> alive = button;
  LaterCalls::shared().perform();
  return bool(alive);
}

void Button::Private::pointerIsAt(std::optional<QPointF> point) {
  if (press) {
    if (!pointerAfterPress)
      pointerAfterPress.emplace();
    pointerAfterPress->now = point;
    if (point && isPointInRect(*point, button->bounds()))
      pointerAfterPress->lastInside = point;
    return;
  }
  // Held down since before a menu or another window came up, it comes in when it is released: until
  // then nobody would tell that it goes again.
  if (point && (QGuiApplication::mouseButtons() & Qt::LeftButton) &&
      isPointInRect(*point, button->bounds()))
    return;
  tellPointer(point);
}

void Button::Private::tellPointer(std::optional<QPointF> point) {
  if (point && !button->isFlipped())
    point->setY(button->height() - point->y());
  const QPointF own = point.value_or(QPointF(-1, -1));
  rectangles.pointerIsAt(point, [this, own, alive = QPointer<Button>(button)](bool isEntry) {
    const Event event = eventAt(isEntry ? EventType::MouseEntered : EventType::MouseExited,
                                button->mapToGlobal(own), *button);
    logRaised([&] { isEntry ? button->mouseEntered(event) : button->mouseExited(event); });
    return bool(alive);
  });
}

void Button::Private::findPointer() {
  if (!rectangles.isEmpty())
    pointerIsAt(PointerPlace::now().over(button));
}

void Button::menuDidOpen(Menu&) {
  ++private_->openMenus;
}

void Button::menuDidClose(Menu&) {
  if (--private_->openMenus > 0)
    return;
  const QPointer<Button> alive = this;
  if (private_->isHighlightHeld)
    private_->finishHighlight();
  // The menu has the pointer until it has gone.
  if (alive)
    QTimer::singleShot(0, this, [this] {
      if (private_->catchUp())
        private_->findPointer();
    });
}

void Button::showMenu() {
  const Ref<ButtonCell> cell = private_->cell;
  const QPointF middle = bounds().center();
  cell->showMenuForEvent(eventAt(EventType::LeftMouseUp, mapToGlobal(middle), *this), this,
                         bounds());
}

void Button::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) {
    event->ignore();
    return;
  }
  event->accept();
  if (private_->catchUp())
    private_->startPress(eventOf(*event, *this));
}

void Button::mouseDoubleClickEvent(QMouseEvent* event) {
  mousePressEvent(event);
}

void Button::mouseMoveEvent(QMouseEvent* event) {
  event->accept();
  if (!private_->catchUp())
    return;
  if (private_->press) {
    private_->pointerIsAt(event->position());
    if (event->buttons() & Qt::LeftButton)
      private_->feedPress(eventOf(*event, *this));
    else
      // Something else took the release.
      private_->cancelPress();
    return;
  }
  private_->pointerIsAt(event->position());
}

void Button::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) {
    event->ignore();
    return;
  }
  event->accept();
  if (!private_->catchUp())
    return;
  private_->pointerIsAt(event->position());
  if (private_->press)
    private_->feedPress(eventOf(*event, *this));
}

// The window.

void Button::Private::checkWindow() {
  QWidget* now = button->window();
  if (now == button && !button->isVisible())
    now = nullptr;
  if (now == window)
    return;
  if (window)
    QObject::disconnect(WindowWatch::of(window), nullptr, button, nullptr);
  window = now;
  if (now) {
    WindowWatch* watch = WindowWatch::of(now);
    QObject::connect(watch, &WindowWatch::blocked, button,
                     [this] { later(&Private::losePointer); });
    QObject::connect(watch, &WindowWatch::unblocked, button,
                     [this] { later(&Private::findPointer); });
  }
  logRaised([this] { button->viewDidMoveToWindow(); });
}

void Button::Private::frameDidChange() {
  if (!postsFrameChanges)
    return;
  logRaised([about = button->viewObject()] {
    NotificationCenter::defaultCenter().postNotificationName(ViewFrameDidChangeNotification, about);
  });
}

bool Button::event(QEvent* event) {
  const QPointer<Button> alive = this;
  switch (event->type()) {
  case QEvent::Enter:
    LaterCalls::shared().add(this, [this, point = static_cast<QEnterEvent*>(event)->position()] {
      private_->pointerIsAt(point);
    });
    break;
  case QEvent::Leave:
    private_->later(&Private::pointerIsOutside);
    break;
  case QEvent::MouseMove:
  case QEvent::MouseButtonRelease:
    // The pointer is somewhere also while the button is disabled, and its handlers are not called.
    if (!isEnabled() && private_->catchUp())
      private_->pointerIsAt(static_cast<QMouseEvent*>(event)->position());
    break;
  case QEvent::WindowDeactivate:
    private_->later(&Private::losePointer);
    break;
  case QEvent::WindowActivate:
    private_->later(&Private::findPointer);
    break;
  case QEvent::ParentChange:
    if (private_->superview() && private_->originWithoutSuperview)
      setFrame({*std::exchange(private_->originWithoutSuperview, std::nullopt), QSizeF(size())});
    private_->checkWindow();
    break;
  default:
    break;
  }
  return alive ? QAbstractButton::event(event) : true;
}

void Button::changeEvent(QEvent* event) {
  const QPointer<Button> alive = this;
  if (event->type() == QEvent::EnabledChange) {
    if (!isEnabled()) {
      // The pointer may still be inside; only the press is over.
      private_->pointerAfterPress = std::nullopt;
      private_->cancelPress();
      if (alive && private_->isHighlightHeld)
        private_->finishHighlight();
    }
    if (alive)
      logRaised([this] { enabledWillChange(isEnabled()); });
    if (alive) {
      private_->cell->setEnabled(isEnabled());
      setNeedsDisplay();
    }
  }
  if (alive)
    QAbstractButton::changeEvent(event);
}

void Button::moveEvent(QMoveEvent* event) {
  QAbstractButton::moveEvent(event);
  private_->frameDidChange();
}

void Button::resizeEvent(QResizeEvent* event) {
  QAbstractButton::resizeEvent(event);
  private_->frameDidChange();
}

void Button::showEvent(QShowEvent* event) {
  QAbstractButton::showEvent(event);
  private_->checkWindow();
}

void Button::hideEvent(QHideEvent* event) {
  private_->later(&Private::losePointer);
  QAbstractButton::hideEvent(event);
  private_->checkWindow();
}

} // namespace zq::platform
