// A scroll view whose delegate takes the drops.
#pragma once

#include "zqticker/platform/controls/DraggingDestination.h"
#include "zqticker/platform/controls/ScrollView.h"
#include "zqticker/platform/objects/Weak.h"
#include "zqticker/zqticker_export.h"

// Hears the steps of a drag, all of them optional, and shows where a drop is possible.
//
// Thread: main.
class ZQTICKER_EXPORT ZQDraggingDestinationScrollViewDelegate
    : public zq::platform::DraggingDestination {
 public:
  ~ZQDraggingDestinationScrollViewDelegate() override;

  // A drop has become possible, or is no longer. Comes once for each change. Required, unlike the
  // steps: it is sent without asking whether it is answered.
  virtual void highlightDraggingTarget(bool flag) = 0;
};

// Hands every step of a drag to its delegate, and keeps track of whether it should be shown
// highlighted as the target of a drop: from an answer that is not 0 until one that is, an exit or
// the end of a drop. It draws no highlight itself; that is for the delegate, often by a
// ZQHighlightTableView.
//
// A step that the delegate does not answer goes to the base class, that is to the scroll view's
// draggingDestination; where that does not answer either, a drop is refused. An exception of
// whoever answers turns the highlight off and passes through; where the event loop called, it is
// logged. The view accepts drops from the start, and may be destroyed in whatever it calls.
//
// Thread: main.
class ZQTICKER_EXPORT ZQDraggingDestinationScrollView : public zq::platform::ScrollView {
  Q_OBJECT

 public:
  explicit ZQDraggingDestinationScrollView(QWidget* parent = nullptr);
  ~ZQDraggingDestinationScrollView() override;

  // Not owned; null, as at first, and one that has gone hear nothing. A change tells neither.
  ZQDraggingDestinationScrollViewDelegate* delegate() const { return delegate_.get(); }
  void setDelegate(zq::platform::Weak<ZQDraggingDestinationScrollViewDelegate> delegate) {
    delegate_ = delegate;
  }

  // Turns the highlight on or off, and tells the delegate of a change.
  void changeDraggingHighlight(bool flag);

  // The operation that a drop would do, which turns the highlight on, or 0, which turns it off. The
  // result is never nullopt.
  std::optional<zq::platform::DragOperationMask>
  draggingEntered(const zq::platform::DraggingInfo& sender) override;
  std::optional<zq::platform::DragOperationMask>
  draggingUpdated(const zq::platform::DraggingInfo& sender) override;

  // Turn the highlight off after the delegate or the base class was told, always true.
  bool draggingExited(const zq::platform::DraggingInfo& sender) override;
  bool concludeDragOperation(const zq::platform::DraggingInfo& sender) override;
  // The same, but the base class is never told.
  bool draggingEnded(const zq::platform::DraggingInfo& sender) override;

  // False where nobody answers, never nullopt. The highlight stays as it is.
  std::optional<bool> prepareForDragOperation(const zq::platform::DraggingInfo& sender) override;
  std::optional<bool> performDragOperation(const zq::platform::DraggingInfo& sender) override;

 private:
  template <class OfDelegate, class OfBase>
  auto firstAnswer(OfDelegate ofDelegate, OfBase ofBase);
  template <class Ask>
  std::optional<zq::platform::DragOperationMask> showAnswer(Ask ask);
  template <class Tell>
  bool tellThenEnd(Tell tell);

  zq::platform::Weak<ZQDraggingDestinationScrollViewDelegate> delegate_;
  bool drawDraggingHighlight_ = false;
};
