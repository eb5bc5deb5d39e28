#include "zqticker/platform/system/Notification.h"

namespace zq::platform {

Ref<Notification> Notification::make(const QString& name, const Ref<Object>& object,
                                     const QVariantMap& userInfo) {
  return Ref<Notification>(new Notification(name, object, userInfo));
}

Notification::Notification(const QString& name, const Ref<Object>& object,
                           const QVariantMap& userInfo)
    : name_(name), object_(object), userInfo_(userInfo) {}

} // namespace zq::platform
