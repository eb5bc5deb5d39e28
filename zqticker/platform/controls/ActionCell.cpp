#include "zqticker/platform/controls/ActionCell.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/controls/Menu.h"

namespace zq::platform {

ZQ_REGISTER_CLASS(ActionCell);

ActionCell::ActionCell() = default;
ActionCell::~ActionCell() = default;

Ref<Object> ActionCell::copy() {
  return Ref<Object>(new ActionCell(*this));
}

Target ActionCell::target() const {
  return target_;
}
void ActionCell::setTarget(const Target& target) {
  target_ = target;
}

Selector ActionCell::action() const {
  return action_;
}
void ActionCell::setAction(const Selector& action) {
  action_ = action;
}

} // namespace zq::platform
