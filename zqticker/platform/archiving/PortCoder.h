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

} // namespace zq::platform
