#include "app/display/StripItem.h"

namespace zq::app {

StripItem::~StripItem() = default;

void StripItem::setQueued(bool) {}

} // namespace zq::app
