// How objects travel in a message to another process: by value, or as a proxy that stays behind.
#pragma once

#include "zqticker/platform/archiving/Coder.h"

#include <vector>

namespace zq::platform {

// What stands in a message for an object that stays in its own process.
class ZQTICKER_EXPORT ObjectProxy : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  explicit ObjectProxy(Ref<Object> target);
  ~ObjectProxy() override;

  const Ref<Object>& target() const { return target_; }

 private:
  Ref<Object> target_;
};

// The coder of one message. It asks every reference object for its replacement
// (Object::replacementObjectForPortCoder) and sends that.
class ZQTICKER_EXPORT PortCoder : public Coder {
 public:
  enum class Passing { ByReference, ByCopy };

  explicit PortCoder(Passing passing);
  ~PortCoder() override;

  // Whether the message asks for its objects by value.
  bool isBycopy() const { return passing_ == Passing::ByCopy; }

  // The proxy for `object`; the same one for the same object within a message.
  Ref<Object> proxyFor(const Ref<Object>& object);

 private:
  Passing passing_;
  std::vector<Ref<ObjectProxy>> proxies_;
};

// What a message carries for one object.
struct PortMessageItem {
  // A keyed archive with the object under "root", where it travels by value.
  QByteArray archive;
  // What stays in this process and is reached through the message, where it does not.
  Ref<ObjectProxy> proxy;

  bool isByValue() const { return !archive.isEmpty(); }
};

// Asks `object` for its replacement and archives that, unless it is a proxy. Null travels by value
// as nothing. Raises like KeyedArchiver.
ZQTICKER_EXPORT PortMessageItem portMessageItem(const Ref<Object>& object, PortCoder& coder);

} // namespace zq::platform
