#include "zqticker/platform/graphics/ColorSpace_p.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"

namespace zq::platform {

ZQ_REGISTER_VALUE_CLASS(ColorSpace);

static constexpr QLatin1StringView IdentifierKey{"NSID"};

bool ColorSpace::isEqual(const Object& other) const {
  const auto* space = dynamic_cast<const ColorSpace*>(&other);
  return space && space->identifier_ == identifier_;
}

Ref<Object> ColorSpace::copy() {
  return std::make_shared<ColorSpace>(*this);
}

void ColorSpace::encodeWithCoder(Coder& coder) {
  coder.encodeInt(identifier_, IdentifierKey);
}

Ref<Object> ColorSpace::initWithCoder(Coder& coder) {
  identifier_ = coder.decodeIntForKey(IdentifierKey);
  return shared_from_this();
}

} // namespace zq::platform
