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
// The most pixels that are decoded between two frames: a fifth of a frame of 60 a second.
inline constexpr qint64 MostPixelsAtOnce = 150'000;

// How many pixels the TIFF or PNG file `data` is decoded to, all pages of a TIFF file together, by
// its headers alone; at most about the largest number. Nothing for other data and for headers that
// cannot be believed.
std::optional<qint64> pixelCountOf(const QByteArray& data);

// How many pixels TIFF or PNG data has that may be decoded. What is wrong goes to `complaint`
// ("larger than 8 MiB"), and there is no result then. What `gate` raises is passed on.
std::optional<qint64> admitMessagePicture(const QByteArray& data, QString& complaint,
                                          const WorkGate& gate = {});

// Decodes a picture that was admitted, wholly; null for one that is damaged.
//
// Thread: any.
platform::Ref<platform::Image> decodeAdmittedPicture(const QByteArray& data);

// Both in one go; null, and a complaint, where either does not come about.
platform::Ref<platform::Image> decodeMessagePicture(const QByteArray& data, QString& complaint,
                                                    const WorkGate& gate = {});

// What is said of a picture that is damaged.
QString damagedPicture();

// How many pixels the representations of `image` hold; 0 for null.
qint64 pixelCountOf(const platform::Ref<platform::Image>& image);

// Whether every bitmap of `image` can be decoded. Decodes those that are not yet.
//
// Thread: any, where no other one uses the image.
bool isWhole(const platform::Image& image);

} // namespace zq::app
