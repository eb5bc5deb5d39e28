#include "zqticker/platform/text/bidi_p.h"

#include <unicode/ubidi.h>

#include <algorithm>
#include <memory>

namespace zq::platform {

// Whether text with `c` may hold anything but left to right: the right-to-left blocks, the high
// surrogates of those beyond U+FFFF, and the directional marks and controls.
static bool mayBeRightToLeft(char16_t c) {
  return c >= 0x0590 && (c <= 0x08ff || (c >= 0x200e && c <= 0x200f) || isDirectionControl(c) ||
                         (c >= 0xd802 && c <= 0xd803) || (c >= 0xd83a && c <= 0xd83b) ||
                         (c >= 0xfb1d && c <= 0xfdff) || (c >= 0xfe70 && c <= 0xfefe));
}

bool isDirectionControl(char16_t c) {
  return (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069);
}

bool isDirectionOverride(char16_t c) {
  return c == 0x202d || c == 0x202e;
}

std::vector<DirectionRun> directionRuns(const QString& text, std::optional<bool> rightToLeft) {
  if (text.isEmpty())
    return {};
  const std::vector<DirectionRun> plain{{0, text.size(), false}};
  const auto* characters = reinterpret_cast<const char16_t*>(text.constData());
  if (!rightToLeft.value_or(false) &&
      std::none_of(characters, characters + text.size(), mayBeRightToLeft))
    return plain;

  const std::unique_ptr<UBiDi, decltype(&ubidi_close)> bidi(ubidi_open(), ubidi_close);
  UErrorCode error = U_ZERO_ERROR;
  const UBiDiLevel level = rightToLeft ? UBiDiLevel(*rightToLeft) : UBIDI_DEFAULT_LTR;
  ubidi_setPara(bidi.get(), characters, std::int32_t(text.size()), level, nullptr, &error);
  const std::int32_t count = ubidi_countRuns(bidi.get(), &error);
  if (U_FAILURE(error))
    return plain;
  std::vector<DirectionRun> runs;
  runs.reserve(std::size_t(count));
  for (std::int32_t i = 0; i < count; ++i) {
    std::int32_t start = 0;
    std::int32_t length = 0;
    const UBiDiDirection direction = ubidi_getVisualRun(bidi.get(), i, &start, &length);
    runs.push_back({start, length, direction == UBIDI_RTL});
  }
  return runs;
}

} // namespace zq::platform
