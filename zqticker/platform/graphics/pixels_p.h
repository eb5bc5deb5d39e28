// Work on the pixels of bitmaps.
#pragma once

#include <QtGui/QImage>

namespace zq::platform {

// `length` without its fraction, limited to what pixel arithmetic bears; 0 for what is no number.
int wholePixels(double length);

// `image` in Format_RGB32 where it is opaque, else in Format_ARGB32_Premultiplied; at a device
// pixel ratio of 1.
QImage inWorkingFormat(const QImage& image);

// The part `part` of `source` (in a working format) scaled to `pixels`, in
// Format_ARGB32_Premultiplied. Each pixel is the average of the source under a triangle of two
// pixels' width, the wider ones of source and result: linear interpolation when enlarging, without
// aliasing when reducing. Parts fit together without a seam.
QImage resampled(const QImage& source, QSize pixels, const QRect& part);

} // namespace zq::platform
