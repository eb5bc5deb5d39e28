// A view for tests of rollover button cells.
#pragma once

#include "tests/platform/controls/FakeView.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"

namespace zq::testing {

// A FakeView whose class has an appearance, if it is given one.
class RollOverView : public FakeView {
 public:
  using FakeView::FakeView;

  bool tracksMouseInside() const override { return tracks; }
  platform::ButtonType buttonType() const override { return type; }
  platform::Ref<platform::Object> classAppearance() const override { return shared; }

  bool tracks = true;
  platform::ButtonType type = platform::ButtonType::MomentaryLight;
  platform::Ref<ZQRollOverButtonAppearance> shared;
};

// The attribute number `index` of a look in which no two attributes are equal.
template <class Type>
Type distinctAttribute(int index) {
  if constexpr (std::is_same_v<Type, ZQColorAttribute>)
    return platform::Color::deviceRGB(index / 32.0, 0.5, 1, 0.25);
  else if constexpr (std::is_same_v<Type, ZQShadowAttribute>)
    return std::make_shared<platform::Shadow>(QSizeF(index, -index), index / 4.0,
                                              platform::Color::deviceWhite(0.5));
  else if constexpr (std::is_same_v<Type, ZQIntegerAttribute>)
    return 100U + unsigned(index);
  else if constexpr (std::is_same_v<Type, ZQSecondsAttribute>)
    return index / 8.0;
  else
    return true;
}

inline platform::Ref<ZQRollOverButtonAppearance> distinctAppearance() {
  const auto appearance = std::make_shared<ZQRollOverButtonAppearance>();
  int index = 0;
#define ZQ_FILL(Type, property, getter, setter)                                                    \
  appearance->setter(distinctAttribute<Type>(++index));
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_FILL)
#undef ZQ_FILL
  return appearance;
}

template <class Type>
bool equalAttributes(const Type& a, const Type& b) {
  if constexpr (std::is_same_v<Type, ZQColorAttribute> || std::is_same_v<Type, ZQShadowAttribute>)
    return platform::isEqualValue(platform::any(a), platform::any(b));
  else
    return a == b;
}

} // namespace zq::testing
