// Taking a colour from the bytes of a bitmap.
#pragma once

#include <QtCore/QSize>
#include <QtCore/QtGlobal>

#include <array>
#include <span>

namespace zq {

// How the pixels of a bitmap lie in its bytes: rows from the top, in each pixel red, green, blue
// and, where there is one, alpha, a byte each.
struct BitmapLayout {
  qsizetype bytesPerRow = 0;
  int bitsPerPixel = 32;
  bool hasAlpha = true;
};

// What is taken from a channel for a colour component between 0 and 1: 256 to 1.
int subtrahendFor(double component);

// Writes to `destination` the pixels of `source`, `subtrahends` taken from red, green and blue,
// down to 0; alpha is copied. Both are walked by the layout of the source over `size` pixels,
// column by column; a pixel that does not lie wholly within both is skipped.
void darken(std::span<const uchar> source, std::span<uchar> destination, const BitmapLayout& layout,
            QSize size, const std::array<int, 3>& subtrahends);

} // namespace zq
