#include "zqticker/platform/controls/TrackingSession.h"

#include "zqticker/platform/controls/Cell.h"
#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/point_in_rect_p.h"

#include <utility>

namespace zq::platform {

TrackingSession::TrackingSession(Ref<Cell> cell, const Event& event, const QRectF& inRect,
                                 ControlView* ofView, bool untilMouseUp)
    : cell_(std::move(cell)), view_(ofView), press_(event), cellFrame_(inRect),
      untilMouseUp_(untilMouseUp) {}
TrackingSession::~TrackingSession() = default;

TrackingSession::Result TrackingSession::start() {
  if (isStarted_)
    return result_;
  isStarted_ = true;
  return run([this] { return begin(); });
}

TrackingSession::Result TrackingSession::handleEvent(const Event& event) {
  if (!isStarted_ || result_ != Result::Running || !(eventMask(event.type) & TrackingEventMask))
    return result_;
  if (isBusy_) {
    waiting_.push_back(event);
    return result_;
  }
  return run([this, event] { return pass(event); });
}

TrackingSession::Result TrackingSession::reachDeadline() {
  if (!isStarted_ || isBusy_ || result_ != Result::Running)
    return result_;
  return run([this] { return deadlineReached(); });
}

void TrackingSession::cancel() {
  take(Result::No);
}

std::optional<double> TrackingSession::secondsToDeadline() const {
  const std::optional<double> seconds = delaySeconds();
  if (!seconds)
    return std::nullopt;
  return *seconds > 0 ? *seconds : 0;
}

// Runs one step, then those that became due meanwhile. An exception of a step ends the session and
// passes through.
template <class Step>
TrackingSession::Result TrackingSession::run(Step step) {
  struct Busy {
    bool& flag;
    explicit Busy(bool& busy) : flag(busy) { flag = true; }
    ~Busy() { flag = false; }
  };
  const Busy busy(isBusy_);
  try {
    take(step());
    while (result_ == Result::Running && !waiting_.empty()) {
      const Event event = waiting_.front();
      waiting_.pop_front();
      take(pass(event));
    }
  } catch (...) {
    take(Result::No);
    throw;
  }
  return result_;
}

void TrackingSession::take(Result result) {
  if (result_ == Result::Running)
    result_ = view_ ? result : Result::No;
}

TrackingSession::Result TrackingSession::deadlineReached() {
  return Result::Yes;
}

std::optional<double> TrackingSession::delaySeconds() const {
  return std::nullopt;
}

bool TrackingSession::isAbandoned() const {
  return !view_ || result_ != Result::Running;
}

bool TrackingSession::isInside(const Event& event) const {
  ControlView* view = view_.get();
  if (!view)
    return false;
  return isPointInRect(view->convertPointFromWindow(event.locationInWindow), cellFrame_);
}

} // namespace zq::platform
