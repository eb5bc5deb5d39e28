#include "zqticker/platform/objects/Weak.h"

namespace zq::platform {

WeakReferenced::WeakReferenced() : alive_(std::make_shared<std::atomic<bool>>(true)) {}
WeakReferenced::WeakReferenced(const WeakReferenced&) : WeakReferenced() {}
WeakReferenced& WeakReferenced::operator=(const WeakReferenced&) {
  return *this;
}
WeakReferenced::~WeakReferenced() {
  alive_->store(false, std::memory_order_release);
}

} // namespace zq::platform
