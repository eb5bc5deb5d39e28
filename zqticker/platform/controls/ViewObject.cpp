#include "zqticker/platform/controls/ViewObject.h"

#include "zqticker/platform/controls/ControlView.h"

namespace zq::platform {

ViewObject::ViewObject() = default;
ViewObject::ViewObject(ControlView* view) : view_(view) {}
ViewObject::~ViewObject() = default;

ControlView* ViewObject::view() const {
  return view_.get();
}

QWidget* ViewObject::widget() const {
  ControlView* view = view_.get();
  return view ? view->widget() : nullptr;
}

void ViewObject::setView(ControlView* view) {
  view_ = view;
}

} // namespace zq::platform
