#include "zqticker/platform/controls/ButtonPress_p.h"

#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/Button_p.h"
#include "zqticker/platform/controls/callback_border_p.h"
#include "zqticker/platform/controls/point_in_rect_p.h"
#include "zqticker/platform/controls/tracking_loop_p.h"

#include <utility>

namespace zq::platform {

ButtonPress::ButtonPress(Button* button) : button_(button) {
  deadline_.setSingleShot(true);
  deadline_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&deadline_, &QTimer::timeout, [this] { reachDeadline(); });
}

ButtonPress::~ButtonPress() = default;

void ButtonPress::begin(const Event& event) {
  track(event);
}

void ButtonPress::feed(const Event& event) {
  const auto alive = shared_from_this();
  if (isOver_ || !button_)
    return;
  isUp_ |= event.type == EventType::LeftMouseUp;
  if (session_) {
    deadline_.stop();
    logRaised([&, session = session_] { session->handleEvent(event); });
    settle();
  } else if (isUp_) {
    isOver_ = true;
  } else if (isPointInRect(button_->convertPointFromWindow(event.locationInWindow),
                           button_->bounds())) {
    track(event);
  }
}

void ButtonPress::cancel() {
  const auto alive = shared_from_this();
  isOver_ = true;
  deadline_.stop();
  actions_ = 0;
  if (const auto session = std::exchange(session_, nullptr))
    session->cancel();
  if (isTracking_)
    endTracking();
}

void ButtonPress::abandon() {
  button_ = nullptr;
  cancel();
}

// The pointer is inside: highlights the cell and has it track from `event` on.
void ButtonPress::track(const Event& event) {
  const auto alive = shared_from_this();
  const Ref<ButtonCell> cell = button_->cell();
  isTracking_ = true;
  button_->private_->beginHighlight();
  if (!button_ || isOver_)
    return;
  session_ = cell->makeTrackingSession(event, button_->bounds(), button_, false);
  logRaised([session = session_] { session->start(); });
  settle();
}

// After each pass: goes on waiting, or draws the consequences of the end.
void ButtonPress::settle() {
  if (!session_ || !button_)
    return;
  const TrackingSession::Result result = session_->result();
  if (result == TrackingSession::Result::Running) {
    if (actions_ > 0)
      button_->private_->tellClicks(std::exchange(actions_, 0));
    if (button_ && session_)
      restartTimer();
    return;
  }
  session_.reset();
  deadline_.stop();
  isOver_ = isUp_ || result == TrackingSession::Result::Yes;
  endTracking();
}

void ButtonPress::endTracking() {
  isTracking_ = false;
  if (!button_)
    return;
  button_->private_->endHighlight();
  if (button_ && actions_ > 0)
    button_->private_->tellClicks(std::exchange(actions_, 0));
}

void ButtonPress::reachDeadline() {
  const auto alive = shared_from_this();
  if (!session_)
    return;
  logRaised([session = session_] { session->reachDeadline(); });
  settle();
  if (isOver_ && button_)
    button_->private_->pressDidEnd();
}

void ButtonPress::restartTimer() {
  deadline_.stop();
  if (const std::optional<int> milliseconds = millisecondsToDeadline(*session_))
    deadline_.start(*milliseconds);
}

} // namespace zq::platform
