// What a notification center hands to its observers.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QVariantMap>

namespace zq::platform {

// A name, the object that it is about, and more as the name's documentation says. Never changes
// once made.
class ZQTICKER_EXPORT Notification : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSNotification")

 public:
  // Operation: notificationWithName:object:userInfo:
  static Ref<Notification> make(const QString& name, const Ref<Object>& object,
                                const QVariantMap& userInfo = {});

  const QString& name() const { return name_; }
  // Null where it is about no object.
  const Ref<Object>& object() const { return object_; }
  const QVariantMap& userInfo() const { return userInfo_; }

 private:
  Notification(const QString& name, const Ref<Object>& object, const QVariantMap& userInfo);

  QString name_;
  Ref<Object> object_;
  QVariantMap userInfo_;
};

} // namespace zq::platform
