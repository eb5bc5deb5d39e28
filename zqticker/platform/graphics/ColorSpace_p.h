// The record of a custom colour space in an archive.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QByteArray>

namespace zq::platform {

// A colour space by its number, where it has one; the profile is kept unread.
class ColorSpace : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSColorSpace")

 public:
  ColorSpace() = default;
  explicit ColorSpace(int identifier) : identifier_(identifier) {}

  // 7 is sRGB, 2 generic grey, 9 generic grey of gamma 2.2; 0 where the record states none.
  int identifier() const { return identifier_; }

  bool isEqual(const Object& other) const override;
  Ref<Object> copy() override;
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  int identifier_ = 0;
};

} // namespace zq::platform
