// The platform's scroll view.
#pragma once

#include "zqticker/platform/controls/DraggingDestination.h"
#include "zqticker/platform/objects/Weak.h"

#include <QtWidgets/QScrollArea>

#include <memory>

namespace zq::platform {

// A QScrollArea that is the destination of drags over the whole of it, frame and scroll bars
// included, once setAcceptDrops(true) registers it. A widget inside that accepts drops itself has
// the drags over it.
//
// The operations of DraggingDestination are where drags arrive; override them, or leave them to
// another destination. What nobody answers counts as 0 and no. As long as a drag is over the view
// its moves come, whatever was answered to the last.
//
// What an operation raises is logged where the event loop called the view, and counts as no answer;
// it passes through where the program did. The view may be destroyed in any of them.
//
// Thread: main.
class ZQTICKER_EXPORT ScrollView : public QScrollArea, public DraggingDestination {
  Q_OBJECT

 public:
  explicit ScrollView(QWidget* parent = nullptr);
  ~ScrollView() override;

  // Who answers the operations for the view; not owned. Null, the default, and one that has gone
  // answer none.
  DraggingDestination* draggingDestination() const { return destination_.get(); }
  void setDraggingDestination(Weak<DraggingDestination> destination) { destination_ = destination; }

  std::optional<DragOperationMask> draggingEntered(const DraggingInfo& sender) override;
  std::optional<DragOperationMask> draggingUpdated(const DraggingInfo& sender) override;
  bool draggingExited(const DraggingInfo& sender) override;
  std::optional<bool> prepareForDragOperation(const DraggingInfo& sender) override;
  std::optional<bool> performDragOperation(const DraggingInfo& sender) override;
  bool concludeDragOperation(const DraggingInfo& sender) override;
  bool draggingEnded(const DraggingInfo& sender) override;

 protected:
  bool event(QEvent* event) override;
  void setupViewport(QWidget* viewport) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  struct Drag;

  void dragHasLeft();

  Weak<DraggingDestination> destination_;
  // The drag that is over the view; null for none.
  std::shared_ptr<Drag> drag_;
};

} // namespace zq::platform
