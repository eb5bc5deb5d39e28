// Signs as the queue window changes them.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QSizeF>
#include <QtCore/QString>

#include <cstdint>

class ZQTickerSign;

namespace zq::platform {
class Image;
} // namespace zq::platform

namespace zq::app {

// The picture that a sign shows besides its text, or in its place; null for one that shows none, as
// for null.
platform::Ref<platform::Image> pictureOf(const platform::Ref<ZQTickerSign>& sign);
inline bool showsPicture(const platform::Ref<ZQTickerSign>& sign) {
  return pictureOf(sign) != nullptr;
}

// A copy of `sign` with another text: of a picture, what it says in words. What both texts have in
// common at their ends keeps its attributes, what is new takes those of what it replaces. Null for
// a sign of another kind.
platform::Ref<ZQTickerSign> signWithText(const platform::Ref<ZQTickerSign>& sign,
                                         const QString& text);

// Makes a picture that is larger than `room` in points as small as that, its proportions kept; a
// side of 0 is free.
void fitPicture(platform::Image& image, QSizeF room);

} // namespace zq::app
