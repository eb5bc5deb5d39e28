#include "app/display/StripItem.h"

namespace zq::app {

StripItem::~StripItem() = default;

double StripItem::gap(double) const {
  return 0;
}

bool StripItem::isReady() {
  return true;
}

bool StripItem::isBlank() const {
  return false;
}

void StripItem::setQueued(bool) {}

} // namespace zq::app
