#include "zqticker/platform/controls/DraggingDestination.h"

namespace zq::platform {

DraggingDestination::~DraggingDestination() = default;

std::optional<DragOperationMask> DraggingDestination::draggingEntered(const DraggingInfo&) {
  return std::nullopt;
}
std::optional<DragOperationMask> DraggingDestination::draggingUpdated(const DraggingInfo&) {
  return std::nullopt;
}
bool DraggingDestination::draggingExited(const DraggingInfo&) {
  return false;
}
std::optional<bool> DraggingDestination::prepareForDragOperation(const DraggingInfo&) {
  return std::nullopt;
}
std::optional<bool> DraggingDestination::performDragOperation(const DraggingInfo&) {
  return std::nullopt;
}
bool DraggingDestination::concludeDragOperation(const DraggingInfo&) {
  return false;
}
bool DraggingDestination::draggingEnded(const DraggingInfo&) {
  return false;
}

} // namespace zq::platform
