#include "app/queue/QueueDrops.h"

#include "app/queue/drop_contents.h"

#include <QtCore/QMimeData>
#include <QtGui/QDropEvent>

#include <algorithm>

namespace zq::app {

using namespace platform;

namespace {
// While a drag rests near an end of the table.
constexpr int ScrollMilliseconds = 60;
} // namespace

QueueDrops::QueueDrops(ZQDraggingDestinationScrollView& view, QueueTable& table, QObject* parent)
    : QObject(parent), view_(view), table_(table) {
  view.setDelegate(this);
  scrolling_.setInterval(ScrollMilliseconds);
  connect(&scrolling_, &QTimer::timeout, this, [this] {
    table_.scrollNear(point_);
    table_.setDropRow(table_.dropRowAt(point_));
  });
}
QueueDrops::~QueueDrops() = default;

void QueueDrops::highlightDraggingTarget(bool flag) {
  table_.setDrawHighlight(flag);
  if (!flag)
    end();
}

bool QueueDrops::isOwn(const DraggingInfo& sender) const {
  return sender.draggingSource() == &table_ && !table_.draggedEntries().empty();
}

DragOperationMask QueueDrops::answer(const DraggingInfo& sender) {
  const DragOperationMask offered = sender.draggingSourceOperationMask();
  if (isOwn(sender)) {
    const auto& entries = table_.draggedEntries();
    const bool canMove = std::any_of(entries.begin(), entries.end(),
                                     [&](const auto& entry) { return table_.canMove(entry); });
    if (!canMove)
      Q_EMIT refused(tr("Only what waits can be moved"));
    return canMove ? offered & DragOperationMove : DragOperationNone;
  }
  if (!sender.draggingPasteboard())
    return DragOperationNone;
  // A move would take what is dragged from the other program.
  const DragOperationMask taken =
      offered & DragOperationCopy ? DragOperationCopy : offered & DragOperationLink;
  if (const std::optional<QString> why = dropRefusal(*sender.draggingPasteboard())) {
    if (!why->isEmpty())
      Q_EMIT refused(*why);
    return DragOperationNone;
  }
  return taken;
}

void QueueDrops::follow(const DraggingInfo& sender) {
  if (!sender.event() || answer_ == DragOperationNone)
    return;
  point_ = table_.viewport()->mapFrom(&view_, sender.event()->position().toPoint());
  table_.setDropRow(table_.dropRowAt(point_));
  if (!scrolling_.isActive())
    scrolling_.start();
}

void QueueDrops::end() {
  scrolling_.stop();
  table_.setDropRow(std::nullopt);
}

// What is dragged stays the same until it leaves; asking for it again with each move would ask the
// other program.
std::optional<DragOperationMask> QueueDrops::draggingEntered(const DraggingInfo& sender) {
  answer_ = DragOperationNone;
  answer_ = answer(sender);
  follow(sender);
  return answer_;
}

std::optional<DragOperationMask> QueueDrops::draggingUpdated(const DraggingInfo& sender) {
  follow(sender);
  return answer_;
}

bool QueueDrops::draggingExited(const DraggingInfo&) {
  end();
  return true;
}

std::optional<bool> QueueDrops::prepareForDragOperation(const DraggingInfo&) {
  scrolling_.stop();
  return answer_ != DragOperationNone;
}

std::optional<bool> QueueDrops::performDragOperation(const DraggingInfo& sender) {
  follow(sender);
  const int row = table_.dropRow().value_or(table_.model()->rowCount());
  end();
  if (isOwn(sender))
    Q_EMIT entriesDropped(table_.draggedEntries(), row);
  else if (const QMimeData* contents = sender.draggingPasteboard())
    Q_EMIT contentsDropped(*contents, row);
  else
    return false;
  return true;
}

bool QueueDrops::draggingEnded(const DraggingInfo&) {
  end();
  return true;
}

} // namespace zq::app
