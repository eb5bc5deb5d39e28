#include "zqticker/platform/controls/DraggingInfo.h"

#include "zqticker/platform/controls/drag_operations_p.h"

#include <QtGui/QDropEvent>
#include <QtWidgets/QWidget>

namespace zq::platform {

static int nextSequenceNumber() {
  static int last = 0;
  return ++last;
}

DraggingInfo::DraggingInfo(QWidget& destination, const QDropEvent& event)
    : destination_(&destination), sequenceNumber_(nextSequenceNumber()) {
  follow(&event);
}

DraggingInfo::~DraggingInfo() = default;

QObject* DraggingInfo::draggingSource() const {
  return event_ ? event_->source() : nullptr;
}

const QMimeData* DraggingInfo::draggingPasteboard() const {
  return event_ ? event_->mimeData() : nullptr;
}

void DraggingInfo::follow(const QDropEvent* event) {
  event_ = event;
  if (!event || !destination_)
    return;
  sourceOperations_ = operationsOf(event->possibleActions());
  const QWidget* window = destination_->window();
  const QPointF point = destination_->mapTo(window, event->position());
  location_ = {point.x(), window->height() - point.y()};
}

} // namespace zq::platform
