// Pictures that other programs send.
#pragma once

#include "app/intake/WorkGate.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QByteArray>

#include <optional>

namespace zq::platform {
class Image;
} // namespace zq::platform

namespace zq::app {

// The most bytes of a picture's file, as of one in a feed.
inline constexpr qsizetype LargestMessagePicture = qsizetype(8) << 20;

// How many pixels the TIFF or PNG file `data` is decoded to, all pages of a TIFF file together, by
// its headers alone; at most about the largest number. Nothing for other data and for headers that
// cannot be believed.
std::optional<qint64> pixelCountOf(const QByteArray& data);

// Decodes TIFF or PNG data wholly. What is wrong goes to `complaint` ("larger than 8 MiB"), and the
// result is null then. What `gate` raises is passed on.
//
// Thread: main.
platform::Ref<platform::Image> decodeMessagePicture(const QByteArray& data, QString& complaint,
                                                    const WorkGate& gate = {});

// How many pixels the representations of `image` hold; 0 for null.
qint64 pixelCountOf(const platform::Ref<platform::Image>& image);

// Whether every bitmap of `image` can be decoded. Decodes them.
bool isWhole(const platform::Image& image);

} // namespace zq::app
