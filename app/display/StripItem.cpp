#include "app/display/StripItem.h"

namespace zq::app {

StripItem::~StripItem() = default;

} // namespace zq::app
