#include "zqticker/views/ZQDraggingDestinationScrollView.h"

#include <QtCore/QPointer>

using zq::platform::DraggingInfo;
using zq::platform::DragOperationMask;
using zq::platform::DragOperationNone;
using zq::platform::ScrollView;

using Delegate = ZQDraggingDestinationScrollViewDelegate;

ZQDraggingDestinationScrollViewDelegate::~ZQDraggingDestinationScrollViewDelegate() = default;

ZQDraggingDestinationScrollView::ZQDraggingDestinationScrollView(QWidget* parent)
    : ScrollView(parent) {
  setAcceptDrops(true);
}

ZQDraggingDestinationScrollView::~ZQDraggingDestinationScrollView() = default;

void ZQDraggingDestinationScrollView::changeDraggingHighlight(bool flag) {
  if (flag == drawDraggingHighlight_)
    return;
  drawDraggingHighlight_ = flag;
  if (Delegate* delegate = delegate_.get())
    delegate->highlightDraggingTarget(flag);
}

// The delegate's answer, or else that of the base class: an optional, or whether there was one.
template <class OfDelegate, class OfBase>
auto ZQDraggingDestinationScrollView::firstAnswer(OfDelegate ofDelegate, OfBase ofBase) {
  const QPointer<ZQDraggingDestinationScrollView> alive = this;
  decltype(ofBase()) answer{};
  if (Delegate* delegate = delegate_.get())
    answer = ofDelegate(*delegate);
  return answer || !alive ? answer : ofBase();
}

// The result of `ask`, or 0; the highlight shows which.
template <class Ask>
std::optional<DragOperationMask> ZQDraggingDestinationScrollView::showAnswer(Ask ask) {
  const QPointer<ZQDraggingDestinationScrollView> alive = this;
  DragOperationMask operation = DragOperationNone;
  try {
    operation = ask().value_or(DragOperationNone);
  } catch (...) {
    if (alive)
      changeDraggingHighlight(false);
    throw;
  }
  if (alive)
    changeDraggingHighlight(operation != DragOperationNone);
  return operation;
}

template <class Tell>
bool ZQDraggingDestinationScrollView::tellThenEnd(Tell tell) {
  const QPointer<ZQDraggingDestinationScrollView> alive = this;
  try {
    tell();
  } catch (...) {
    if (alive)
      changeDraggingHighlight(false);
    throw;
  }
  if (alive)
    changeDraggingHighlight(false);
  return true;
}

std::optional<DragOperationMask>
ZQDraggingDestinationScrollView::draggingEntered(const DraggingInfo& sender) {
  return showAnswer([&] {
    return firstAnswer([&](Delegate& delegate) { return delegate.draggingEntered(sender); },
                       [&] { return ScrollView::draggingEntered(sender); });
  });
}

std::optional<DragOperationMask>
ZQDraggingDestinationScrollView::draggingUpdated(const DraggingInfo& sender) {
  return showAnswer([&] {
    return firstAnswer([&](Delegate& delegate) { return delegate.draggingUpdated(sender); },
                       [&] { return ScrollView::draggingUpdated(sender); });
  });
}

bool ZQDraggingDestinationScrollView::draggingExited(const DraggingInfo& sender) {
  return tellThenEnd([&] {
    firstAnswer([&](Delegate& delegate) { return delegate.draggingExited(sender); },
                [&] { return ScrollView::draggingExited(sender); });
  });
}

bool ZQDraggingDestinationScrollView::concludeDragOperation(const DraggingInfo& sender) {
  return tellThenEnd([&] {
    firstAnswer([&](Delegate& delegate) { return delegate.concludeDragOperation(sender); },
                [&] { return ScrollView::concludeDragOperation(sender); });
  });
}

// Deliberately, the base class is not told of the end, answered or not.
bool ZQDraggingDestinationScrollView::draggingEnded(const DraggingInfo& sender) {
  return tellThenEnd([&] {
    if (Delegate* delegate = delegate_.get())
      delegate->draggingEnded(sender);
  });
}

std::optional<bool>
ZQDraggingDestinationScrollView::prepareForDragOperation(const DraggingInfo& sender) {
  return firstAnswer([&](Delegate& delegate) { return delegate.prepareForDragOperation(sender); },
                     [&] { return ScrollView::prepareForDragOperation(sender); })
      .value_or(false);
}

std::optional<bool>
ZQDraggingDestinationScrollView::performDragOperation(const DraggingInfo& sender) {
  return firstAnswer([&](Delegate& delegate) { return delegate.performDragOperation(sender); },
                     [&] { return ScrollView::performDragOperation(sender); })
      .value_or(false);
}
