// How attributes of a button's look lie in archives; the appearance and the cell write them alike.
#pragma once

#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/rollover/appearance_attributes.h"

namespace zq {

// Null is written too: the key is there and reads as nothing.
inline void encodeAttribute(platform::Coder& coder, const ZQColorAttribute& color,
                            QAnyStringView key) {
  coder.encodeObject(color, key);
}
inline void encodeAttribute(platform::Coder& coder, const ZQShadowAttribute& shadow,
                            QAnyStringView key) {
  coder.encodeObject(shadow, key);
}
// Archives have signed integers only; the bits are kept.
inline void encodeAttribute(platform::Coder& coder, ZQIntegerAttribute number, QAnyStringView key) {
  coder.encodeInt64(static_cast<std::int64_t>(number), key);
}
inline void encodeAttribute(platform::Coder& coder, ZQFlagAttribute flag, QAnyStringView key) {
  coder.encodeBool(flag, key);
}
inline void encodeAttribute(platform::Coder& coder, ZQSecondsAttribute seconds,
                            QAnyStringView key) {
  coder.encodeDouble(seconds, key);
}

// The attribute under `key`; null, 0 or false where it is missing. ArchiveException for another
// kind of value.
template <class Attribute>
Attribute decodedAttribute(platform::Coder& coder, QAnyStringView key) {
  if constexpr (std::is_same_v<Attribute, ZQIntegerAttribute>)
    return static_cast<ZQIntegerAttribute>(coder.decodeInt64ForKey(key));
  else if constexpr (std::is_same_v<Attribute, ZQFlagAttribute>)
    return coder.decodeBoolForKey(key);
  else if constexpr (std::is_same_v<Attribute, ZQSecondsAttribute>)
    return coder.decodeDoubleForKey(key);
  else
    return coder.decodeObjectOfClass<typename Attribute::element_type>(key);
}

} // namespace zq
