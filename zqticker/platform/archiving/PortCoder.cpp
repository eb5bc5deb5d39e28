#include "zqticker/platform/archiving/PortCoder.h"

#include "zqticker/platform/archiving/KeyedArchiver.h"

#include <algorithm>

namespace zq::platform {

ObjectProxy::ObjectProxy(Ref<Object> target) : target_(std::move(target)) {}
ObjectProxy::~ObjectProxy() = default;

PortCoder::PortCoder(Passing passing) : passing_(passing) {}
PortCoder::~PortCoder() = default;

Ref<Object> PortCoder::proxyFor(const Ref<Object>& object) {
  const auto known =
      std::find_if(proxies_.begin(), proxies_.end(),
                   [&](const Ref<ObjectProxy>& proxy) { return proxy->target() == object; });
  if (known != proxies_.end())
    return *known;
  return proxies_.emplace_back(std::make_shared<ObjectProxy>(object));
}

PortMessageItem portMessageItem(const Ref<Object>& object, PortCoder& coder) {
  const Ref<Object> replacement = object ? object->replacementObjectForPortCoder(coder) : nullptr;
  if (const auto proxy = std::dynamic_pointer_cast<ObjectProxy>(replacement))
    return {{}, proxy};
  return {KeyedArchiver::archivedDataWithRootObject(replacement), nullptr};
}

} // namespace zq::platform
