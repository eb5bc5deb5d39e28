// What a view hears of a drag over it.
#pragma once

#include "zqticker/platform/controls/DraggingInfo.h"
#include "zqticker/platform/objects/Weak.h"

#include <optional>

namespace zq::platform {

// The steps of a drag. A drag enters, is updated whenever it moves, at least once, and exits or is
// dropped. A drop prepares; if that says yes it performs; if that says yes it concludes; and in any
// case it ends. A drop whose last answer was 0 is an exit.
//
// Each operation is optional: nullopt, or false where there is no result, says "not answered", as
// all do by default.
//
// Thread: main.
class ZQTICKER_EXPORT DraggingDestination : public WeakReferenced {
 public:
  ~DraggingDestination() override;

  // What a drop here would do; 0 refuses one.
  virtual std::optional<DragOperationMask> draggingEntered(const DraggingInfo& sender);
  virtual std::optional<DragOperationMask> draggingUpdated(const DraggingInfo& sender);
  virtual bool draggingExited(const DraggingInfo& sender);

  // Whether the drop may be performed, and whether it was.
  virtual std::optional<bool> prepareForDragOperation(const DraggingInfo& sender);
  virtual std::optional<bool> performDragOperation(const DraggingInfo& sender);
  virtual bool concludeDragOperation(const DraggingInfo& sender);
  virtual bool draggingEnded(const DraggingInfo& sender);
};

} // namespace zq::platform
