// What a press does to a cell, step by step.
#pragma once

#include "zqticker/platform/controls/Event.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Weak.h"

#include <QtCore/QRectF>

#include <deque>
#include <memory>
#include <optional>

namespace zq::platform {

class Cell;
class ControlView;

// The machine behind one tracking of the mouse. It is started once, then fed with every event of
// TrackingEventMask, and told when its deadline has come, until it has ended:
//
//     auto session = cell->makeTrackingSession(press, bounds(), this, false);
//     session->start();
//     while (session->result() == TrackingSession::Result::Running)
//       // wait for an event, at most session->secondsToDeadline(); then
//       session->handleEvent(event);     // or, when none came,
//       session->reachDeadline();
//
// Who feeds it holds it by std::shared_ptr during the call: cell, view and window may be destroyed
// in anything that it calls. The cell is kept alive by its session; without its view a session ends
// with No, silently. An event that comes while the session is at work, from an event loop inside
// an action, waits its turn; a deadline that does so passes.
//
// Thread: main.
class ZQTICKER_EXPORT TrackingSession {
 public:
  // Yes: the press came to a click or a menu. No: the pointer left before, or the tracking was
  // given up.
  enum class Result { Running, Yes, No };

  // Tracks `event`, the press, in `inRect` of `ofView`; with `untilMouseUp` the pointer may leave
  // the rectangle.
  TrackingSession(Ref<Cell> cell, const Event& event, const QRectF& inRect, ControlView* ofView,
                  bool untilMouseUp);
  virtual ~TrackingSession();
  TrackingSession(const TrackingSession&) = delete;
  TrackingSession& operator=(const TrackingSession&) = delete;

  // What precedes the first wait. Once only.
  Result start();
  // One pass. Types outside of TrackingEventMask, and whatever comes before the start or after the
  // end, are ignored.
  Result handleEvent(const Event& event);
  // The wait ended without an event; not called where there is no deadline.
  Result reachDeadline();
  // Ends with No, without calling anything. Nothing once ended.
  void cancel();

  Result result() const { return result_; }
  // How long to wait for the next event at most, counted from now; asked anew before each wait, so
  // that every pass restarts it. Nothing means for ever.
  std::optional<double> secondsToDeadline() const;

 protected:
  // The steps of a subclass. Each returns Running to go on. After any call that leaves its own
  // code, a step asks isAbandoned, and returns where it is.
  virtual Result begin() = 0;
  virtual Result pass(const Event& event) = 0;
  // The deadline came; Yes by default.
  virtual Result deadlineReached();
  // Nothing, the default, means no deadline. 0, less and no number end the wait at once.
  virtual std::optional<double> delaySeconds() const;

  // Whether the view has gone or the session was cancelled.
  bool isAbandoned() const;

  const Ref<Cell>& cell() const { return cell_; }
  // Null once it has gone.
  ControlView* view() const { return view_.get(); }
  const Event& press() const { return press_; }
  const QRectF& cellFrame() const { return cellFrame_; }
  bool isUntilMouseUp() const { return untilMouseUp_; }
  // Whether `event` lies in the cell's frame; a point on its right or far edge does not.
  bool isInside(const Event& event) const;

 private:
  template <class Step>
  Result run(Step step);
  void take(Result result);

  Ref<Cell> cell_;
  Weak<ControlView> view_;
  Event press_;
  QRectF cellFrame_;
  bool untilMouseUp_;
  bool isStarted_ = false;
  bool isBusy_ = false;
  Result result_ = Result::Running;
  std::deque<Event> waiting_;
};

} // namespace zq::platform
