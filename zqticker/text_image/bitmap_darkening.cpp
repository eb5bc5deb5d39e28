#include "zqticker/text_image/bitmap_darkening_p.h"

#include <algorithm>

namespace zq {

int subtrahendFor(double component) {
  return int(256.0 - component * 255.0);
}

void darken(std::span<const uchar> source, std::span<uchar> destination, const BitmapLayout& layout,
            QSize size, const std::array<int, 3>& subtrahends) {
  const qsizetype bytesPerPixel = layout.bitsPerPixel / 8;
  const auto samples = qsizetype(layout.hasAlpha ? 4 : 3);
  // Offsets grow down a column: the first one past this ends it.
  const auto lastOffset = qsizetype(std::min(source.size(), destination.size())) - samples;
  for (qsizetype x = 0; x < size.width(); ++x)
    for (qsizetype y = 0; y < size.height(); ++y) {
      // The source's strides hold for both, which is deliberate.
      const qsizetype offset = x * bytesPerPixel + y * layout.bytesPerRow;
      if (offset > lastOffset)
        break;
      const uchar* const from = source.data() + offset;
      uchar* const to = destination.data() + offset;
      for (std::size_t channel = 0; channel < subtrahends.size(); ++channel)
        to[channel] = uchar(std::max(0, from[channel] - subtrahends[channel]));
      if (layout.hasAlpha)
        to[3] = from[3];
    }
}

} // namespace zq
