// Pictures in the archives of signs: TIFF data under a key.
#pragma once

#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/graphics/Image.h"

inline void encodePicture(zq::platform::Coder& coder,
                          const zq::platform::Ref<zq::platform::Image>& image, QAnyStringView key) {
  std::optional<QByteArray> data;
  if (image)
    data = image->TIFFRepresentation();
  coder.encodeObject(data ? zq::platform::Any(*data) : zq::platform::Any(), key);
}

// Null where there is no data or where it is no picture.
inline zq::platform::Ref<zq::platform::Image> decodePicture(zq::platform::Coder& coder,
                                                            QAnyStringView key) {
  const std::optional<QByteArray> data = coder.decodeDataForKey(key);
  return data ? zq::platform::Image::initWithData(*data) : nullptr;
}
