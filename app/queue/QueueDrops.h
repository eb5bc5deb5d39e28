// Drags over the queue window.
#pragma once

#include "app/queue/QueueTable.h"
#include "zqticker/views/ZQDraggingDestinationScrollView.h"

#include <QtCore/QTimer>

namespace zq::app {

// Answers the scroll view around a table: takes what other programs bring, and signs of the table
// itself, which are moved; shows the frame of the table while a drop is possible, and where signs
// would go. What cannot be dropped is refused while it is still being dragged, since a program that
// drags is not told of a later refusal.
//
// Thread: main.
class QueueDrops : public QObject, public ZQDraggingDestinationScrollViewDelegate {
  Q_OBJECT

 public:
  // Becomes the delegate of `view`, inside which `table` stands; both must outlive this.
  QueueDrops(ZQDraggingDestinationScrollView& view, QueueTable& table, QObject* parent = nullptr);
  ~QueueDrops() override;

  // Something has been dropped, to go before a row. `contents` are good until the slots return.
  Q_SIGNAL void contentsDropped(const QMimeData& contents, int beforeRow);
  Q_SIGNAL void entriesDropped(const std::vector<zq::app::Strip::Entry>& entries, int beforeRow);
  // A drag that has come in is refused; a sentence for people, not empty.
  Q_SIGNAL void refused(const QString& why);

  void highlightDraggingTarget(bool flag) override;
  std::optional<platform::DragOperationMask>
  draggingEntered(const platform::DraggingInfo& sender) override;
  std::optional<platform::DragOperationMask>
  draggingUpdated(const platform::DraggingInfo& sender) override;
  bool draggingExited(const platform::DraggingInfo& sender) override;
  std::optional<bool> prepareForDragOperation(const platform::DraggingInfo& sender) override;
  std::optional<bool> performDragOperation(const platform::DraggingInfo& sender) override;
  bool draggingEnded(const platform::DraggingInfo& sender) override;

 private:
  bool isOwn(const platform::DraggingInfo& sender) const;
  platform::DragOperationMask answer(const platform::DraggingInfo& sender);
  void follow(const platform::DraggingInfo& sender);
  void end();

  ZQDraggingDestinationScrollView& view_;
  QueueTable& table_;
  platform::DragOperationMask answer_ = platform::DragOperationNone; // to the drag that is here
  QPoint point_; // where it is, in the table's viewport
  QTimer scrolling_;
};

} // namespace zq::app
