#include "zqticker/platform/controls/ScrollView.h"

#include "zqticker/platform/controls/callback_border_p.h"
#include "zqticker/platform/controls/drag_operations_p.h"

#include <QtCore/QPointer>
#include <QtGui/QDropEvent>

#include <utility>

namespace zq::platform {

struct ScrollView::Drag {
  Drag(ScrollView& view, const QDropEvent& event) : info(view, event) { info.follow(nullptr); }

  // What the destination last answered, as the toolkit's action for `event`.
  Qt::DropAction actionOf(const QDropEvent& event) const {
    return actionFor(answer, event.possibleActions(), event.proposedAction());
  }

  DraggingInfo info;
  DragOperationMask answer = DragOperationNone;
};

namespace {

// Lets a drag know the event while it is handled.
class FollowedEvent {
 public:
  FollowedEvent(DraggingInfo& info, const QDropEvent& event) : info_(info), outer_(info.event()) {
    info.follow(&event);
  }
  ~FollowedEvent() { info_.follow(outer_); }
  FollowedEvent(const FollowedEvent&) = delete;
  FollowedEvent& operator=(const FollowedEvent&) = delete;

 private:
  DraggingInfo& info_;
  // An operation that runs an event loop hears of later events before it returns.
  const QDropEvent* outer_;
};

} // namespace

ScrollView::ScrollView(QWidget* parent) : QScrollArea(parent) {}
ScrollView::~ScrollView() = default;

std::optional<DragOperationMask> ScrollView::draggingEntered(const DraggingInfo& sender) {
  return destination_ ? destination_->draggingEntered(sender) : std::nullopt;
}
std::optional<DragOperationMask> ScrollView::draggingUpdated(const DraggingInfo& sender) {
  return destination_ ? destination_->draggingUpdated(sender) : std::nullopt;
}
bool ScrollView::draggingExited(const DraggingInfo& sender) {
  return destination_ && destination_->draggingExited(sender);
}
std::optional<bool> ScrollView::prepareForDragOperation(const DraggingInfo& sender) {
  return destination_ ? destination_->prepareForDragOperation(sender) : std::nullopt;
}
std::optional<bool> ScrollView::performDragOperation(const DraggingInfo& sender) {
  return destination_ ? destination_->performDragOperation(sender) : std::nullopt;
}
bool ScrollView::concludeDragOperation(const DraggingInfo& sender) {
  return destination_ && destination_->concludeDragOperation(sender);
}
bool ScrollView::draggingEnded(const DraggingInfo& sender) {
  return destination_ && destination_->draggingEnded(sender);
}

// The toolkit would give drags to the viewport, and a drag that goes from there to a scroll bar
// would leave and enter again. The view takes them all.

bool ScrollView::event(QEvent* event) {
  switch (event->type()) {
  case QEvent::DragEnter:
  case QEvent::DragMove:
  case QEvent::DragLeave:
  case QEvent::Drop:
    return QFrame::event(event);
  case QEvent::AcceptDropsChange:
    QScrollArea::event(event);
    viewport()->setAcceptDrops(false);
    return true;
  default:
    return QScrollArea::event(event);
  }
}

void ScrollView::setupViewport(QWidget* viewport) {
  QScrollArea::setupViewport(viewport);
  viewport->setAcceptDrops(false);
}

void ScrollView::dragEnterEvent(QDragEnterEvent* event) {
  // The toolkit goes on with the widget around after an entry that was refused, and hears of moves
  // only after one that was accepted. Each move has an answer of its own.
  event->setDropAction(Qt::IgnoreAction);
  event->accept();
  const QPointer<ScrollView> alive = this;
  // The window system has lost the end of the drag before.
  dragHasLeft();
  if (!alive)
    return;
  const auto drag = std::make_shared<Drag>(*this, *event);
  drag_ = drag;
  const FollowedEvent followed(drag->info, *event);
  logRaised([&] { drag->answer = draggingEntered(drag->info).value_or(DragOperationNone); });
  event->setDropAction(drag->actionOf(*event));
}

void ScrollView::dragMoveEvent(QDragMoveEvent* event) {
  const auto drag = drag_;
  if (!drag)
    return event->ignore();
  const QPointer<ScrollView> alive = this;
  const FollowedEvent followed(drag->info, *event);
  drag->answer = DragOperationNone;
  logRaised([&] { drag->answer = draggingUpdated(drag->info).value_or(DragOperationNone); });
  const Qt::DropAction action = drag->actionOf(*event);
  event->setDropAction(action);
  event->setAccepted(alive && action != Qt::IgnoreAction);
}

void ScrollView::dragLeaveEvent(QDragLeaveEvent*) {
  dragHasLeft();
}

void ScrollView::dragHasLeft() {
  if (const auto drag = std::exchange(drag_, nullptr))
    logRaised([&] { draggingExited(drag->info); });
}

void ScrollView::dropEvent(QDropEvent* event) {
  event->ignore();
  const Qt::DropAction action = drag_ ? drag_->actionOf(*event) : Qt::IgnoreAction;
  if (action == Qt::IgnoreAction)
    return dragHasLeft();
  const auto drag = std::exchange(drag_, nullptr);
  const QPointer<ScrollView> alive = this;
  const FollowedEvent followed(drag->info, *event);
  bool isPrepared = false;
  bool isPerformed = false;
  logRaised([&] { isPrepared = prepareForDragOperation(drag->info).value_or(false); });
  if (alive && isPrepared)
    logRaised([&] { isPerformed = performDragOperation(drag->info).value_or(false); });
  if (alive && isPerformed)
    logRaised([&] { concludeDragOperation(drag->info); });
  if (alive)
    logRaised([&] { draggingEnded(drag->info); });
  event->setDropAction(isPerformed ? action : Qt::IgnoreAction);
  event->setAccepted(isPerformed);
}

} // namespace zq::platform
