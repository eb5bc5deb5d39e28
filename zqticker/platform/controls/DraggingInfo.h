// A drag, as its destination sees it.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QPointF>
#include <QtCore/QPointer>

class QDropEvent;
class QMimeData;
class QObject;
class QWidget;

namespace zq::platform {

// What a drop may do with what is dragged.
enum DragOperation : unsigned {
  DragOperationNone = 0,
  DragOperationCopy = 1,
  DragOperationLink = 2,
  // What the source does by itself.
  DragOperationGeneric = 4,
  // What source and destination have agreed on between them.
  DragOperationPrivate = 8,
  DragOperationMove = 16,
  // The source deletes what was dropped.
  DragOperationDelete = 32,
  DragOperationEvery = ~0U,
};
// A set of these; 0 refuses a drop.
using DragOperationMask = unsigned;

// One drag over one destination: the same object from its entry to its exit or its drop.
//
// Thread: main.
class ZQTICKER_EXPORT DraggingInfo {
 public:
  // The drag that `event` has brought to `destination`; neither is owned.
  DraggingInfo(QWidget& destination, const QDropEvent& event);
  ~DraggingInfo();
  DraggingInfo(const DraggingInfo&) = delete;
  DraggingInfo& operator=(const DraggingInfo&) = delete;

  // The object of this program from which the drag started; null where that was another program,
  // and in draggingExited.
  QObject* draggingSource() const;
  // What the source allows: Copy, Link and Move, and Generic with any of them.
  DragOperationMask draggingSourceOperationMask() const { return sourceOperations_; }
  // Where the pointer is, or was last, in coordinates of the destination's window: points, the
  // origin at its lower left, y upwards.
  QPointF draggingLocation() const { return location_; }
  // What is dragged; null in draggingExited, since the source no longer offers it.
  const QMimeData* draggingPasteboard() const;
  // Different for each entry into a destination.
  int draggingSequenceNumber() const { return sequenceNumber_; }

  // The toolkit's event that is being handled, positions in coordinates of the destination widget;
  // null in draggingExited. Good until the operation returns.
  const QDropEvent* event() const { return event_; }

  // For the destination: the drag is where `event` says; null once it has left, and between events.
  void follow(const QDropEvent* event);

 private:
  QPointer<QWidget> destination_;
  const QDropEvent* event_ = nullptr;
  DragOperationMask sourceOperations_ = DragOperationNone;
  QPointF location_;
  int sequenceNumber_;
};

} // namespace zq::platform
