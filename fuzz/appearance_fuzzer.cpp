// Files of button appearances: decode, write what came out, decode that and write it again; the two
// files must be the same bytes. A copy must be as good as what it was made from.
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/color_utils.h"

#include <cstdlib>

using namespace zq::platform;
using Appearance = ZQRollOverButtonAppearance;

namespace {

constexpr std::size_t LargestInput = 1 << 16;

void check(bool holds) {
  if (!holds)
    std::abort();
}

// What a button makes of its colours.
void derive(const Ref<Color>& color) {
  if (!color)
    return;
  for (const auto& derived :
       {zq::accentColor(color), zq::lighterColor(color), zq::disabledColor(color)})
    check(derived->alphaComponent() >= 0 && derived->alphaComponent() <= 1);
}

void useAll(const Appearance& appearance) {
  const auto use = []<class Attribute>(const Attribute& attribute) {
    if constexpr (std::is_same_v<Attribute, ZQColorAttribute>)
      derive(attribute);
    else if constexpr (std::is_same_v<Attribute, ZQShadowAttribute>)
      derive(attribute ? attribute->shadowColor() : nullptr);
  };
#define ZQ_USE(Type, property, getter, setter) use(appearance.getter());
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_USE)
#undef ZQ_USE
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > LargestInput)
    return 0;
  Ref<Appearance> appearance;
  try {
    appearance = Appearance::appearanceWithDataRepresentation(
        QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
  } catch (const Exception&) {
    return 0;
  }
  if (!appearance)
    return 0;
  useAll(*appearance);
  QByteArray written;
  try {
    written = Appearance::dataRepresentationFromAppearance(appearance);
  } catch (const ArchiveException&) {
    // Colours that owe their depth to one another.
    return 0;
  }
  const auto again = Appearance::appearanceWithDataRepresentation(written);
  check(Appearance::dataRepresentationFromAppearance(again) == written);
  const Ref<Appearance> copy = copyOf(appearance);
  const QByteArray copied = Appearance::dataRepresentationFromAppearance(copy);
  check(Appearance::dataRepresentationFromAppearance(copyOf(copy)) == copied);
  return 0;
}
