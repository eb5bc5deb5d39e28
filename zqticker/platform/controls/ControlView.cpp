#include "zqticker/platform/controls/ControlView.h"

#include "zqticker/platform/objects/Selector.h"

#include <QtWidgets/QWidget>

namespace zq::platform {

ControlView::ControlView() = default;
ControlView::~ControlView() = default;

void ControlView::sendAction(const Selector& action, const Target& target) {
  if (action && target)
    action.send(target, {QVariant::fromValue<QObject*>(widget())});
}

void ControlView::cellDidChangeState(Cell&) {}
void ControlView::menuDidOpen(Menu&) {}
void ControlView::menuDidClose(Menu&) {}

bool ControlView::tracksMouseInside() const {
  return false;
}
ButtonType ControlView::buttonType() const {
  return ButtonType::MomentaryLight;
}
Ref<Object> ControlView::classAppearance() const {
  return nullptr;
}
Ref<Object> ControlView::viewObject() {
  return nullptr;
}

} // namespace zq::platform
