// Pictures as data: what is read and what is written.
#pragma once

#include "zqticker/platform/graphics/Image.h"

#include <QtCore/QByteArray>

namespace zq::platform {

// The representations in `data`, in the formats that Image::initWithData names; none where nothing
// can be decoded.
Image::Representations representationsFromData(const QByteArray& data);

// The readable pages of a TIFF file, in order. Headers and the place of every strip are checked at
// once; the pixels of large pages are decoded when first needed.
Image::Representations representationsFromTiff(const QByteArray& data);

// The representations of an image of `size` points as a TIFF file; see Image::TIFFRepresentation.
// Nothing where writing fails.
std::optional<QByteArray> tiffData(QSizeF size, const Image::Representations& representations);

} // namespace zq::platform
