// Views among reference objects.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Weak.h"

class QWidget;

namespace zq::platform {

class ControlView;

// Stands for a view where a reference object is asked for: in archives, and as what a notification
// is about. It does not own its view.
//
// Thread: main.
class ZQTICKER_EXPORT ViewObject : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSView")

 public:
  ViewObject();
  explicit ViewObject(ControlView* view);
  ~ViewObject() override;

  // Null where there is none and once it has gone.
  ControlView* view() const;
  QWidget* widget() const;

 protected:
  void setView(ControlView* view);

 private:
  Weak<ControlView> view_;
};

} // namespace zq::platform
