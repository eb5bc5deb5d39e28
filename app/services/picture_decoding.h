// Pictures of strangers, made small.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSize>
#include <QtGui/QImage>

namespace zq::app {

// The most pixels of a picture that is decoded.
inline constexpr qint64 MostDecodedPixels = 16'000'000;
// A side shorter than this is no picture, but a mark by which its readers are counted.
inline constexpr int ShortestPictureSide = 4;

// The picture in `data` (PNG, JPEG, GIF, WebP, BMP or ICO; the first of several), scaled down to
// `room` in pixels where it is larger, its proportions and its transparency kept. Null for what
// cannot be decoded wholly, for more pixels or shorter sides than stated above.
//
// Thread: any.
QImage decodePicture(const QByteArray& data, QSize room);

} // namespace zq::app
